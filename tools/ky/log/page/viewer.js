// Ties the parts together: what is selected, what is filtered, and keys.

class Viewer extends Panels {
  constructor(data) {
    super();
    this.data = data;
    this.runs = [];
    this.mode = "records";
    this.order = { key: "first", falling: false };
    this.list = new RecordList(byId("viewport"), byId("rows"),
      (row, position) => this.mode === "records" ? this.fillRecord(row, this.rows[position]) : this.fillCommand(row, this.rows[position]),
      { pick: (position, event) => this.pick(position, event.shiftKey), open: () => this.zoomToCommand() });
    this.timeline = new Timeline({ overview: byId("overview"), ruler: byId("ruler"), lanes: byId("lanes"), scroller: byId("lanes-scroll") }, {
      jump: (record) => { this.goTo(record); byId("viewport").focus({ preventScroll: true }); },
      range: (range) => { this.filter.range = range; this.refilter(); },
      view: (from, to) => this.tellView(from, to),
      hover: (span, event) => this.showTip(span, event),
    });
    this.listen();
    const picker = byId("run");
    picker.hidden = data.runs.length < 2;
    data.runs.forEach((run, number) => picker.append(make("option", { value: String(number) }, run.name || "Log")));
    const { run, record } = this.address();
    this.showRun(run ?? Math.max(0, data.runs.length - 1));
    if (record !== null) this.goToNumber(record);
  }

  // What is shown

  showRun(number) {
    this.runNumber = number;
    this.run = this.runs[number] ??= new Run(this.data.runs[number]);
    this.filter = new Filter(this.run);
    this.current = -1;
    this.anchor = -1; // the other end of the selection, as a position in the list
    byId("run").value = String(number);
    byId("title").textContent = this.run.name;
    byId("title").hidden = this.data.runs.length > 1;
    byId("label").textContent = this.run.label;
    byId("label").hidden = this.run.label === "";
    document.title = this.run.name + " – log";
    byId("left-out").hidden = this.run.leftOut === 0;
    byId("left-out").textContent = `The log is larger than a page: the oldest ${plural(this.run.leftOut, "record")} of this run ` +
      `${this.run.leftOut === 1 ? "is" : "are"} left out. "ky log read" without --html gives all.`;
    for (const input of document.querySelectorAll("input[name=axis]")) {
      input.checked = input.value === (this.run.end > this.run.begin ? "time" : "order");
    }
    const passesMidnight = Math.floor(this.run.begin / DAY) !== Math.floor(this.run.end / DAY);
    byId("records").style.setProperty("--time-width", passesMidnight ? "108px" : "90px");
    this.showFacts();
    this.showProblems();
    this.timeline.show(this.run, this.filter);
    this.showLabels();
    this.showFacets();
    this.search();
    this.showDetail();
  }

  /** The machine's distance to UTC, where name and first record tell the same moment. */
  /** About how many characters of a message a row shows. */
  sortBy(key, falling) {
    const fallingFirst = key === "duration" || key === "records" || key === "ending";
    this.order = { key, falling: falling ?? (this.order.key === key ? !this.order.falling : fallingFirst) };
    this.refilter();
  }

  sorted(spans) {
    const { run } = this;
    const rank = (span) => span.ending === LOG_END ? 3 : span.ending === NEXT_COMMAND ? 2 : 0;
    const keys = {
      index: (span) => span.index ?? -1, first: (span) => span.first, thread: (span) => span.thread,
      duration: (span) => span.duration, records: (span) => span.last - span.first, next: (span) => span.next ?? -1,
      ending: (span) => span.severity * 2 + rank(span) + (span.code === null ? 0 : 0.5),
    };
    const sign = this.order.falling ? -1 : 1;
    const key = keys[this.order.key];
    const compare = this.order.key === "command"
      ? (a, b) => run.commands[a.command].localeCompare(run.commands[b.command]) : (a, b) => key(a) - key(b);
    return spans.sort((a, b) => sign * compare(a, b) || a.first - b.first);
  }

  // Filters and search

  search() {
    const { find, wrong } = parseQuery(byId("query").value);
    this.wrong = wrong;
    byId("query").setAttribute("aria-invalid", String(wrong !== undefined));
    this.filter.search(find);
    this.refilter();
  }

