// The lanes: a thread each, with its spans, over an axis of time or of records, and the overview above them.

const LANE = 36, SPAN_TOP = 5, SPAN_HEIGHT = 19, TICK_TOP = 27, TICK_HEIGHT = 5;
const STEPS = [1, 2, 5, 10, 20, 50, 100, 200, 500, 1000, 2000, 5000, 10000, 15000, 30000, 60000, 120000, 300000, 600000,
  900000, 1800000, 3600000, 7200000, 14400000, 21600000, 43200000, 86400000];

/** A canvas whose units are the page's pixels. */
class Surface {
  constructor(canvas) {
    this.canvas = canvas;
    this.pen = canvas.getContext("2d");
  }
  /** Clears it at its present size. */
  begin(height) {
    if (height !== undefined) this.canvas.style.height = height + "px";
    const ratio = window.devicePixelRatio || 1;
    this.width = this.canvas.clientWidth;
    this.height = this.canvas.clientHeight;
    const width = Math.round(this.width * ratio), tall = Math.round(this.height * ratio);
    if (this.canvas.width !== width || this.canvas.height !== tall) {
      this.canvas.width = width;
      this.canvas.height = tall;
    }
    this.pen.setTransform(ratio, 0, 0, ratio, 0, 0);
    this.pen.clearRect(0, 0, this.width, this.height);
    return this.pen;
  }
}

class Timeline {
  /** `on` hears: jump(record), range({axis, from, to} or null), view(from, to), hover(span or null, event). */
  constructor(elements, on) {
    this.overview = new Surface(elements.overview);
    this.ruler = new Surface(elements.ruler);
    this.lanes = new Surface(elements.lanes);
    this.scroller = elements.scroller;
    this.on = on;
    this.run = null;
    this.axis = "time";
    this.scheduled = false;
    this.brushing = null;
    this.top = 0; // how far the lanes are scrolled
    this.listen();
    this.readColours();
  }

  readColours() {
    const style = getComputedStyle(document.documentElement);
    const colour = (name) => style.getPropertyValue("--" + name).trim();
    this.colours = Object.fromEntries(["back", "panel", "line", "text", "muted", "accent", "error", "warning", "hit", "brush"]
      .map((name) => [name, colour(name)]));
    this.saturation = colour("span-saturation");
    this.lightness = colour("span-lightness");
    this.edge = colour("edge-lightness");
    this.sans = style.getPropertyValue("--sans");
    this.hatch = this.makeHatch();
    this.draw();
  }

  /** Stripes for spans without an end line. */
  makeHatch() {
    const tile = document.createElement("canvas");
    tile.width = tile.height = 8;
    const pen = tile.getContext("2d");
    pen.strokeStyle = this.colours.back;
    pen.globalAlpha = 0.65;
    pen.lineWidth = 2;
    for (const shift of [-8, 0, 8]) {
      pen.beginPath();
      pen.moveTo(shift, 8);
      pen.lineTo(shift + 8, 0);
      pen.stroke();
    }
    return this.lanes.pen.createPattern(tile, "repeat");
  }

  fill(command) { return `hsl(${this.run.hue.get(command)} ${this.saturation} ${this.lightness})`; }
  stroke(command) { return `hsl(${this.run.hue.get(command)} ${this.saturation} ${this.edge})`; }
  dot(thread) { return `hsl(${(thread * 137 + 205) % 360} ${this.saturation} ${this.edge})`; }

  show(run, filter) {
    this.run = run;
    this.filter = filter;
    this.current = -1;
    this.axis = run.end > run.begin ? "time" : "order";
    this.fit();
  }

  setAxis(axis) {
    this.axis = axis;
    this.fit();
  }

  get whole() {
    return this.axis === "time" ? [this.run.begin, Math.max(this.run.end, this.run.begin + 1)] : [0, Math.max(this.run.count, 1)];
  }
  place(record) { return this.axis === "time" ? this.run.at[record] : record; }
  spanFrom(span) { return this.axis === "time" ? span.begin : span.first; }
  spanTo(span) { return this.axis === "time" ? span.end : span.last + 1; }
  x(place) { return (place - this.from) / (this.to - this.from) * this.lanes.width; }
  atX(x) { return this.from + x / Math.max(1, this.lanes.width) * (this.to - this.from); }

  fit() {
    const [from, to] = this.whole;
    const margin = (to - from) * 0.004;
    this.setView(from - margin, to + margin);
  }

