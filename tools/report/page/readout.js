"use strict";

// What there is at the cursors: times, values, RMS and phasors.

/** The value of a channel at an instant, exactly as it was sampled. */
function valueAt(stream, number, instant) {
  const near = nearestValue(stream, instant);
  if (near === null) {
    return { text: "no sample" };
  }
  const { segment, index } = near;
  const channel = stream.channels[number];
  const unit = channel.unit ? ` ${channel.unit}` : "";
  if (segment.isEnvelope) {
    const range = segment.range(number, index, index + 1);
    return { text: range ? `${scaled(channel, range[0])} to ${scaled(channel, range[1])}${unit}` : "no sample" };
  }
  if (!segment.hasValue(index)) {
    return { text: "missing", isBad: true };
  }
  const value = scaled(channel, segment.channels[number].levels[0].min[index]);
  const at = segment.x + segment.timeOf(index);
  const span = stream.bad[number].find(([from, to]) => at >= from && at < to);
  return {
    value,
    text: `${value}${unit}`,
    quality: span ? stream.qualities[span[2]] : "",
    cycle: measureCycle(segment, number, index, stream.frequency),
  };
}

function degrees(radians) {
  const turned = radians * 180 / Math.PI;
  const folded = turned - 360 * Math.round(turned / 360);
  const rounded = Math.round(folded * 10) / 10;
  return (rounded === -180 ? 180 : rounded + 0).toFixed(1);  // + 0: no -0.0
}

/** The channel whose phasor angles are told against: the first voltage, else the first. */
function referenceOf(stream) {
  const voltage = stream.channels.findIndex((channel) => channel.unit === "V");
  return voltage < 0 ? 0 : voltage;
}

function row(cells, kind) {
  const line = make("tr");
  cells.forEach((cell, i) => line.append(make(kind || "td", cell, i > 0 ? { class: "number" } : {})));
  return line;
}

/** Whether a stream is shown. */
function isOpen(stream) {
  return Boolean(stream.box) && !stream.box.closest("details:not([open])");
}

function showCursor() {
  const [first, second] = timeline.cursors;
  const readout = document.getElementById("cursor");
  readout.replaceChildren();
  document.getElementById("phasors").replaceChildren();
  document.getElementById("atCursor").hidden = first === null;
  const stage = document.getElementById("stage");
  const before = stage.className;
  stage.classList.toggle("split", first !== null);
  stage.classList.toggle("both", first !== null && second !== null);
  if (stage.className !== before) {
    timeline.resize();
  }
  if (first === null) {
    return;
  }
  const times = make("p");
  times.append(make("strong", "Cursor "), make("span", instantText(first), { id: "cursorTime" }));
  if (second !== null) {
    times.append(make("br"), make("strong", "Second "), make("span", instantText(second), { id: "secondTime" }),
        make("br"), make("strong", "\u0394t "), make("span", lengthText(Number(second - first)), { id: "difference" }));
  }
  readout.append(times);
  for (const stream of streams.filter(isOpen)) {
    showStream(readout, stream, first, second);
  }
  showLanes(readout, first, second);
}

/** The line of a channel: its values at the cursors, and its cycle where any channel has one. */
function channelLine(channel, value, other, hasCycles, zero) {
  const cells = [channel.name, value.text];
  if (hasCycles) {
    const cycle = value.cycle;
    const unit = channel.unit ? ` ${channel.unit}` : "";
    const angle = cycle && zero ? ` \u2220 ${degrees(cycle.angle - zero.angle)}\u00b0` : "";
    // What counts are shifted by makes another RMS of them.
    cells.push(cycle && !channel.offset ? quantityText(Math.abs(scaledLength(channel, cycle.rms))) + unit : "",
        cycle ? quantityText(Math.abs(scaledLength(channel, cycle.magnitude))) + unit + angle : "");
  }
  if (other) {
    const both = value.value !== undefined && other.value !== undefined;
    cells.push(other.text, both ? quantityText(other.value - value.value) : "");
  }
  const line = row(cells);
  if (value.isBad) {
    line.classList.add("bad");
  }
  if (value.quality) {
    line.append(make("td", value.quality, { class: "bad" }));
  }
  return line;
}

/** What RMS and phasors are of, or why there are none. */
function cycleText(stream, near, hasCycles, reference) {
  return near && near.segment.isEnvelope ? "The page has least and largest values here, no samples."
      : !hasCycles && !stream.frequency ? "RMS and phasor: none, the samples have no frequency of a power system."
      : !hasCycles ? "RMS and phasor: not known, a whole cycle of samples before the cursor is needed."
      : `RMS and phasor: of the cycle that ends here, at ${quantityText(stream.frequency)} Hz; angles to ${stream.channels[reference].name}.`;
}

