"use strict";

// The time axis that all charts share, and its cursors.

const kLeastSpan = 2000;  // nanoseconds
const kGutter = 64;
const kNear = 8;  // pixels from a mark, or from the ends of a chart

const whole = { from: report.from, to: report.to };

class Timeline {
  constructor() {
    this.view = { ...whole };
    this.charts = [];
    this.cursors = [null, null];
    this.isWaiting = false;
    this.onView = () => {};
    this.onCursor = () => {};
  }

  get span() {
    return this.view.to - this.view.from;
  }

  setView(from, to) {
    const most = (whole.to - whole.from) * 1.1 + kLeastSpan;
    const span = Math.min(most, Math.max(kLeastSpan, to - from));
    let start = (from + to - span) / 2;
    const slack = span / 2;
    start = Math.max(whole.from - slack, Math.min(whole.to + slack - span, start));
    this.view = { from: start, to: start + span };
    this.redrawSoon();
    this.onView();
  }

  zoom(factor, around) {
    const middle = around === undefined ? this.middle() : around;
    this.setView(middle - (middle - this.view.from) * factor, middle + (this.view.to - middle) * factor);
  }

  /** What is zoomed at: the cursor where it is shown, or else the middle. */
  middle() {
    const cursor = this.cursors[0] === null ? null : Number(this.cursors[0] - base);
    const isShown = cursor !== null && cursor >= this.view.from && cursor <= this.view.to;
    return isShown ? cursor : (this.view.from + this.view.to) / 2;
  }

  move(part) {
    const by = this.span * part;
    this.setView(this.view.from + by, this.view.to + by);
  }

  /** @param instant  nanoseconds since 1970; null for none */
  setCursor(number, instant) {
    this.cursors[number] = instant;
    this.placeMarks();
    this.onCursor();
    this.onView();
  }

  /** Moves the view where the cursor has left it. */
  showCursor(number) {
    const at = Number(this.cursors[number] - base);
    if (at < this.view.from || at > this.view.to) {
      this.setView(at - this.span / 2, at + this.span / 2);
    }
  }

  /** To be called when charts may have another width.
      @param pixels  of a canvas for one of the page; those of the screen if not said */
  resize(pixels) {
    for (const chart of this.charts) {
      chart.resize(pixels);
    }
    this.redrawSoon();
  }

  redrawSoon() {
    if (!this.isWaiting) {
      this.isWaiting = true;
      requestAnimationFrame(() => this.redraw());
    }
  }

  redraw() {
    this.isWaiting = false;
    for (const chart of this.charts) {
      chart.draw(this.view);
    }
    this.placeMarks();
  }

  placeMarks() {
    for (const chart of this.charts) {
      chart.placeMarks(this.cursors);
    }
  }
}

const timeline = new Timeline();

/** Ticks at round instants of UTC. */
function timeTicks(from, to, pixels) {
  const hasRoom = ([length, first, end]) => (to - from) / length <= Math.max(2, pixels / (20 + 7 * (end - first)));
  const [step, first, end] = report.steps.find(hasRoom) || report.steps[report.steps.length - 1];
  // The base is no round instant itself.
  const rest = Number(base % BigInt(step));
  const ticks = [];
  for (let i = Math.ceil((from + rest) / step); i * step - rest <= to; ++i) {
    ticks.push({ v: i * step - rest, label: instantText(base + BigInt(i * step - rest)).slice(first, end) });
  }
  return ticks;
}

/** Drag zooms, Shift and drag moves; fingers scroll the page, and two of them zoom. */
function interactionOf() {
  const usual = Dygraph.defaultInteractionModel;
  return {
    ...usual,
    touchstart: (event, chart, context) => event.touches.length > 1 && usual.touchstart(event, chart, context),
    touchmove: (event, chart, context) => event.touches.length > 1 && usual.touchmove(event, chart, context),
    touchend: (event, chart, context) => context.initialTouches && usual.touchend(event, chart, context),
    dblclick: () => timeline.setView(whole.from, whole.to),
    wheel: (event, chart) => {
      if (!event.ctrlKey && !event.metaKey) {
        return;
      }
      event.preventDefault();
      timeline.zoom(event.deltaY > 0 ? 1.25 : 0.8, chart.toDataXCoord(chart.eventToDomCoords(event)[0]));
    },
  };
}

/** A chart of the time axis.
    @param parent  where it is added
    @param wish    labels: of its lines; rows(view, columns): x and their values; underlay(ctx, area,
                   chart): what is below them; click(pixel): takes a click, or not; options: of the library; height: in pixels; label: for
                   those who do not see it */
