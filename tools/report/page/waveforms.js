"use strict";

// Waveforms of SV streams: a chart for each unit.

/** Rows of a stream for a chart: samples where they fit, or least and largest of each column of pixels. */
function waveformRows(stream, channels, view, columns) {
  const rows = [];
  const nothing = channels.map(() => null);
  for (const segment of stream.segments) {
    if (segment.count === 0 || segment.x > view.to || segment.x + segment.length < view.from) {
      continue;
    }
    const first = Math.max(0, segment.indexAt(view.from - segment.x) - 1);
    const end = Math.min(segment.count, segment.indexAt(view.to - segment.x) + 2);
    const count = end - first;
    if (rows.length > 0) {
      rows.push([segment.x, ...nothing]);  // lines do not join two courses
    }
    if (count <= 2 * columns && !segment.isEnvelope) {
      for (let i = first; i < end; ++i) {
        const has = segment.hasValue(i);
        rows.push([segment.x + segment.timeOf(i), ...channels.map((number) => has
            ? scaled(stream.channels[number], segment.channels[number].levels[0].min[i]) : null)]);
      }
      continue;
    }
    const parts = Math.min(columns, count);
    for (let part = 0; part < parts; ++part) {
      const from = first + Math.floor(part * count / parts);
      const to = first + Math.floor((part + 1) * count / parts);
      const left = segment.x + segment.timeOf(from);
      const low = [left];
      const high = [left + (segment.timeOf(Math.min(to, segment.count - 1)) - segment.timeOf(from)) / 2];
      for (const number of channels) {
        const range = segment.range(number, from, to);
        const told = stream.channels[number];
        low.push(range && scaled(told, range[0]));
        high.push(range && scaled(told, range[1]));
      }
      rows.push(low, high);
    }
  }
  return rows.length > 0 ? rows : [[view.from, ...nothing], [view.to, ...nothing]];
}

/** Marks of what is missing, and of what is not good. */
function paintStream(stream, channels, isShown, context, area, graph) {
  const fill = (style, y, height, spans) => {
    context.fillStyle = style;
    for (const [from, to] of spans) {
      const pixels = pixelsOf(graph, area, from, to);
      if (pixels) {
        context.fillRect(pixels[0], y, pixels[1], height);
      }
    }
  };
  context.save();
  fill(colour("missing"), area.y, area.h, stream.missing);
  const bad = colour("bad");
  channels.forEach((channel, place) => {
    if (isShown[place]) {
      fill(bad, area.y + area.h - 4, 4, stream.bad[channel]);
    }
  });
  paintMarks(context, area, graph, true);
  context.restore();
}

/** Adds the charts of something, below its name; those that are closed are made when they are opened. */
function addFolded(parent, name, isOpen, fill) {
  const box = make("details", null, { class: "stream" });
  box.append(make("summary", name));
  parent.append(box);
  let isMade = false;
  const makeOnce = () => {
    if (!isMade && box.open) {
      isMade = true;
      fill(box);
    }
  };
  box.open = isOpen;
  makeOnce();
  box.addEventListener("toggle", () => {
    makeOnce();
    timeline.redrawSoon();
    timeline.onCursor();
  });
  return box;
}

function addWaveforms(parent, stream) {
  for (const { name: what, channels } of stream.panels) {
    const names = channels.map((number) => stream.channels[number].name);
    const heading = make("h3", what);
    const boxes = make("div", null, { class: "channels" });
    const group = make("div", null, { class: "group" });
    group.append(heading, boxes);
    parent.append(group);
    const isShown = channels.map(() => true);
    const colours = () => channels.map((number) => colour(stream.channels[number].colour));
    const chart = new Chart(group, {
      labels: channels.map((number) => `#${number}`),  // names need not differ
      label: `${stream.name}: ${what}: ${names.join(", ")}`,
      height: 190,
      rows: (view, columns) => waveformRows(stream, channels, view, columns),
      underlay: (context, area, graph) => paintStream(stream, channels, isShown, context, area, graph),
      colours,
      snap: (instant) => snapTo(stream, instant),
      options: { colors: colours(), visibility: isShown },
    });
    channels.forEach((number, place) => {
      const label = make("label");
      const box = make("input", null, { type: "checkbox" });
      box.checked = true;
      box.addEventListener("change", () => {
        isShown[place] = box.checked;
        chart.graph.setVisibility(place, box.checked);
        stream.hidden[box.checked ? "delete" : "add"](number);
        timeline.onCursor();
      });
      const swatch = make("span", null, { class: "swatch" });
      swatch.style.background = `var(--${stream.channels[number].colour})`;
      label.append(box, swatch, make("span", stream.channels[number].name));
      boxes.append(label);
    });
  }
}

/** The instant of the sample that is nearest. */
function snapTo(stream, instant) {
  const near = nearestValue(stream, instant);
  return near && !near.segment.isEnvelope
      ? near.segment.start + BigInt(near.segment.timeOf(near.index)) : instant;
}

/** Residuals and distances of arrival of a stream. */
function addArrival(parent, stream, told, isOpen) {
  addFolded(parent, stream.name, isOpen, (box) => {
    for (const [channel, text] of [[0, "Residual, \u00b5s"], [1, "Interarrival, \u00b5s"]]) {
      const group = make("div", null, { class: "group" });
      group.append(make("h3", text));
      box.append(group);
      new Chart(group, {
        labels: [text],
        label: `${stream.name}: ${text}`,
        height: 130,
        rows: (view, columns) => waveformRows(told, [channel], view, columns),
        underlay: (context, area, graph) => paintMarks(context, area, graph, true),
        colours: () => [colour("accent")],
        options: { colors: [colour("accent")] },
      });
    }
  });
}
