// What stands in the rows of the list.

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

/** Needs of its heirs: `run`, `filter`, `timeline`, `current`, `anchor` and `position()`. */
class RowWriter {
  static longest = 600; // characters of a message in a row

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
      text.append(oneLine(whole.slice(0, RowWriter.longest)) + (whole.length > RowWriter.longest ? "…" : ""));
      return text;
    }
    // A hit that the row would cut off is brought into sight.
    find.lastIndex = 0;
    const begin = find.exec(whole)?.index ?? 0;
    const from = begin > this.roomForText() ? begin - 12 : 0;
    if (from > 0) text.append("… ");
    this.appendMarked(text, whole.slice(from, from + RowWriter.longest), oneLine);
    return text;
  }

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
}