  /** Shows that part, kept within the run and not below a few milliseconds or records. */
  setView(from, to) {
    const [begin, end] = this.whole;
    const margin = (end - begin) * 0.004;
    const least = Math.min(this.axis === "time" ? 4 : 6, end - begin + 2 * margin);
    let size = Math.min(Math.max(to - from, least), end - begin + 2 * margin);
    from = Math.min(Math.max((from + to - size) / 2, begin - margin), end + margin - size);
    this.from = from;
    this.to = from + size;
    this.on.view(this.from, this.to);
    this.draw();
  }

  zoom(factor, x = this.lanes.width / 2) {
    const pivot = this.atX(x);
    this.setView(pivot - (pivot - this.from) * factor, pivot + (this.to - pivot) * factor);
  }
  move(share) {
    const by = (this.to - this.from) * share;
    this.setView(this.from + by, this.to + by);
  }
  zoomTo(span) {
    this.on.hover(null);
    const from = this.spanFrom(span), to = this.spanTo(span);
    const margin = Math.max((to - from) * 0.15, this.axis === "time" ? 4 : 3);
    this.setView(from - margin, to + margin);
  }

  /** Marks a record, moving the view where it lies outside. */
  select(record) {
    this.current = record;
    if (record >= 0) {
      const top = this.run.thread[record] * LANE, { scrollTop, clientHeight } = this.scroller;
      if (top < scrollTop) this.scroller.scrollTop = top;
      if (top + LANE > scrollTop + clientHeight) this.scroller.scrollTop = top + LANE - clientHeight;
      const place = this.place(record), size = this.to - this.from;
      if (place < this.from || place > this.to) return this.setView(place - size / 2, place + size / 2);
    }
    this.draw();
  }

  draw() {
    if (this.scheduled || this.run === null) return;
    this.scheduled = true;
    requestAnimationFrame(() => { this.scheduled = false; this.drawNow(); });
  }

  drawNow() {
    const { threads } = this.run;
    const whole = Math.max(1, threads.length) * LANE;
    // As tall as what is in sight: for many threads a canvas of all lanes would be too large.
    const printing = document.documentElement.dataset.print !== undefined;
    this.lanes.begin(Math.min(whole, printing ? 8000 : Math.max(LANE, Math.floor(0.3 * window.innerHeight))));
    this.top = Math.min(this.scroller.scrollTop, Math.max(0, whole - this.lanes.height));
    this.drawOverview();
    this.drawRuler();
    this.drawGrid();
    const last = Math.min(threads.length, Math.ceil((this.top + this.lanes.height) / LANE));
    for (let lane = Math.floor(this.top / LANE); lane < last; ++lane) this.drawLane(threads[lane], lane * LANE - this.top);
    this.drawBrush(this.lanes, this.from, this.to, false);
    this.drawCurrent();
  }

  drawOverview() {
    const pen = this.overview.begin();
    const { width, height } = this.overview;
    const [from, to] = this.whole;
    const counts = new Uint32Array(width + 1), worst = new Uint8Array(width + 1), hits = new Uint8Array(width + 1);
    const { run, filter } = this;
    for (let record = 0; record < run.count; ++record) {
      const x = Math.floor((this.place(record) - from) / (to - from) * (width - 1));
      ++counts[x];
      if (run.severity[record] > worst[x]) worst[x] = run.severity[record];
      if (filter.isHit[record] === 1) hits[x] = 1;
    }
    const most = Math.log1p(counts.reduce((a, b) => Math.max(a, b), 1));
    const wide = this.axis === "order" ? Math.ceil(width / run.count) : 1;
    const bar = (x, top, bottom, colour) => { pen.fillStyle = colour; pen.fillRect(x, top, wide, bottom - top); };
    for (let x = 0; x < width; ++x) {
      if (counts[x] === 0) continue;
      const top = height - 3 - Math.max(2, Math.log1p(counts[x]) / most * (height - 12));
      bar(x, top, height - 3, worst[x] === ERROR ? this.colours.error : worst[x] === WARNING ? this.colours.warning : this.colours.muted);
    }
    for (let x = 0; x < width; ++x) {
      if (hits[x] === 0) continue;
      pen.fillStyle = this.colours.accent;
      pen.fillRect(x - 1, 1, 3, 4);
    }
    this.drawBrush(this.overview, from, to, true);
    const left = (this.from - from) / (to - from) * width, right = (this.to - from) / (to - from) * width;
    if (right - left < width - 1) {
      pen.strokeStyle = this.colours.text;
      pen.lineWidth = 1.5;
      pen.strokeRect(Math.max(1, left), 1, Math.max(4, Math.min(right, width - 1) - Math.max(1, left)), height - 2);
    }
  }

