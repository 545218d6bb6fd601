"use strict";

// The finding that is chosen, by its mark, by a key or by its row in the table: told below the time axis'
// buttons, with ways to its row and to the next one.

const kSeverities = ["note", "warning", "error"];

const kMarks = report.marks.map((mark, number) => ({ number, at: mark[0], severity: mark[1], until: mark[3] || mark[0] }));

let chosenFinding = null;  // its number among report.marks

/** The row of a finding in the table; null where the table has no room for it. */
function rowOfFinding(number) {
  const row = report.marks[number][2];
  return row > 0 ? document.getElementById(`findings${row}`) : null;
}

/** What the table says of a finding: texts by the headings of their columns. */
function wordsOfFinding(number) {
  const row = rowOfFinding(number);
  if (!row) {
    return { LEVEL: report.marks[number][1], TEXT: "The table has no room for this one: tal-iec61850 check lists all." };
  }
  const headings = [...row.closest("table").tHead.rows[0].cells];
  return Object.fromEntries(headings.map((heading, i) => [heading.textContent, row.cells[i].textContent]));
}

/** The findings whose marks are near to a pixel of a chart, the worst first. */
function findingsNear(graph, x) {
  const near = [];
  report.marks.forEach(([at], number) => {
    if (Math.abs(graph.toDomXCoord(at) - x) <= kNear) {
      near.push(number);
    }
  });
  const rank = (number) => kSeverities.indexOf(report.marks[number][1]);
  return near.sort((a, b) => rank(b) - rank(a) || a - b);
}

/** Tells a finding, and puts the cursor there.
    @param others  those at the same place, itself included */
function chooseFinding(number, others) {
  chosenFinding = number;
  for (const row of document.querySelectorAll("#findings tr.chosen")) {
    row.classList.remove("chosen");
  }
  const row = rowOfFinding(number);
  if (row) {
    row.classList.add("chosen");
  }
  tellFinding(number, others || [number]);
  timeline.setCursor(0, base + BigInt(report.marks[number][0]));
  timeline.showCursor(0);
  timeline.redrawSoon();
}

function forgetFinding() {
  chosenFinding = null;
  document.getElementById("finding").hidden = true;
  for (const row of document.querySelectorAll("#findings tr.chosen")) {
    row.classList.remove("chosen");
  }
  timeline.redrawSoon();
}

function tellFinding(number, others) {
  const words = wordsOfFinding(number);
  const text = make("p");
  text.append(make("strong", words.LEVEL, { class: words.LEVEL }), ` ${words.FINDING || ""}`);
  if (words["SVID/GOCBREF"]) {
    text.append(", ", make("strong", words["SVID/GOCBREF"]));
  }
  text.append(`: ${words.TEXT}`);
  const ways = make("p", null, { class: "ways" });
  const button = (label, help, act) => {
    const made = make("button", label, { type: "button", title: help });
    made.addEventListener("click", act);
    ways.append(made);
  };
  button("Previous", "The finding before (p)", () => stepFinding(-1));
  button("Next", "The next finding (n)", () => stepFinding(1));
  const row = rowOfFinding(number);
  if (row) {
    ways.append(make("a", "Row in the table", { href: `#${row.id}` }));
  }
  ways.append(make("span", `${number + 1} of ${report.marks.length}${others.length > 1
      ? `; ${others.length} are here: click again for the next of them` : ""}`));
  if (words["FILE@POSITION"]) {
    ways.append(make("code", words["FILE@POSITION"], { title: "tal-iec61850 show tells this packet" }));
  }
  button("Close", "Close (Escape)", forgetFinding);
  const panel = document.getElementById("finding");
  panel.replaceChildren(text, ways);
  panel.hidden = false;
}

