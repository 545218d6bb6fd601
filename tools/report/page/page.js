"use strict";

// Puts the page together, and keeps its link: #t=<ns>&span=<ns>, with the cursor at t unless
// &cursor=<ns> says otherwise, and &second=<ns> for the second one.

// So many are open at first: lanes are to be near the waveforms.
const kOpenStreams = 2;
const kMostNear = 5;
const kPrintedPixels = 2;  // of a chart on paper, for one of the page
const kOpenLanes = 12;

const streams = [];
let isFollowing = false;

function readLink() {
  const wishes = new Map(location.hash.slice(1).split("&").map((part) => part.split("=")));
  const instant = (name) => /^-?\d{1,19}$/.test(wishes.get(name) || "") ? BigInt(wishes.get(name)) : null;
  const middle = instant("t");
  if (middle === null) {
    return false;
  }
  const span = instant("span");
  const width = span === null ? timeline.span : Number(span);
  timeline.cursors = [instant("cursor") === null ? middle : instant("cursor"), instant("second")];
  const at = Number(middle - base);
  timeline.setView(at - width / 2, at + width / 2);
  showCursor();
  return true;
}

function writeLink() {
  const { from, to } = timeline.view;
  const middle = base + BigInt(Math.round((from + to) / 2));
  const [first, second] = timeline.cursors;
  const parts = [`t=${middle}`, `span=${Math.round(to - from)}`];
  if (first !== null && first !== middle) {
    parts.push(`cursor=${first}`);
  }
  if (second !== null) {
    parts.push(`second=${second}`);
  }
  const link = `#${parts.join("&")}`;
  if (link !== location.hash) {
    history.replaceState(null, "", link);
  }
}

function showView() {
  const { from, to } = timeline.view;
  const text = document.getElementById("view");
  text.textContent = `${instantText(base + BigInt(Math.round(from)))}, ${lengthText(to - from)}`;
  text.dataset.from = String(base + BigInt(Math.round(from)));
  text.dataset.to = String(base + BigInt(Math.round(to)));
  if (isFollowing) {
    writeLink();
  }
}

function step(number, direction) {
  // A stream that is closed has no cursor to be seen.
  const stream = streams.filter(isOpen).find((each) => each.segments.some((segment) => segment.count > 0 && !segment.isEnvelope));
  const pixel = timeline.span / 1000;
  let at = timeline.cursors[number];
  if (at === null) {
    at = timeline.cursors[0] === null ? base + BigInt(Math.round(timeline.middle())) : timeline.cursors[0];
  } else {
    const near = stream ? nearestValue(stream, at) : null;
    const interval = near ? near.segment.interval : pixel;
    at += BigInt(direction) * BigInt(Math.max(1, Math.round(Math.max(interval, pixel))));
  }
  timeline.setCursor(number, stream ? snapTo(stream, at) : at);
  timeline.showCursor(number);
}

function onKey(event) {
  const isTyping = /^(INPUT|TEXTAREA|SELECT)$/.test(event.target.tagName) && event.target.type !== "checkbox";
  if (isTyping || event.ctrlKey || event.metaKey || event.altKey) {
    return;
  }
  const actions = {
    ArrowLeft: () => step(event.shiftKey ? 1 : 0, -1),
    ArrowRight: () => step(event.shiftKey ? 1 : 0, 1),
    "+": () => timeline.zoom(0.5),
    "=": () => timeline.zoom(0.5),
    "-": () => timeline.zoom(2),
    PageUp: () => timeline.move(-0.5),
    PageDown: () => timeline.move(0.5),
    Home: () => timeline.setView(whole.from, whole.to),
    n: () => stepFinding(1),
    p: () => stepFinding(-1),
    Escape: () => {
      forgetFinding();
      timeline.cursors = [null, null];
      timeline.setCursor(0, null);
    },
  };
  // What scrolls a page or a table does so, unless one is at the timeline.
  const isPaging = event.key === "PageUp" || event.key === "PageDown" || event.key === "Home";
  const isAtTimeline = document.getElementById("timeline").contains(document.activeElement);
  const isInTable = event.key.startsWith("Arrow") && event.target.closest && event.target.closest(".scroll");
  if (!actions[event.key] || (isPaging && !isAtTimeline) || isInTable) {
    return;
  }
  event.preventDefault();
  actions[event.key]();
}