  refilter() {
    const { filter } = this;
    const kept = this.current;
    this.anchor = -1;
    if (this.mode === "records") {
      this.rows = filter.records();
    } else {
      const spans = this.sorted(filter.spans());
      this.longestSpan = spans.reduce((longest, span) => Math.max(longest, span.duration), 1);
      this.rows = spans.map((span) => span.number);
    }
    this.showHead();
    this.list.reset(this.rows.length);
    byId("empty").hidden = this.rows.length > 0;
    const all = this.mode === "records" ? this.run.count : this.run.spans.length;
    const what = this.mode === "records" ? "record" : "command";
    byId("count").textContent = this.rows.length === all ? plural(all, what)
      : `${this.rows.length.toLocaleString("en")} of ${plural(all, what)}`;
    byId("clear").hidden = !filter.active;
    byId("range").hidden = filter.range === null;
    if (filter.range !== null) {
      const tell = filter.range.axis === "time" ? clock : (place) => "#" + this.run.number(Math.max(0, Math.min(this.run.count - 1, Math.floor(place))));
      byId("range-text").textContent = `${tell(filter.range.from)} – ${tell(filter.range.to)}`;
    }
    this.tellHits();
    if (kept >= 0 && this.position() >= 0) this.list.reveal(this.position());
    this.timeline.draw();
  }

  toggleCommand(command) {
    const { commands } = this.filter;
    commands[commands.has(command) ? "delete" : "add"](command);
    this.showFacets();
    this.refilter();
  }

  setLevel(level) {
    this.filter.level = level;
    for (const input of document.querySelectorAll("input[name=level]")) input.checked = input.value === String(level);
    this.refilter();
  }

  setMode(mode) {
    this.mode = mode;
    for (const input of document.querySelectorAll("input[name=list]")) input.checked = input.value === mode;
    this.refilter();
    if (this.current >= 0) this.select(this.current);
  }

  clearFilters() {
    const { filter } = this;
    filter.hiddenThreads.clear();
    filter.commands.clear();
    filter.range = null;
    filter.only = byId("only").checked = false;
    for (const box of byId("lane-labels").querySelectorAll("input")) box.checked = true;
    this.showFacets();
    this.setLevel(NONE);
  }

  // Selection

  /** The list's position of the current record or its command; -1 where it is not listed. */
  position() {
    if (this.current < 0) return -1;
    if (this.mode === "commands") return this.rows.indexOf(this.run.spanOf[this.current]);
    const position = lowerBound(this.rows.length, (i) => this.rows[i], this.current);
    return this.rows[position] === this.current ? position : -1;
  }

  recordOf(position) {
    return this.mode === "records" ? this.rows[position] : this.run.spans[this.rows[position]].first;
  }

  select(record) {
    this.current = record;
    const position = this.position();
    if (position >= 0) this.list.reveal(position);
    for (const row of this.list.rows.values()) this.markSelected(row);
    this.timeline.select(record);
    this.showDetail();
    this.tellHits();
    this.writeAddress();
  }

  pick(position, extend) {
    if (extend && this.position() >= 0) {
      if (this.anchor < 0) this.anchor = this.position();
    } else {
      this.anchor = -1;
    }
    this.select(this.recordOf(position));
  }

  /** Goes to a record wherever it is; filters that hide it give way. */
  goTo(record) {
    this.anchor = -1;
    this.current = record;
    if (this.mode === "commands" && this.run.spanOf[record] < 0) this.setMode("records");
    if (this.position() < 0) {
      this.clearFilters();
      this.say("The filters hid that record and were cleared");
    }
    this.select(record);
  }

  goToNumber(number) {
    const record = number - this.run.leftOut - 1;
    if (record >= 0 && record < this.run.count) this.goTo(record);
  }

  step(by, extend) {
    if (this.rows.length === 0) return;
    const at = this.position();
    const from = at >= 0 ? at : by > 0 ? -1 : this.rows.length;
    this.pick(Math.max(0, Math.min(this.rows.length - 1, from + by)), extend);
  }

