// What stands around list and lanes: facts, problems, threads, commands, the selected record; and the print.

/** Needs of its heirs what `RowWriter` needs, and what the controls call. */
class Panels extends RowWriter {
  static mostProblems = 500;
  static mostPrinted = 3000;

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
    for (const problem of problems.slice(0, Panels.mostProblems)) {
      const where = problem.file + (problem.kind === "note" || problem.kind === "file" ? "" : ` @${problem.offset}`);
      list.append(make("li", {}, problem.record < 0 ? make("span", {}, shown(where))
        : make("button", { type: "button", title: "Go to the record before it", onclick: () => this.goTo(problem.record) }, shown(where)),
      make("span", {}, shown(problem.text))));
    }
    if (problems.length > Panels.mostProblems) {
      list.append(make("li", {}, `and ${plural(problems.length - Panels.mostProblems, "more", "more")}`));
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

  beforePrint() {
    document.documentElement.dataset.print = "";
    this.timeline.readColours();
    this.timeline.drawNow();
    const { run } = this;
    const records = this.filter.records();
    const body = make("tbody");
    for (const record of records.slice(0, Panels.mostPrinted)) {
      body.append(make("tr", { className: ["", "warning", "error"][run.severity[record]] },
        make("td", {}, String(run.number(record))), make("td", {}, clock(run.time[record])),
        make("td", {}, run.threads[run.thread[record]].id), make("td", {}, shown(run.message[record]))));
    }
    const left = records.length - Panels.mostPrinted;
    byId("print").replaceChildren(make("table", {}, make("thead", {}, make("tr", {}, ...["#", "Time", "Thread", "Message"]
      .map((text) => make("th", {}, text)))), body), left > 0 ? make("p", {}, `${plural(left, "more record")} not printed; a filter makes them fewer.`) : "");
  }

  afterPrint() {
    delete document.documentElement.dataset.print;
    byId("print").replaceChildren();
    this.timeline.readColours();
  }
}