function showStream(readout, stream, first, second) {
  const table = make("table");
  table.append(make("caption", stream.name));
  const values = stream.channels.map((channel, number) => valueAt(stream, number, first));
  const hasCycles = values.some((value) => value.cycle);
  table.append(row(["channel", "value", ...(hasCycles ? ["RMS", "phasor"] : []),
      ...(second !== null ? ["second", "difference"] : [])], "th"));
  const reference = referenceOf(stream);
  const zero = values[reference].cycle;
  stream.channels.forEach((channel, number) => {
    if (!stream.hidden.has(number)) {
      const other = second !== null ? valueAt(stream, number, second) : null;
      const line = channelLine(channel, values[number], other, hasCycles, zero);
      line.dataset.channel = number;
      table.append(line);
    }
  });
  readout.append(table);
  const text = cycleText(stream, nearestValue(stream, first), hasCycles, reference);
  const hasCounts = stream.channels.some((channel, number) => !channel.unit && !stream.hidden.has(number));
  readout.append(make("p", hasCounts ? `${text} Values without a unit are counts.` : text, { class: "hint" }));
  if (hasCycles && zero) {
    drawPhasors(stream, values, zero.angle);
  }
}

function showLanes(readout, first, second) {
  const at = Number(first - base);
  const then = second === null ? null : Number(second - base);
  for (const stream of report.goose.filter(isOpen)) {
    const table = make("table");
    table.append(make("caption", stream.name));
    table.append(row(then === null ? ["member", "value"] : ["member", "value", "second"], "th"));
    for (const lane of firstLanes(stream)) {
      const texts = [at, then].filter((each) => each !== null).map((offset) => {
        const value = laneAt(lane, offset);
        return value === null ? "not known" : value.text + (value.isBad ? " (quality not good)" : "");
      });
      table.append(row([lane.name, ...texts]));
    }
    readout.append(table);
  }
}

/** The name of a phasor, beyond its end, and beyond names that are there already.
    @param labels  places of these; the new one is added */
function phasorLabel(labels, size, angle, name) {
  let away = size + 11;
  const place = () => [away * Math.cos(angle), -away * Math.sin(angle)];
  const isTaken = ([x, y]) => labels.some((other) => Math.abs(other[0] - x) < 16 && Math.abs(other[1] - y) < 10);
  while (isTaken(place()) && away < size + 50) {
    away += 4;
  }
  const [x, y] = place();
  labels.push([x, y]);
  return makeSvg("text", { x, y: y + 4, "text-anchor": "middle" }, name);
}

/** The phasors of a stream, those of each unit as long as their longest. */
function drawPhasors(stream, values, zero) {
  const figure = make("figure");
  const svg = makeSvg("svg", { viewBox: "-128 -128 256 256", role: "img", width: 230, height: 230 });
  svg.append(makeSvg("title", {}, `Phasors of ${stream.name}`));
  for (const radius of [50, 100]) {
    svg.append(makeSvg("circle", { r: radius, fill: "none", stroke: "var(--grid)" }));
  }
  svg.append(makeSvg("path", { d: "M-105 0H105M0 -105V105", stroke: "var(--line)", fill: "none" }));
  const longest = Object.create(null);  // by unit, whatever it is
  const labels = [];
  values.forEach((value, number) => {
    const unit = stream.channels[number].unit;
    longest[unit] = Math.max(longest[unit] || 0, value.cycle ? Math.abs(value.cycle.magnitude) : 0);
  });
  values.forEach((value, number) => {
    const channel = stream.channels[number];
    const share = value.cycle && longest[channel.unit] > 0 ? value.cycle.magnitude / longest[channel.unit] : 0;
    if (share < 0.02 || stream.hidden.has(number)) {
      return;
    }
    const size = (channel.unit === "A" ? 72 : 100) * share;
    const angle = value.cycle.angle - zero;
    const x = size * Math.cos(angle);
    const y = -size * Math.sin(angle);
    const style = `var(--${channel.colour})`;
    const dashes = channel.unit === "A" ? "4 2" : "none";
    svg.append(makeSvg("line", { x1: 0, y1: 0, x2: x, y2: y, stroke: style, "stroke-width": 2, "stroke-dasharray": dashes }),
        makeSvg("circle", { cx: x, cy: y, r: 3, fill: style }),
        phasorLabel(labels, size, angle, channel.name));
  });
  const told = Object.entries(longest).filter(([, most]) => most > 0).map(([unit, most]) => {
    const channel = stream.channels.find((each) => each.unit === unit);
    return `${quantityText(Math.abs(scaledLength(channel, most)))} ${unit || "counts"}`;
  });
  figure.append(svg, make("figcaption", `${stream.name}; longest ${told.join(", ")}`));
  document.getElementById("phasors").append(figure);
}