  /** Goes to the next listed record of that kind, round and round. */
  seek(direction, wanted) {
    const count = this.rows.length;
    const at = this.position();
    for (let step = 1; step <= count; ++step) {
      const start = at >= 0 ? at : direction > 0 ? -1 : 0;
      const position = (((start + direction * step) % count) + count) % count;
      if (wanted(this.rows[position])) return this.pick(position, false);
    }
    return undefined;
  }

  nextHit(direction) {
    const { run, filter } = this;
    if (filter.find === null || filter.hits === 0) return undefined;
    if (this.mode === "records") return this.seek(direction, (record) => filter.isHit[record] === 1);
    const holding = new Set();
    for (let record = 0; record < run.count; ++record) if (filter.isHit[record] === 1) holding.add(run.spanOf[record]);
    return this.seek(direction, (span) => holding.has(span));
  }

  nextTrouble(direction) {
    const { run } = this;
    this.seek(direction, (row) => (this.mode === "records" ? run.severity[row] : run.spans[row].severity) > NONE);
  }

  nextCommand(direction) {
    const { run } = this;
    if (run.spans.length === 0) return;
    const thread = this.current < 0 ? run.threads.find((one) => one.spans.length > 0) : run.threads[run.thread[this.current]];
    const after = lowerBound(thread.spans.length, (i) => thread.spans[i].first, this.current + (direction > 0 ? 1 : 0));
    const span = thread.spans[direction > 0 ? after : after - 1];
    if (span !== undefined) this.goTo(span.first);
  }

  zoomToCommand() {
    const span = this.current < 0 ? -1 : this.run.spanOf[this.current];
    if (span >= 0) this.timeline.zoomTo(this.run.spans[span]);
    else this.say("The selected record belongs to no command");
  }

  selectedText() {
    const at = this.position();
    if (at < 0) return "";
    const low = Math.min(at, this.anchor < 0 ? at : this.anchor), high = Math.max(at, this.anchor);
    const lines = [];
    for (let position = low; position <= high; ++position) {
      if (this.mode === "records") lines.push(this.run.line(this.rows[position]));
      else lines.push(this.commandLine(this.run.spans[this.rows[position]]));
    }
    return lines.join("\n") + "\n";
  }

  commandLine(span) {
    const code = span.code === null ? "" : ", " + this.codeText(span.code);
    return `[${clock(span.begin)}] ${this.run.threads[span.thread].id} ${shown(this.run.title(span))}: ${this.durationText(span)}${code}`;
  }

  copy() {
    if (this.selectedText() === "") return this.say("Nothing is selected");
    getSelection().removeAllRanges();
    if (!document.execCommand("copy")) this.say("The browser refused");
    return undefined;
  }

  // The address of a record

  address() {
    const fields = new URLSearchParams(location.hash.slice(1));
    const number = (name) => /^\d{1,9}$/.test(fields.get(name) ?? "") ? Number(fields.get(name)) : null;
    const run = number("run");
    return { run: run !== null && run >= 1 && run <= this.data.runs.length ? run - 1 : null, record: number("record") };
  }

  writeAddress() {
    const run = this.data.runs.length > 1 ? `run=${this.runNumber + 1}&` : "";
    try {
      history.replaceState(null, "", `#${run}record=${this.run.number(this.current)}`);
    } catch {
      // Some browsers refuse it for local files.
    }
  }

  followAddress() {
    const { run, record } = this.address();
    if (run !== null && run !== this.runNumber) this.showRun(run);
    if (record !== null) this.goToNumber(record);
  }

  // Events