/** A time in a table leads to the timeline; that of a finding chooses it. */
function onLink(event) {
  const link = event.target.closest ? event.target.closest('a[href^="#t="]') : null;
  if (!link || event.button !== 0 || event.ctrlKey || event.metaKey || event.shiftKey || event.altKey) {
    return;
  }
  event.preventDefault();
  location.hash = link.getAttribute("href");
  readLink();
  const row = link.closest("#findings tr");
  if (row) {
    chooseByRow(row);
  }
  const finding = document.getElementById("finding");
  (finding.hidden ? document.getElementById("stage") : finding).scrollIntoView();
  document.getElementById("timeline").focus({ preventScroll: true });
}

/** Charts are as wide as paper, in its colours and finer than a screen's, while the page is printed. What
    is drawn on a canvas on the way to the printer does not reach it: pictures of it do. */
function setPrinting(is) {
  document.documentElement.classList.toggle("printing", is);
  for (const picture of document.querySelectorAll("img.printed")) {
    picture.remove();
  }
  timeline.resize(is ? kPrintedPixels : null);
  timeline.redraw();
  if (is) {
    for (const canvas of document.querySelectorAll(".chart canvas")) {
      if (canvas.offsetParent !== null) {
        const picture = make("img", null, { class: "printed", alt: "", src: canvas.toDataURL(), style: canvas.style.cssText });
        canvas.after(picture);
      }
    }
  }
}

function connect() {
  const actions = {
    in: () => timeline.zoom(0.5),
    out: () => timeline.zoom(2),
    back: () => timeline.move(-0.5),
    on: () => timeline.move(0.5),
    all: () => timeline.setView(whole.from, whole.to),
  };
  for (const button of document.querySelectorAll("#controls button")) {
    button.addEventListener("click", actions[button.dataset.do]);
  }
  document.addEventListener("keydown", onKey);
  document.addEventListener("click", onLink);
  addEventListener("hashchange", readLink);
  matchMedia("(prefers-color-scheme: dark)").addEventListener("change", () => timeline.redraw());
  addEventListener("beforeprint", () => setPrinting(true));
  addEventListener("afterprint", () => setPrinting(false));
  let width = innerWidth;
  addEventListener("resize", () => {
    if (innerWidth !== width) {
      width = innerWidth;
      timeline.resize();
    }
  });
}

function addKey(parent) {
  const key = make("div", null, { class: "key" });
  const told = [["missing", "samples missing"], ["bad", "quality not good"], ["on", "true"], ["other", "another value"],
    ["error", "error"], ["warning", "warning"], ["note", "note"]];
  for (const [name, text] of told) {
    const item = make("span");
    const sign = make("i");
    sign.style.background = `var(--${name})`;
    item.append(sign, text);
    key.append(item);
  }
  parent.append(key);
}

function start() {
  const octets = unpackOctets();
  for (const told of report.streams) {
    streams.push(makeStream(octets.subarray(told.at), told));
  }
  const parent = document.getElementById("timeline");
  timeline.onView = showView;
  timeline.onCursor = showCursor;
  const isAny = streams.length > 0 || report.goose.length > 0 || report.marks.length > 0;
  document.getElementById("controls").hidden = !isAny;
  document.getElementById("hint").hidden = !isAny;
  if (isAny) {
    if (report.marks.length > 0) {
      addFindingMarks(parent);
    }
    const addStream = (box, stream, isOpen) => {
      stream.box = addFolded(box, stream.name, isOpen, (inside) => addWaveforms(inside, stream));
    };
    const near = streams.length > kMostNear ? kOpenStreams : streams.length;
    streams.slice(0, near).forEach((stream, number) => addStream(parent, stream, number < kOpenStreams));
    if (near < streams.length) {
      addFolded(parent, `${streams.length - near} more streams of Sampled Values`, false,
          (box) => streams.slice(near).forEach((stream) => addStream(box, stream, false)));
    }
    report.goose.forEach((stream, number) => {
      const isOpen = number < kOpenLanes && (stream.lanes.some((lane) => lane.isChanging) || report.goose.length <= 2);
      stream.box = addFolded(parent, stream.name, isOpen, (box) => addGoose(box, stream));
    });
    addKey(parent);
  }
  const arrival = document.getElementById("arrival");
  for (const stream of streams) {
    if (stream.arrival) {
      const told = makeStream(octets.subarray(stream.at), stream.arrival);
      addArrival(arrival, stream, told, arrival.childElementCount === 0);
    }
  }
  connect();
  if (!readLink()) {
    showCursor();
  }
  timeline.redraw();
  showView();
  isFollowing = true;
  document.documentElement.dataset.ready = String(Math.round(performance.now()));
}

try {
  start();
} catch (error) {
  const text = document.createElement("p");
  text.className = "error";
  text.textContent = `The timeline cannot be drawn: ${error.message}`;
  document.getElementById("timeline").append(text);
  throw error;
}