/** The next finding, or the one before: of the chosen one, else of the cursor or of the start. */
function stepFinding(direction) {
  const { marks } = report;
  if (marks.length === 0) {
    return;
  }
  let next = chosenFinding === null ? null : chosenFinding + direction;
  if (next === null) {
    const at = timeline.cursors[0] === null ? timeline.view.from : Number(timeline.cursors[0] - base);
    const after = marks.findIndex((mark) => mark[0] >= at);
    next = after < 0 ? marks.length - 1 : direction > 0 ? after : after - 1;
  }
  const focused = document.activeElement;
  const isInside = document.getElementById("finding").contains(focused);
  const label = isInside ? focused.textContent : "";
  chooseFinding(Math.max(0, Math.min(marks.length - 1, next)));
  if (isInside) {  // its buttons are others now
    const again = [...document.querySelectorAll("#finding button")].find((each) => each.textContent === label);
    again.focus();
  }
}

/** Adds the lane of marks, which can be clicked. */
function addFindingMarks(parent) {
  const chart = addLanes(parent, "Findings", [
    { name: "findings", paint: (context, area, graph) => paintMarks(context, area, graph, false) },
  ]);
  chart.wish.click = (x) => {
    const near = findingsNear(chart.graph, x);
    if (near.length === 0) {
      return false;
    }
    chooseFinding(near[(near.indexOf(chosenFinding) + 1) % near.length], near);
    return true;
  };
  chart.plot.id = "findingMarks";
  chart.plot.addEventListener("mousemove", (event) => {
    const near = findingsNear(chart.graph, chart.graph.eventToDomCoords(event)[0]);
    const words = near.length > 0 ? wordsOfFinding(near[0]) : null;
    const more = near.length > 1 ? ` (and ${near.length - 1} more here)` : "";
    chart.plot.title = words ? `${words.LEVEL} ${words.FINDING || ""}: ${words.TEXT}${more}` : "";
    chart.plot.classList.toggle("onMark", near.length > 0);
  });
}

/** The finding that a link of the table leads to is chosen. */
function chooseByRow(row) {
  const number = report.marks.findIndex((mark) => mark[2] > 0 && `findings${mark[2]}` === row.id);
  if (number >= 0) {
    chooseFinding(number);
  }
}

/** Findings as marks: lines over a waveform, or signs on the axis. */
function paintMarks(context, area, graph, areLines) {
  const [from, to] = graph.xAxisRange();
  const inSight = kMarks.filter((mark) => mark.at <= to && mark.until >= from);
  for (const severity of kSeverities) {  // the worst above the others
    let last = -Infinity;
    context.strokeStyle = context.fillStyle = colour(severity);
    for (const mark of inSight.filter((each) => each.severity === severity)) {
      const isChosen = mark.number === chosenFinding;
      const x = Math.round(graph.toDomXCoord(Math.max(mark.at, from))) + 0.5;
      if (!areLines && mark.until > mark.at) {  // for as long as it lasted
        context.fillRect(x, area.y + area.h / 2 - 1, Math.min(graph.toDomXCoord(mark.until), area.x + area.w) - x, 2);
      }
      if (mark.at < from || (!isChosen && x - last < 2)) {
        continue;
      }
      last = x;
      if (!areLines) {
        paintSign(context, severity, x, area.y + area.h / 2, isChosen);
      } else if (severity === "error" || isChosen) {
        paintLine(context, area, x, isChosen);
      }
    }
  }
}

function paintLine(context, area, x, isChosen) {
  context.lineWidth = 1;
  context.globalAlpha = isChosen ? 1 : 0.45;
  context.setLineDash([3, 3]);
  context.beginPath();
  context.moveTo(x, area.y);
  context.lineTo(x, area.y + area.h);
  context.stroke();
  context.setLineDash([]);
  context.globalAlpha = 1;
}

function paintSign(context, severity, x, y, isChosen) {
  context.beginPath();
  if (severity === "error") {
    context.moveTo(x - 5, y - 6);
    context.lineTo(x + 5, y - 6);
    context.lineTo(x, y + 6);
  } else if (severity === "warning") {
    context.moveTo(x, y - 6);
    context.lineTo(x + 5, y);
    context.lineTo(x, y + 6);
    context.lineTo(x - 5, y);
  } else {
    context.arc(x, y, 3.5, 0, 2 * Math.PI);
  }
  context.closePath();
  context.fill();
  if (isChosen) {
    const ink = context.strokeStyle;
    context.lineWidth = 2;
    context.strokeStyle = colour("text");
    context.stroke();
    context.strokeStyle = ink;
  }
}