  listen() {
    const on = (id, event, heard) => byId(id).addEventListener(event, heard);
    on("run", "change", (event) => this.showRun(Number(event.target.value)));
    on("facet-order", "change", () => this.showFacets());
    on("fit", "click", () => this.timeline.fit());
    on("zoom-command", "click", () => this.zoomToCommand());
    on("range-view", "click", () => {
      this.filter.range = { axis: this.timeline.axis, from: this.timeline.from, to: this.timeline.to };
      this.refilter();
    });
    on("range-clear", "click", () => { this.filter.range = null; this.refilter(); });
    on("clear", "click", () => this.clearFilters());
    on("copy", "click", () => this.copy());
    on("next", "click", () => this.nextHit(1));
    on("previous", "click", () => this.nextHit(-1));
    on("only", "change", (event) => { this.filter.only = event.target.checked; this.refilter(); });
    on("help-open", "click", () => byId("help").showModal());
    on("toolbar", "submit", (event) => event.preventDefault());
    on("query", "input", () => {
      clearTimeout(this.typing);
      this.typing = setTimeout(() => this.search(), 120);
    });
    for (const input of document.querySelectorAll("input[name=axis]")) {
      input.addEventListener("change", () => this.timeline.setAxis(input.value));
    }
    for (const input of document.querySelectorAll("input[name=level]")) {
      input.addEventListener("change", () => this.setLevel(Number(input.value)));
    }
    for (const input of document.querySelectorAll("input[name=list]")) {
      input.addEventListener("change", () => this.setMode(input.value));
    }
    matchMedia("(prefers-color-scheme: dark)").addEventListener("change", () => {
      this.timeline.readColours();
      this.showLabels();
      this.showFacets();
      this.list.refresh();
    });
    window.addEventListener("hashchange", () => this.followAddress());
    window.addEventListener("beforeprint", () => this.beforePrint());
    window.addEventListener("afterprint", () => this.afterPrint());
    document.addEventListener("copy", (event) => {
      if (!getSelection().isCollapsed || /^(INPUT|TEXTAREA)$/.test(document.activeElement.tagName)) return;
      const text = this.selectedText();
      if (text === "") return;
      event.clipboardData.setData("text/plain", text);
      event.preventDefault();
      this.say(plural(text.split("\n").length - 1, "line") + " copied");
    });
    document.addEventListener("keydown", (event) => this.key(event));
  }

  key(event) {
    if (event.ctrlKey || event.metaKey || event.altKey || byId("help").open) return;
    const typing = event.target === byId("query");
    if (typing || event.target.tagName === "SELECT") {
      if (typing && event.key === "Enter") {
        clearTimeout(this.typing);
        this.search();
        this.nextHit(event.shiftKey ? -1 : 1);
      } else if (event.key === "Escape") {
        byId("viewport").focus({ preventScroll: true });
      } else {
        return;
      }
      event.preventDefault();
      return;
    }
    const onLanes = event.target === byId("lanes");
    const keys = {
      "/": () => { byId("query").focus(); byId("query").select(); },
      n: () => this.nextHit(1), N: () => this.nextHit(-1),
      f: () => { byId("only").checked = this.filter.only = !this.filter.only; this.refilter(); },
      j: () => this.step(1), J: () => this.step(1, true), k: () => this.step(-1), K: () => this.step(-1, true),
      ArrowDown: () => this.step(1, event.shiftKey), ArrowUp: () => this.step(-1, event.shiftKey),
      PageDown: () => this.step(this.list.page, event.shiftKey), PageUp: () => this.step(-this.list.page, event.shiftKey),
      Home: () => this.step(-Infinity, event.shiftKey), End: () => this.step(Infinity, event.shiftKey),
      g: () => this.step(-Infinity), G: () => this.step(Infinity),
      "]": () => this.nextCommand(1), "[": () => this.nextCommand(-1),
      e: () => this.nextTrouble(1), E: () => this.nextTrouble(-1),
      c: () => this.copy(), z: () => this.zoomToCommand(),
      "+": () => this.timeline.zoom(0.6), "=": () => this.timeline.zoom(0.6), "-": () => this.timeline.zoom(1 / 0.6), 0: () => this.timeline.fit(),
      ArrowLeft: () => this.timeline.move(-0.15), ArrowRight: () => this.timeline.move(0.15),
      Escape: () => this.clearFilters(), "?": () => byId("help").showModal(),
    };
    const act = keys[event.key];
    if (act === undefined || (/^(INPUT|BUTTON|SUMMARY)$/.test(event.target.tagName) && /^(Arrow|Home|End|Page)/.test(event.key))) return;
    if (onLanes && /^(Home|End)$/.test(event.key)) return;
    event.preventDefault();
    act();
  }
}

{
  const data = JSON.parse(byId("log-data").textContent);
  byId("log-data").remove();
  if (data.runs.length === 0) {
    byId("title").textContent = "No records";
  } else {
    window.viewer = new Viewer(data);
  }
}
