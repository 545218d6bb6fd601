"use strict";

// States of GOOSE members as lanes.

const kLaneHeight = 26;
const kNameHeight = 14;
const kLaneFont = "11px system-ui, sans-serif";

/** Whether the names of lanes do not fit the gutter. */
function areLongNames(lanes) {
  const context = document.createElement("canvas").getContext("2d");
  context.font = kLaneFont;
  return lanes.some((lane) => context.measureText(lane.name).width > kGutter - 8);
}

/** A chart of lanes: names in the gutter, or above each where one is too long for that.
    @param lanes  name; paint(context, area, graph, top, height) */
function addLanes(parent, label, lanes) {
  const areLong = areLongNames(lanes);
  const nameHeight = areLong ? kNameHeight : 0;
  const height = lanes.length * (kLaneHeight + nameHeight);
  const axis = 22;
  return new Chart(parent, {
    kind: "lanes",
    labels: ["lanes"],
    label,
    height: height + axis,
    rows: (view) => [[view.from, null], [view.to, null]],
    underlay: (context, area, graph) => {
      context.save();
      context.beginPath();
      context.rect(area.x, area.y, area.w, area.h);
      context.clip();
      context.font = kLaneFont;
      context.textBaseline = "middle";
      lanes.forEach((lane, number) => {
        const top = area.y + area.h * number / lanes.length;
        if (areLong) {
          context.fillStyle = colour("text");
          context.fillText(lane.name, area.x + 4, top + kNameHeight / 2 + 3);
        }
        lane.paint(context, area, graph, top + nameHeight, area.h / lanes.length - nameHeight);
      });
      context.restore();
    },
    options: { yRangePad: 0, valueRange: [0, lanes.length], colors: [colour("accent")] },
    axis: {
      drawGrid: false,
      ticker: () => areLong ? []
          : lanes.map((lane, number) => ({ v: lanes.length - number - 0.5, label: lane.name })),
      axisLabelFormatter: (y) => String(y),
    },
  });
}

/** A value of a member: what is true is filled, what is false is a line, others are boxes, none is dotted. */
function paintValue(lane, value, context, inks, left, width, low, size) {
  if (value === null) {
    context.fillStyle = inks.line;
    for (let x = left; x < left + width; x += 6) {
      context.fillRect(x, low + size / 2, 3, 1);
    }
    return;
  }
  if (lane.isBits && (value === lane.on || value === lane.off)) {
    const isOn = value === lane.on;
    context.fillStyle = isOn ? inks.on : inks.line;
    context.fillRect(left, isOn ? low : low + size - 2, width, isOn ? size : 2);
    return;
  }
  const words = lane.values[value];
  context.fillStyle = inks.other;
  context.fillRect(left, low, width, size);
  context.fillStyle = inks.text;
  if (width > 12 && context.measureText(words).width <= width - 8) {
    context.fillText(words, left + 4, low + size / 2 + 1);
  }
}

/** Spans of one member, and when its quality is not good. */
function paintLane(lane, context, area, graph, top, height) {
  const [from, to] = graph.xAxisRange();
  const inks = Object.fromEntries(["on", "other", "text", "line", "bad"].map((name) => [name, colour(name)]));
  const low = top + 5;
  const size = height - 10;
  let lastRight = -1;
  for (const [start, end, value] of lane.spans) {
    if (end < from || start > to) {
      continue;
    }
    const pixels = pixelsOf(graph, area, start, end);
    if (!pixels || (pixels[0] + pixels[1] <= lastRight + 0.5 && value !== lane.on)) {
      continue;
    }
    const [left, width] = pixels;
    lastRight = left + width;
    paintValue(lane, value, context, inks, left, width, low, size);
    if (left > area.x && value !== null) {
      context.fillStyle = inks.text;
      context.fillRect(left - 0.5, low - 2, 1, size + 4);  // where it changed
    }
  }
  context.fillStyle = inks.bad;
  for (const [start, end] of lane.bad) {
    const pixels = pixelsOf(graph, area, start, end);
    if (pixels) {
      context.fillRect(pixels[0], low + size - 3, pixels[1], 3);
    }
  }
}

/** Lanes of a stream that are shown at first: those that change, or all where none does. */
function firstLanes(stream) {
  const changing = stream.lanes.filter((lane) => lane.isChanging);
  return changing.length > 0 ? changing : stream.lanes;
}

function addGoose(parent, stream) {
  const draw = (box, lanes) => addLanes(box, `${stream.name}: ${lanes.map((lane) => lane.name).join(", ")}`,
      lanes.map((lane) => ({
        name: lane.name,
        paint: (...where) => paintLane(lane, ...where),
      })));
  const first = firstLanes(stream);
  draw(parent, first);
  const others = stream.lanes.filter((lane) => !first.includes(lane));
  if (others.length > 0) {
    addFolded(parent, `${others.length} that ${others.length === 1 ? "does" : "do"} not change`, false,
        (box) => draw(box, others)).classList.add("others");
  }
}

/** The value of a lane at an offset; null where it is not known. */
function laneAt(lane, offset) {
  const isIn = ([start, end]) => offset >= start && offset < end;
  const span = lane.spans.find(isIn);
  return span && span[2] !== null ? { text: lane.values[span[2]], isBad: lane.bad.some(isIn) } : null;
}