  /** Tints the range that is listed, or veils what is not. */
  drawBrush(surface, from, to, tint) {
    const range = this.brushing ?? this.filter.range;
    if (range === null || range.axis !== this.axis) return;
    const left = (range.from - from) / (to - from) * surface.width, right = (range.to - from) / (to - from) * surface.width;
    if (tint) {
      surface.pen.fillStyle = this.colours.brush;
      surface.pen.fillRect(left, 0, Math.max(2, right - left), surface.height);
    } else {
      surface.pen.globalAlpha = 0.7;
      surface.pen.fillStyle = this.colours.panel;
      surface.pen.fillRect(0, 0, left, surface.height);
      surface.pen.fillRect(right, 0, surface.width - right, surface.height);
      surface.pen.globalAlpha = 1;
    }
    surface.pen.fillStyle = this.colours.accent;
    for (const x of [left, Math.max(left + 1, right - 1)]) surface.pen.fillRect(x, 0, 1, surface.height);
  }

  /** The places of the scale's marks, and how far apart they are. */
  marks() {
    const room = (this.to - this.from) * 96 / Math.max(1, this.lanes.width);
    const step = STEPS.find((size) => size >= room) ?? Math.ceil(room / DAY) * DAY;
    const places = [];
    for (let place = Math.ceil(this.from / step) * step; place <= this.to; place += step) places.push(place);
    return { places, step };
  }

  drawRuler() {
    const pen = this.ruler.begin();
    const { places, step } = this.marks();
    pen.font = "11px " + this.sans;
    pen.textBaseline = "middle";
    let free = -Infinity;
    for (const place of places) {
      const x = this.x(place);
      pen.fillStyle = this.colours.line;
      pen.fillRect(Math.round(x), 15, 1, 7);
      if (x < free) continue;
      pen.fillStyle = this.colours.muted;
      const text = this.axis === "order" ? "#" + this.run.number(place) : step < 1000 ? clock(place) : clock(place).slice(0, 8);
      const width = pen.measureText(text).width;
      if (x + 3 + width <= this.ruler.width) pen.fillText(text, x + 3, 9);
      free = x + width + 12;
    }
    this.drawBrush(this.ruler, this.from, this.to, false);
  }

  drawGrid() {
    const { pen, width, height } = this.lanes;
    pen.fillStyle = this.colours.back;
    const count = this.run.threads.length;
    for (let lane = Math.floor(this.top / LANE); lane < count && lane * LANE < this.top + height; ++lane) {
      pen.fillRect(0, lane * LANE - this.top, width, LANE - 2);
    }
    pen.fillStyle = this.colours.line;
    pen.globalAlpha = 0.6;
    for (const place of this.marks().places) pen.fillRect(Math.round(this.x(place)), 0, 1, height);
    pen.globalAlpha = 1;
  }

  drawLane(thread, top) {
    const { pen, width } = this.lanes;
    pen.globalAlpha = this.filter.hiddenThreads.has(thread.number) ? 0.25 : 1;
    pen.fillStyle = this.colours.line;
    pen.fillRect(0, top + SPAN_TOP + SPAN_HEIGHT / 2, width, 1);
    this.drawSpans(thread, top);
    this.drawTicks(thread, top);
    pen.globalAlpha = 1;
  }

  drawSpans(thread, top) {
    const { spans } = thread;
    const first = Math.max(0, lowerBound(spans.length, (i) => this.spanFrom(spans[i]), this.from) - 1);
    let drawnTo = -Infinity, drawnSeverity = NONE;
    for (let i = first; i < spans.length && this.spanFrom(spans[i]) <= this.to; ++i) {
      const span = spans[i];
      const left = this.x(this.spanFrom(span)), right = this.x(this.spanTo(span));
      // Of those that share a pixel the worst is seen.
      if (right < drawnTo && span.severity <= drawnSeverity) continue;
      this.drawSpan(span, left, right, top + SPAN_TOP);
      drawnSeverity = right < drawnTo ? Math.max(drawnSeverity, span.severity) : span.severity;
      drawnTo = Math.max(left + 2, right);
    }
  }