class Chart {
  constructor(parent, wish) {
    this.wish = wish;
    this.box = make("div", null, { class: `chart ${wish.kind || ""}` });
    this.plot = make("div", null, { class: "plot", role: "img", "aria-label": wish.label });
    this.plot.style.height = `${wish.height}px`;
    this.box.append(this.plot);
    this.marks = ["mark", "mark second"].map((kind) => {
      const mark = make("div", null, { class: kind });
      mark.hidden = true;
      this.box.append(mark);
      return mark;
    });
    parent.append(this.box);
    this.isDrawing = true;
    this.graph = new Dygraph(this.plot, this.rows(timeline.view), {
      labels: ["t", ...wish.labels],
      dateWindow: [timeline.view.from, timeline.view.to],
      legend: "never",
      showLabelsOnHighlight: false,
      highlightCircleSize: 0,
      strokeWidth: 1.2,
      animatedZooms: false,
      zoomCallback: (from, to) => this.isDrawing || timeline.setView(from, to),
      drawCallback: (graph) => this.follow(graph),
      underlayCallback: (context, area, graph) => this.wish.underlay && this.wish.underlay(context, area, graph),
      interactionModel: interactionOf(),
      axisLineColor: colour("line"),
      gridLineColor: colour("grid"),
      xRangePad: 0,
      yRangePad: 6,
      rightGap: 8,
      ...wish.options,
      axes: {
        x: { ticker: timeTicks, axisLabelWidth: 132, axisLabelFormatter: (x) => String(x), drawGrid: true },
        y: {
          axisLabelWidth: kGutter,
          pixelsPerLabel: 24,
          axisLabelFormatter: (y, granularity, options, graph) => {
            const [low, high] = graph.yAxisRange();
            return axisText(y, high - low);
          },
          ...(wish.axis || {}),
        },
      },
    });
    this.isDrawing = false;
    this.drawn = { ...timeline.view };
    this.listen();
    timeline.charts.push(this);
  }

  /** The library takes clicks near to values only, and lanes have none. */
  listen() {
    let start = null;
    this.plot.addEventListener("mousedown", (event) => { start = event.button === 0 ? event : null; });
    this.plot.addEventListener("click", (event) => {
      const moved = start === null ? Infinity : Math.hypot(event.clientX - start.clientX, event.clientY - start.clientY);
      if (moved < 3) {
        this.click(event);
      }
    });
  }

  get columns() {
    return Math.max(100, (this.plot.clientWidth || 800) - kGutter);
  }

  rows(view) {
    return this.wish.rows(view, this.columns);
  }

  /** What the library itself has moved, as by dragging with Shift. */
  follow(graph) {
    if (this.isDrawing || !graph) {
      return;
    }
    const [from, to] = graph.xAxisRange();
    const near = this.drawn && Math.abs(from - this.drawn.from) < 1 && Math.abs(to - this.drawn.to) < 1;
    if (!near) {
      this.drawn = { from, to };
      timeline.setView(from, to);
    }
  }

  draw(view) {
    if (this.plot.offsetParent === null) {
      this.drawn = null;  // in what is closed
      return;
    }
    this.isDrawing = true;
    this.graph.updateOptions({ file: this.rows(view), dateWindow: [view.from, view.to], ...this.colours() });
    this.isDrawing = false;
    this.drawn = { ...view };
  }

  colours() {
    return {
      axisLineColor: colour("line"),
      gridLineColor: colour("grid"),
      ...(this.wish.colours ? { colors: this.wish.colours() } : {}),
    };
  }

  resize(pixels) {
    if (this.plot.offsetParent !== null) {
      this.isDrawing = true;
      this.graph.updateOptions({ pixelRatio: pixels || null }, true);
      this.graph.resize();
      this.isDrawing = false;
    }
  }

  click(event) {
    const pixel = this.graph.eventToDomCoords(event)[0];
    const area = this.graph.getArea();
    if (pixel < area.x - kNear || pixel > area.x + area.w + kNear) {
      return;
    }
    if (this.wish.click && this.wish.click(pixel)) {
      return;
    }
    const x = this.graph.toDataXCoord(pixel);
    const instant = base + BigInt(Math.round(x));
    timeline.setCursor(event.shiftKey ? 1 : 0, this.wish.snap ? this.wish.snap(instant) : instant);
  }

  placeMarks(cursors) {
    const area = this.graph.getArea();
    cursors.forEach((cursor, number) => {
      const mark = this.marks[number];
      const x = cursor === null ? NaN : this.graph.toDomXCoord(Number(cursor - base));
      mark.hidden = !(x >= area.x - 1 && x <= area.x + area.w + 1);
      if (!mark.hidden) {
        mark.style.left = `${x}px`;
        mark.style.height = `${area.y + area.h}px`;
      }
    });
  }
}

/** Pixels of a span of time in a chart; null outside. At least two wide. */
function pixelsOf(graph, area, from, to) {
  const left = Math.max(area.x, graph.toDomXCoord(from));
  const right = Math.min(area.x + area.w, graph.toDomXCoord(to));
  return right < area.x || left > area.x + area.w ? null : [left, Math.max(2, right - left)];
}
