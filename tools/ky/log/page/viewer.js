// Ties the parts together: what is selected, what is filtered, keys, and what stands around list and lanes.

const byId = (id) => document.getElementById(id);

/** An element with properties and children; text becomes text, never markup. */
function make(tag, properties = {}, ...children) {
  const element = document.createElement(tag);
  for (const [name, value] of Object.entries(properties)) {
    if (name in element) element[name] = value; else element.setAttribute(name, value);
  }
  element.append(...children);
  return element;
}

class Viewer {
  static longest = 600; // characters of a message in a row
  static mostProblems = 500;
  static mostPrinted = 3000;

  constructor(data) {
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

  showFacts() {
    const { run } = this;
    const facts = byId("facts");
    facts.replaceChildren();
    const add = (name, ...value) => facts.append(make("div", {}, make("dt", {}, name), make("dd", {}, ...value)));
    if (run.count > 0) {
      const zone = this.zone();
      add(run.leftOut > 0 ? "From" : "Started", (run.dated ? date(run.begin) + " " : "") + clock(run.begin) + (zone === "" ? "" : " " + zone));
      add("Duration", duration(run.end - run.begin));
    }
    add("Records", run.count.toLocaleString("en"));
    add("Threads", String(run.threads.length));
    add("Commands", make("button", { type: "button", title: "List the commands", onclick: () => this.setMode("commands") },
      run.spans.length.toLocaleString("en")));
    const level = (name, count, value) => {
      if (count === 0) return add(name, "0");
      add(name, make("button", { type: "button", className: name.startsWith("Err") ? "error" : "warning",
        title: "List them only", onclick: () => this.setLevel(value) }, count.toLocaleString("en")));
    };
    level("Errors", run.errors, ERROR);
    level("Warnings", run.warnings, WARNING);
    if (run.open > 0) {
      add("Without end", make("button", { type: "button", className: "warning", title: "Commands without an End line",
        onclick: () => { this.setMode("commands"); this.sortBy("ending", true); } }, run.open.toLocaleString("en")));
    }
  }

  /** The machine's distance to UTC, where name and first record tell the same moment. */
  zone() {
    const { run } = this;
    if (run.start === null || !run.dated || run.leftOut > 0) return "";
    const minutes = Math.round((run.begin / 1000 - run.start) / 900) * 15;
    const apart = Math.abs(run.begin / 1000 - run.start - minutes * 60);
    if (Math.abs(minutes) > 14 * 60 || Math.abs(minutes) % 60 === 15 || apart > 60) return "";
    return `UTC${minutes < 0 ? "−" : "+"}${pad(Math.floor(Math.abs(minutes) / 60), 2)}:${pad(Math.abs(minutes) % 60, 2)}`;
  }

  showProblems() {
    const { problems } = this.run;
    const lost = problems.filter((problem) => problem.kind !== "note").length;
    const box = byId("problems");
    box.hidden = problems.length === 0;
    box.open = lost > 0 && lost <= 4;
    box.classList.toggle("mild", lost === 0);
    byId("problems-summary").textContent = lost === 0 ? plural(problems.length, "note") + " on the files"
      : `${plural(lost, "place")} in the files could not be read as written`;
    const list = byId("problems-list");
    list.replaceChildren();
    for (const problem of problems.slice(0, Viewer.mostProblems)) {
      const where = problem.file + (problem.kind === "note" || problem.kind === "file" ? "" : ` @${problem.offset}`);
      list.append(make("li", {}, problem.record < 0 ? make("span", {}, shown(where))
        : make("button", { type: "button", title: "Go to the record before it", onclick: () => this.goTo(problem.record) }, shown(where)),
      make("span", {}, shown(problem.text))));
    }
    if (problems.length > Viewer.mostProblems) {
      list.append(make("li", {}, `and ${plural(problems.length - Viewer.mostProblems, "more", "more")}`));
    }
  }

  showLabels() {
    const labels = byId("lane-labels");
    labels.replaceChildren();
    for (const thread of this.run.threads) {
      const box = make("input", { type: "checkbox", checked: true, onchange: () => {
        this.filter.hiddenThreads[box.checked ? "delete" : "add"](thread.number);
        this.refilter();
      } });
      const dot = make("span", { className: "dot" });
      dot.style.background = this.timeline.dot(thread.number);
      const what = `${thread.description === "" ? "" : shown(thread.description) + ", "}${plural(thread.records.length, "record")}`;
      labels.append(make("div", { className: "lane-label" }, make("label", { title: `Thread ${thread.id}: ${what}` }, box, dot,
        make("span", { className: "who" }, make("b", {}, thread.description === "" ? `Thread ${thread.id}` : shown(thread.description)),
          make("span", {}, `${thread.description === "" ? "" : thread.id + " · "}${plural(thread.records.length, "record")}`)))));
    }
  }

  showFacets() {
    const { run } = this;
    const order = byId("facet-order").value;
    const sums = [...run.sums].sort((a, b) => (order === "duration" ? b.duration - a.duration : order === "count" ? b.count - a.count : 0) ||
      a.name.localeCompare(b.name));
    const most = Math.max(1, ...sums.map((sum) => order === "count" ? sum.count : sum.duration));
    const list = byId("facets");
    list.replaceChildren();
    for (const sum of sums) {
      const swatch = make("span", { className: "swatch" });
      swatch.style.background = this.timeline.fill(sum.command);
      swatch.style.borderColor = this.timeline.stroke(sum.command);
      const bar = make("span", { className: "bar" });
      bar.style.width = (order === "count" ? sum.count : sum.duration) / most * 100 + "%";
      const button = make("button", { type: "button", className: "facet", "aria-pressed": String(this.filter.commands.has(sum.command)),
        title: `${sum.name}: ${plural(sum.count, "run")}, ${duration(sum.duration)}, the longest ${duration(sum.longest)}` +
          (sum.errors > 0 ? `, ${plural(sum.errors, "run")} with errors` : "") + (sum.open > 0 ? `, ${sum.open} without an End line` : ""),
        onclick: () => this.toggleCommand(sum.command) },
      swatch, make("span", { className: "what" }, make("span", {}, shown(sum.name)), sum.errors > 0 ? make("span", { className: "bad" }, `${sum.errors} ✕`) : "",
        sum.open > 0 ? make("span", { className: "open" }, `${sum.open} ⋯`) : ""),
      make("span", { className: "times" }, "×" + sum.count), make("span", { className: "sum" }, duration(sum.duration)), bar);
      list.append(make("li", {}, button));
    }
  }

  tellView(from, to) {
    const { timeline } = this;
    byId("view-text").textContent = timeline.axis === "time" ? duration(to - from) + " in view" : plural(Math.round(to - from), "record") + " in view";
  }

  showTip(span, event) {
    const tip = byId("tip");
    tip.hidden = span === null;
    if (span === null) return;
    tip.replaceChildren(make("b", {}, shown(this.run.title(span))), `${clock(span.begin)} · ${this.durationText(span)}`);
    if (span.code !== null) tip.append(make("br"), this.codeText(span.code));
    if (span.severity > NONE) tip.append(make("br"), oneLine(this.worstMessage(span)).slice(0, 200));
    const { clientWidth, clientHeight } = document.documentElement;
    tip.style.left = Math.min(event.clientX + 14, clientWidth - tip.offsetWidth - 8) + "px";
    tip.style.top = Math.min(event.clientY + 18, clientHeight - tip.offsetHeight - 8) + "px";
  }

  worstMessage(span) {
    const { run } = this;
    for (let record = span.first; record <= span.last; ++record) {
      if (run.spanOf[record] === span.number && run.severity[record] === span.severity) return run.message[record];
    }
    return "";
  }

  durationText(span) {
    if (span.ending === UNWRITTEN) return "writes no End line";
    if (span.ending === LOG_END) return `no End line; ${duration(span.duration)} to the log's end`;
    if (span.ending === NEXT_COMMAND) return `no End line; ${duration(span.duration)} to the next command`;
    return duration(span.duration);
  }

  codeText({ code, isExit }) {
    const name = isExit ? undefined : CODE_NAMES.get(code);
    return (isExit ? "exit code " : "code ") + code + (name === undefined ? "" : " (" + name + ")");
  }

  isBad({ code, isExit }, severity) {
    return code !== 0 && (isExit || severity === ERROR);
  }

  codeTag({ code, isExit }, severity) {
    const name = isExit ? undefined : CODE_NAMES.get(code);
    return make("span", { className: "tag" + (this.isBad({ code, isExit }, severity) ? " bad" : "") + (name === undefined || code === 0 ? "" : " named"), title: this.codeText({ code, isExit }) },
      `${isExit ? "exit " : ""}${code}${name === undefined || code === 0 ? "" : " " + name}`);
  }

  // Rows

  fillRecord(row, record) {
    const { run } = this;
    const span = run.spanOf[record] < 0 ? null : run.spans[run.spanOf[record]];
    const cell = (className, ...content) => row.appendChild(make("span", { className, role: "gridcell" }, ...content));
    row.classList.toggle("warning", run.severity[record] === WARNING);
    row.classList.toggle("error", run.severity[record] === ERROR);
    row.classList.toggle("first", span !== null && span.first === record);
    row.classList.toggle("last", span !== null && span.last === record && span.first !== record);
    row.style.borderLeftColor = span === null ? "transparent" : this.timeline.stroke(span.command);
    this.markSelected(row);
    cell("number", String(run.number(record)));
    const days = Math.floor(run.time[record] / DAY) - Math.floor(run.begin / DAY);
    cell("time", (days > 0 ? `+${days} ` : "") + clock(run.time[record]));
    const gap = run.delta[record];
    const delta = cell("delta", Number.isNaN(gap) || gap === 0 ? "" : (gap < 0 ? "−" : "+") + duration(Math.abs(gap)));
    delta.classList.toggle("long", gap >= 1000 && gap < 10000);
    delta.classList.toggle("very-long", gap >= 10000 || gap < 0);
    if (gap < 0) delta.title = "The clock was set back";
    const dot = make("span", { className: "dot" });
    dot.style.background = this.timeline.dot(run.thread[record]);
    cell("thread", dot, run.threads[run.thread[record]].id);
    const command = cell("command");
    if (span !== null) command.append(make("i", {}, span.index === null ? "" : span.index + " "), shown(run.commands[span.command]));
    const message = cell("message", this.textWithHits(record));
    const code = run.code.get(record);
    if (code !== undefined) message.append(this.codeTag(code, run.severity[record]));
    if (span !== null && span.first === record) message.append(this.durationTag(span));
    const damage = run.damage.get(record);
    if (damage !== undefined) message.append(make("span", { className: "tag bad", title: shown(damage) }, "damage behind"));
  }

  durationTag(span) {
    if (span.ending === END_LINE) return make("span", { className: "tag time" }, duration(span.duration));
    if (span.ending === UNWRITTEN) return make("span", { className: "tag" }, "no duration");
    return make("span", { className: "tag open", title: this.durationText(span) }, "no end line");
  }

  textWithHits(record) {
    const whole = this.run.message[record];
    const text = make("span", { className: "text" });
    const { find } = this.filter;
    if (find === null || this.filter.isHit[record] === 0) {
      text.append(oneLine(whole.slice(0, Viewer.longest)) + (whole.length > Viewer.longest ? "…" : ""));
      return text;
    }
    // A hit that the row would cut off is brought into sight.
    find.lastIndex = 0;
    const begin = find.exec(whole)?.index ?? 0;
    const from = begin > this.roomForText() ? begin - 12 : 0;
    if (from > 0) text.append("… ");
    this.appendMarked(text, whole.slice(from, from + Viewer.longest), oneLine);
    return text;
  }

  /** About how many characters of a message a row shows. */
  roomForText() {
    return Math.max(24, (byId("viewport").clientWidth - 640) / 7.3);
  }

  appendMarked(element, text, show) {
    const { find } = this.filter;
    find.lastIndex = 0;
    let at = 0;
    for (const hit of text.matchAll(find)) {
      if (hit[0] === "") continue;
      element.append(show(text.slice(at, hit.index)), make("mark", {}, show(hit[0])));
      at = hit.index + hit[0].length;
    }
    element.append(show(text.slice(at)));
  }

  fillCommand(row, number) {
    const { run } = this;
    const span = run.spans[number];
    const cell = (className, ...content) => row.appendChild(make("span", { className, role: "gridcell" }, ...content));
    row.classList.toggle("warning", span.severity === WARNING);
    row.classList.toggle("error", span.severity === ERROR);
    row.style.borderLeftColor = this.timeline.stroke(span.command);
    this.markSelected(row);
    cell("number", span.index === null ? "" : String(span.index));
    cell("command", shown(run.commands[span.command]));
    const dot = make("span", { className: "dot" });
    dot.style.background = this.timeline.dot(span.thread);
    cell("thread", dot, run.threads[span.thread].id);
    cell("time", clock(span.begin));
    const bar = make("i");
    bar.style.width = span.duration / this.longestSpan * 100 + "%";
    bar.style.background = this.timeline.fill(span.command);
    cell("bar", bar, make("span", {}, span.ending === UNWRITTEN ? "–" : duration(span.duration)));
    cell("right", (span.last - span.first + 1).toLocaleString("en"));
    cell("right", span.next === null ? "" : String(span.next));
    const how = cell("message");
    if (span.code !== null) how.append(this.codeTag(span.code, span.severity));
    if (span.ending !== END_LINE) how.append(this.durationTag(span));
  }

  markSelected(row) {
    const position = Number(row.dataset.position);
    const at = this.position();
    const low = Math.min(at, this.anchor < 0 ? at : this.anchor), high = Math.max(at, this.anchor);
    row.classList.toggle("current", position === at);
    row.classList.toggle("picked", position >= low && position <= high && at >= 0);
    row.setAttribute("aria-selected", String(position >= low && position <= high && at >= 0));
  }

  showHead() {
    const head = byId("list-head");
    byId("records").className = "list " + this.mode;
    byId("viewport").setAttribute("aria-label", this.mode === "records" ? "Records" : "Commands");
    head.replaceChildren();
    if (this.mode === "records") {
      for (const [text, className] of [["#", "number right"], ["Time", ""], ["Since last", "delta right"], ["Thread", ""], ["Command", "command"], ["Message", ""]]) {
        head.append(make("span", { className, role: "columnheader" }, text));
      }
      return;
    }
    const columns = [["index", "Index", "right"], ["command", "Command", ""], ["thread", "Thread", ""], ["first", "Begin", ""],
      ["duration", "Duration", ""], ["records", "Records", "right"], ["next", "Next", "right"], ["ending", "Result", ""]];
    for (const [key, text, className] of columns) {
      const sort = this.order.key === key ? (this.order.falling ? "descending" : "ascending") : "none";
      head.append(make("span", { className, role: "columnheader", "aria-sort": sort },
        make("button", { type: "button", onclick: () => this.sortBy(key) }, text)));
    }
  }

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
      const tell = filter.range.axis === "time" ? clock : (place) => "#" + this.run.number(Math.max(0, Math.floor(place)));
      byId("range-text").textContent = `${tell(filter.range.from)} – ${tell(filter.range.to)}`;
    }
    this.tellHits();
    if (kept >= 0 && this.position() >= 0) this.list.reveal(this.position());
    this.timeline.draw();
  }

  tellHits() {
    const hits = byId("hits");
    const { filter } = this;
    hits.classList.toggle("wrong", this.wrong !== undefined);
    const none = filter.find === null || filter.hits === 0;
    byId("next").disabled = byId("previous").disabled = none;
    if (this.wrong !== undefined) {
      hits.textContent = "not valid";
      hits.title = this.wrong;
    } else if (filter.find === null) {
      hits.textContent = hits.title = "";
    } else {
      let place = 0;
      const onHit = this.current >= 0 && filter.isHit[this.current] === 1;
      if (onHit) for (let record = 0; record <= this.current; ++record) place += filter.isHit[record];
      hits.textContent = filter.hits === 0 ? "no hit" : onHit ? `${place.toLocaleString("en")} / ${filter.hits.toLocaleString("en")}` : plural(filter.hits, "hit");
      hits.title = "";
    }
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

  say(text) {
    const said = byId("said");
    said.textContent = text;
    said.classList.add("on");
    clearTimeout(this.saying);
    this.saying = setTimeout(() => said.classList.remove("on"), 2200);
  }

  showDetail() {
    const { run, current } = this;
    const detail = byId("detail");
    if (current < 0) {
      detail.replaceChildren(make("h2", {}, "No record selected"), make("p", {}, "Click a line or a span. "), make("p", {}, "? tells the keys."));
      return;
    }
    const span = run.spanOf[current] < 0 ? null : run.spans[run.spanOf[current]];
    const message = make("pre", { tabIndex: 0 });
    if (this.filter.find !== null && this.filter.isHit[current] === 1) this.appendMarked(message, run.message[current], shown);
    else message.append(shown(run.message[current]));
    const thread = run.threads[run.thread[current]];
    const facts = make("dl");
    const add = (list, name, ...value) => list.append(make("dt", {}, name), make("dd", {}, ...value));
    add(facts, "Time", (run.dated ? date(run.time[current]) + " " : "") + clock(run.time[current]));
    add(facts, "Thread", thread.id + (thread.description === "" ? "" : " (" + shown(thread.description) + ")"));
    const code = run.code.get(current);
    if (code !== undefined) add(facts, "Code", make("span", { className: this.isBad(code, run.severity[current]) ? "bad" : "" }, this.codeText(code)));
    add(facts, "File", shown(run.files[run.file[current]]));
    add(facts, "Offset", run.offset[current].toLocaleString("en"));
    detail.replaceChildren(make("h2", {}, `Record ${run.number(current).toLocaleString("en")}`), message, make("h3", {}, "Record"), facts);
    if (span !== null) this.showSpanDetail(detail, span, add);
    const actions = make("div", { className: "actions" });
    const action = (text, onclick) => actions.append(make("button", { type: "button", onclick }, text));
    if (span !== null) {
      action("Zoom to command", () => this.zoomToCommand());
      if (span.first !== current) action("Its Begin", () => this.goTo(span.first));
      if (span.last !== current) action("Its last line", () => this.goTo(span.last));
      action(this.filter.commands.has(span.command) ? "All commands" : `Only ${shown(run.commands[span.command])}`, () => {
        this.toggleCommand(span.command);
        this.showDetail();
      });
    }
    detail.append(actions);
    const mark = message.querySelector("mark");
    if (mark !== null) message.scrollTop = mark.offsetTop - message.offsetTop - message.clientHeight / 2;
  }

  showSpanDetail(detail, span, add) {
    const { run } = this;
    const facts = make("dl");
    add(facts, "Name", shown(run.commands[span.command]));
    if (span.index !== null) add(facts, "Index", String(span.index));
    add(facts, "Begin", clock(span.begin));
    add(facts, "Duration", make("span", { className: span.ending === NEXT_COMMAND || span.ending === LOG_END ? "open" : "" }, this.durationText(span)));
    if (span.code !== null) add(facts, "Result", make("span", { className: this.isBad(span.code, span.severity) ? "bad" : "" }, this.codeText(span.code)));
    if (span.next !== null) add(facts, "Next", String(span.next));
    detail.append(make("h3", {}, "Command"), facts);
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

  // Print

  beforePrint() {
    document.documentElement.dataset.print = "";
    this.timeline.readColours();
    this.timeline.drawNow();
    const { run } = this;
    const records = this.filter.records();
    const body = make("tbody");
    for (const record of records.slice(0, Viewer.mostPrinted)) {
      body.append(make("tr", { className: ["", "warning", "error"][run.severity[record]] },
        make("td", {}, String(run.number(record))), make("td", {}, clock(run.time[record])),
        make("td", {}, run.threads[run.thread[record]].id), make("td", {}, shown(run.message[record]))));
    }
    const left = records.length - Viewer.mostPrinted;
    byId("print").replaceChildren(make("table", {}, make("thead", {}, make("tr", {}, ...["#", "Time", "Thread", "Message"]
      .map((text) => make("th", {}, text)))), body), left > 0 ? make("p", {}, `${plural(left, "more record")} not printed; a filter makes them fewer.`) : "");
  }

  afterPrint() {
    delete document.documentElement.dataset.print;
    byId("print").replaceChildren();
    this.timeline.readColours();
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