  drawSpan(span, left, right, top) {
    const { pen, width } = this.lanes;
    const faded = this.filter.commands.size > 0 && !this.filter.commands.has(span.command);
    const alpha = pen.globalAlpha;
    if (faded) pen.globalAlpha = alpha * 0.2;
    const from = Math.max(left, -2), size = Math.max(2, Math.min(right, width + 2) - from - (right - left > 4 ? 1 : 0));
    pen.fillStyle = size < 4 ? this.stroke(span.command) : this.fill(span.command);
    pen.fillRect(from, top, size, SPAN_HEIGHT);
    const open = span.ending === NEXT_COMMAND || span.ending === LOG_END;
    if (open && size >= 4) {
      pen.fillStyle = this.hatch;
      pen.fillRect(from, top, size, SPAN_HEIGHT);
    }
    if (size >= 4) {
      pen.fillStyle = this.stroke(span.command);
      pen.fillRect(from, top, left >= -2 ? 2 : 0, SPAN_HEIGHT);
    }
    if (span.severity > NONE) {
      pen.fillStyle = span.severity === ERROR ? this.colours.error : this.colours.warning;
      pen.fillRect(from, top - 3, Math.max(size, 3), 3);
    }
    if (span.ending === LOG_END) {
      pen.fillStyle = this.colours.error;
      pen.fillRect(from + size - 2, top - 3, 3, SPAN_HEIGHT + 6);
    }
    if (size > 34) this.drawTitle(span, from, size, top, open);
    if (span.number === this.run.spanOf[this.current]) {
      pen.strokeStyle = this.colours.text;
      pen.lineWidth = 1.5;
      pen.strokeRect(from - 0.5, top - 0.5, size + 1, SPAN_HEIGHT + 1);
    }
    pen.globalAlpha = alpha;
  }

  drawTitle(span, from, size, top, open) {
    const { pen } = this.lanes;
    pen.font = "11px " + this.sans;
    pen.textBaseline = "middle";
    let text = this.run.title(span);
    const room = size - 10;
    const full = pen.measureText(text).width;
    if (full > room) {
      const fits = Math.floor(text.length * room / full) - 1;
      if (fits < 3) return;
      text = text.slice(0, fits) + "…";
    } else if (room - full > 70) {
      text += "  " + (open ? "no end line" : duration(span.duration));
    }
    if (open) {
      pen.fillStyle = this.fill(span.command);
      pen.fillRect(from + 4, top + 2, Math.min(room + 4, pen.measureText(text).width + 6), SPAN_HEIGHT - 4);
    }
    pen.fillStyle = this.colours.text;
    pen.fillText(text, from + 6, top + SPAN_HEIGHT / 2 + 0.5);
  }

  drawTicks(thread, top) {
    const { pen, width } = this.lanes;
    const { records } = thread;
    const worst = new Uint8Array(Math.ceil(width) + 1);
    const first = lowerBound(records.length, (i) => this.place(records[i]), this.from);
    for (let i = first; i < records.length; ++i) {
      const x = Math.floor(this.x(this.place(records[i])));
      if (x > width) break;
      const rank = this.filter.isHit[records[i]] === 1 ? 4 : this.run.severity[records[i]] + 1;
      if (x >= 0 && worst[x] < rank) worst[x] = rank;
    }
    const colours = [null, this.colours.muted, this.colours.warning, this.colours.error, this.colours.accent];
    for (let x = 0; x < worst.length; ++x) {
      if (worst[x] === 0) continue;
      pen.fillStyle = colours[worst[x]];
      pen.fillRect(x, top + TICK_TOP, worst[x] > 1 ? 2 : 1, TICK_HEIGHT);
    }
  }

  drawCurrent() {
    if (this.current < 0) return;
    const { pen } = this.lanes;
    const x = this.x(this.place(this.current));
    const top = this.run.thread[this.current] * LANE - this.top;
    pen.fillStyle = this.colours.text;
    pen.fillRect(Math.round(x), 0, 1, this.lanes.height);
    pen.beginPath();
    pen.moveTo(x - 5, top + LANE - 2);
    pen.lineTo(x + 6, top + LANE - 2);
    pen.lineTo(x + 0.5, top + TICK_TOP - 1);
    pen.fill();
  }

  /** The span under the point, or the nearest one within a few pixels. */
  spanAt(x, y) {
    const thread = this.run.threads[Math.floor((y + this.top) / LANE)];
    if (thread === undefined || thread.spans.length === 0) return null;
    const { spans } = thread;
    const after = lowerBound(spans.length, (i) => this.spanFrom(spans[i]), this.atX(x));
    let best = null, bestGap = 4;
    for (let i = Math.max(0, after - 2); i < Math.min(spans.length, after + 2); ++i) {
      const left = this.x(this.spanFrom(spans[i])), right = Math.max(left + 2, this.x(this.spanTo(spans[i])));
      const gap = x < left ? left - x : x > right ? x - right : 0;
      if (gap < bestGap) { best = spans[i]; bestGap = gap; }
    }
    return best;
  }

  recordNear(x, y) {
    const thread = this.run.threads[Math.floor((y + this.top) / LANE)];
    if (thread === undefined || thread.records.length === 0) return -1;
    const { records } = thread;
    const wanted = this.atX(x);
    const after = lowerBound(records.length, (i) => this.place(records[i]), wanted);
    const before = records[Math.max(0, after - 1)], behind = records[Math.min(after, records.length - 1)];
    return Math.abs(this.place(before) - wanted) <= Math.abs(this.place(behind) - wanted) ? before : behind;
  }

  listen() {
    this.listenToLanes(this.lanes.canvas);
    this.listenToBrush(this.overview.canvas, () => [...this.whole, this.overview.width]);
    this.listenToBrush(this.ruler.canvas, () => [this.from, this.to, this.lanes.width]);
    for (const canvas of [this.overview.canvas, this.ruler.canvas, this.lanes.canvas]) {
      canvas.addEventListener("wheel", (event) => {
        event.preventDefault();
        const unit = event.deltaMode === 1 ? 30 : event.deltaMode === 2 ? 300 : 1;
        if (event.shiftKey || Math.abs(event.deltaX) > Math.abs(event.deltaY)) {
          this.move((event.deltaX || event.deltaY) * unit / 800);
        } else {
          this.zoom(Math.exp(Math.max(-240, Math.min(240, event.deltaY * unit)) / 400), canvas === this.overview.canvas ? undefined : event.offsetX);
        }
      }, { passive: false });
      canvas.addEventListener("dblclick", () => { this.on.range(null); this.fit(); });
    }
    new ResizeObserver(() => this.draw()).observe(this.overview.canvas);
    window.addEventListener("resize", () => this.draw());
    this.scroller.addEventListener("scroll", () => this.draw(), { passive: true });
  }

  listenToLanes(canvas) {
    let drag = null;
    canvas.addEventListener("pointerdown", (event) => {
      if (event.button !== 0) return;
      drag = { x: event.offsetX, from: this.from, to: this.to, moved: false };
      canvas.setPointerCapture(event.pointerId);
    });
    canvas.addEventListener("pointermove", (event) => {
      if (drag === null) return this.on.hover(this.spanAt(event.offsetX, event.offsetY), event);
      if (!drag.moved && Math.abs(event.offsetX - drag.x) < 4) return;
      drag.moved = true;
      canvas.classList.add("dragging");
      this.on.hover(null, event);
      const by = (drag.x - event.offsetX) / this.lanes.width * (drag.to - drag.from);
      this.setView(drag.from + by, drag.to + by);
    });
    canvas.addEventListener("pointerup", (event) => {
      canvas.classList.remove("dragging");
      if (drag !== null && !drag.moved) {
        const span = (event.offsetY + this.top) % LANE < TICK_TOP ? this.spanAt(event.offsetX, event.offsetY) : null;
        const record = span !== null ? span.first : this.recordNear(event.offsetX, event.offsetY);
        if (record >= 0) this.on.jump(record);
      }
      drag = null;
    });
    canvas.addEventListener("pointercancel", () => { drag = null; canvas.classList.remove("dragging"); });
    canvas.addEventListener("pointerleave", (event) => this.on.hover(null, event));
  }

  /** Dragging picks a range; a click alone moves the view there. */
  listenToBrush(canvas, bounds) {
    let start = null;
    const placeOf = (event) => {
      const [from, to, width] = bounds();
      return from + Math.max(0, Math.min(1, event.offsetX / width)) * (to - from);
    };
    canvas.addEventListener("pointerdown", (event) => {
      if (event.button !== 0) return;
      start = { x: event.offsetX, place: placeOf(event) };
      canvas.setPointerCapture(event.pointerId);
    });
    canvas.addEventListener("pointermove", (event) => {
      if (start === null || Math.abs(event.offsetX - start.x) < 4) return;
      const place = placeOf(event);
      this.brushing = { axis: this.axis, from: Math.min(start.place, place), to: Math.max(start.place, place) };
      this.draw();
    });
    canvas.addEventListener("pointerup", (event) => {
      if (start === null) return;
      const picked = this.brushing, place = placeOf(event), size = this.to - this.from;
      start = this.brushing = null;
      if (picked === null) return this.setView(place - size / 2, place + size / 2);
      this.on.range(picked);
      this.setView(picked.from - (picked.to - picked.from) * 0.03, picked.to + (picked.to - picked.from) * 0.03);
    });
    canvas.addEventListener("pointercancel", () => { start = this.brushing = null; this.draw(); });
  }
}
