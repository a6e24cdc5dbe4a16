// The log as data: runs with their records and spans, filters over them, and how times and codes are told.

const NONE = 0, WARNING = 1, ERROR = 2; // severities
const END_LINE = 0, NEXT_COMMAND = 1, LOG_END = 2, UNWRITTEN = 3; // how a span ended
const DAY = 24 * 60 * 60 * 1000;

// Of the system's codes those that uninstallers meet.
const CODE_NAMES = new Map([
  [0, "success"], [2, "file not found"], [3, "path not found"], [5, "access denied"], [13, "invalid data"],
  [19, "write protected"], [32, "in use by another process"], [33, "locked by another process"],
  [87, "invalid parameter"], [122, "buffer too small"], [126, "module not found"], [127, "procedure not found"],
  [145, "folder not empty"], [183, "exists already"], [203, "no such environment variable"], [206, "name too long"],
  [258, "timed out"], [259, "no more items"], [303, "file to be deleted"], [1018, "key marked for deletion"],
  [1058, "service disabled"], [1060, "no such service"], [1062, "service not running"], [1168, "not found"],
  [1223, "cancelled by the user"], [1314, "privilege not held"], [1359, "internal error: was busy"],
  [1460, "timed out"], [1920, "file cannot be accessed"],
]);

const pad = (number, digits) => String(number).padStart(digits, "0");
const plural = (count, one, many = one + "s") => `${count.toLocaleString("en")} ${count === 1 ? one : many}`;

function clock(time) {
  const ms = Math.round(((time % DAY) + DAY) % DAY);
  return `${pad(Math.floor(ms / 3600000), 2)}:${pad(Math.floor(ms / 60000) % 60, 2)}:` +
    `${pad(Math.floor(ms / 1000) % 60, 2)}.${pad(ms % 1000, 3)}`;
}

function date(time) {
  const day = new Date(Math.floor(time / DAY) * DAY);
  return `${day.getUTCFullYear()}-${pad(day.getUTCMonth() + 1, 2)}-${pad(day.getUTCDate(), 2)}`;
}

function duration(ms) {
  if (ms < 1000) return `${Math.round(ms)} ms`;
  if (ms < 60000) return `${(ms / 1000).toFixed(3)} s`;
  const seconds = Math.round(ms / 1000);
  if (seconds < 3600) return `${Math.floor(seconds / 60)} m ${pad(seconds % 60, 2)} s`;
  return `${Math.floor(seconds / 3600)} h ${pad(Math.floor(seconds / 60) % 60, 2)} m`;
}

/** A message for the eye: control and direction characters cannot act. */
function shown(text) {
  return text.replace(/[\0-\x08\x0b-\x1f\x7f-\x9f\u200e\u200f\u2028-\u202e\u2066-\u2069]/g, (character) => {
    const code = character.charCodeAt(0);
    return code < 0x100 ? "\\x" + pad(code.toString(16), 2) : "\\u" + pad(code.toString(16), 4);
  });
}

/** The same on one line. */
const oneLine = (text) => shown(text).replace(/\n/g, " ⏎ ").replace(/\t/g, "  ");

/** The first position in the sorted list whose key is not below the value. */
function lowerBound(count, key, value) {
  let low = 0, high = count;
  while (low < high) {
    const middle = (low + high) >> 1;
    if (key(middle) < value) low = middle + 1; else high = middle;
  }
  return low;
}

class Run {
  constructor(data) {
    this.name = data.name || "Log";
    this.label = data.label;
    this.start = data.start;
    this.dated = data.dated;
    this.leftOut = data.leftOut;
    this.files = data.files;
    this.commands = data.commands;
    this.message = data.message;
    this.count = data.message.length;
    this.thread = Uint32Array.from(data.thread);
    this.file = Uint32Array.from(data.file);
    this.offset = Float64Array.from(data.offset);
    this.severity = new Uint8Array(this.count);
    for (const [record, severity] of data.severity) this.severity[record] = severity;
    this.code = new Map(data.code.map(([record, code, isExit]) => [record, { code, isExit: isExit === 1 }]));
    this.threads = data.threads.map(([id, description], number) =>
      ({ number, id: id === 0 ? "?" : String(id), description, records: [], spans: [], errors: 0 }));
    this.takeTimes(data.time);
    this.takeSpans(data.spans);
    this.placeProblems(data.problems);
    this.errors = 0;
    this.warnings = 0;
    for (let record = 0; record < this.count; ++record) {
      if (this.severity[record] === ERROR) { ++this.errors; ++this.threads[this.thread[record]].errors; }
      if (this.severity[record] === WARNING) ++this.warnings;
    }
    this.summarize();
  }

  /** `time` is as it was logged; `at` never goes back within a thread; `delta` is since the thread's record before. */
  takeTimes(steps) {
    this.time = new Float64Array(this.count);
    this.at = new Float64Array(this.count);
    this.delta = new Float64Array(this.count);
    let time = 0;
    this.begin = Infinity;
    this.end = -Infinity;
    for (let record = 0; record < this.count; ++record) {
      time += steps[record];
      const { records } = this.threads[this.thread[record]];
      const before = records[records.length - 1];
      this.time[record] = time;
      this.at[record] = before === undefined ? time : Math.max(this.at[before], time);
      this.delta[record] = before === undefined ? NaN : time - this.time[before];
      records.push(record);
      this.begin = Math.min(this.begin, this.at[record]);
      this.end = Math.max(this.end, this.at[record]);
    }
    if (this.count === 0) this.begin = this.end = 0;
  }

  takeSpans(spans) {
    this.spans = spans.map(([first, last, command, index, next, ending, end, severity, code, isExit], number) => ({
      number, first, last, command, index, next, ending, end, severity,
      code: code === null ? null : { code, isExit: isExit === 1 },
      begin: this.at[first], duration: end - this.at[first], thread: this.thread[first],
    }));
    this.spanOf = new Int32Array(this.count).fill(-1);
    for (const span of this.spans) this.threads[span.thread].spans.push(span);
    for (const thread of this.threads) {
      let next = 0, current = null;
      for (const record of thread.records) {
        if (next < thread.spans.length && thread.spans[next].first === record) current = thread.spans[next++];
        if (current !== null && record <= current.last) this.spanOf[record] = current.number;
      }
    }
  }

  /** Gives each problem the record of its file that stands before it, or -1. */
  placeProblems(problems) {
    const placeless = ["note", "file", "no-key"];
    const ofFiles = new Map(); // records of a file by their offsets
    const recordsOf = (file) => {
      if (!ofFiles.has(file)) {
        const records = [];
        for (let record = 0; record < this.count; ++record) if (this.file[record] === file) records.push(record);
        ofFiles.set(file, records.sort((a, b) => this.offset[a] - this.offset[b]));
      }
      return ofFiles.get(file);
    };
    this.problems = problems.map(([kind, file, offset, bytes, text]) => {
      const records = placeless.includes(kind) ? [] : recordsOf(this.files.indexOf(file));
      const behind = lowerBound(records.length, (i) => this.offset[records[i]], offset);
      return { kind, file, offset, bytes, text, record: records[Math.max(0, behind - 1)] ?? -1 };
    });
    this.damage = new Map(); // by the record before it
    for (const problem of this.problems) if (problem.record >= 0) this.damage.set(problem.record, problem.text);
  }

  /** What each command's name adds up to, and a hue for it. */
  summarize() {
    const sums = new Map();
    for (const span of this.spans) {
      const sum = sums.get(span.command) ??
        { command: span.command, name: this.commands[span.command], count: 0, duration: 0, longest: 0, errors: 0, open: 0 };
      ++sum.count;
      sum.duration += span.duration;
      sum.longest = Math.max(sum.longest, span.duration);
      if (span.severity === ERROR) ++sum.errors;
      if (span.ending === NEXT_COMMAND || span.ending === LOG_END) ++sum.open;
      sums.set(span.command, sum);
    }
    this.sums = [...sums.values()];
    this.open = this.sums.reduce((open, sum) => open + sum.open, 0);
    // Away from red and amber, which mean something.
    const hues = [212, 158, 268, 190, 98, 305, 236, 130, 330, 175, 284, 72];
    this.hue = new Map();
    [...this.sums].sort((a, b) => b.count - a.count).forEach((sum, place) => this.hue.set(sum.command, hues[place % hues.length]));
  }

  /** The span's command as the log has it. */
  title(span) {
    return (span.index === null ? "" : span.index + " ") + this.commands[span.command];
  }

  /** The number that a record is known by. */
  number(record) { return this.leftOut + record + 1; }

  /** A line as `ky log read` prints it. */
  line(record) {
    const time = clock(this.time[record]).replace(".", ":");
    const head = `[${time}] ${this.threads[this.thread[record]].id} `;
    return head + shown(this.message[record]).replace(/\n/g, "\n" + " ".repeat(head.length));
  }
}

/** Text, or /regular expression/flags. Gives what finds it, or `wrong` with the reason. */
function parseQuery(text) {
  if (text === "") return { find: null };
  const expression = /^\/(.+)\/([a-z]*)$/.exec(text);
  try {
    const find = expression === null
      ? new RegExp(text.replace(/[.*+?^${}()|[\]\\]/g, "\\$&"), "gi")
      : new RegExp(expression[1], [...new Set(expression[2].replace(/[gy]/g, "") + "g")].join(""));
    return { find };
  } catch (error) {
    return { find: null, wrong: error.message };
  }
}

/** What of a run is listed. */
class Filter {
  constructor(run) {
    this.run = run;
    this.hiddenThreads = new Set();
    this.commands = new Set(); // none: all
    this.level = NONE;
    this.range = null; // {axis, from, to}
    this.find = null;
    this.only = false;
    this.isHit = new Uint8Array(run.count);
    this.hits = 0;
  }

  get active() {
    return this.hiddenThreads.size > 0 || this.commands.size > 0 || this.level > NONE || this.range !== null ||
      (this.only && this.find !== null);
  }

  search(find) {
    this.find = find;
    this.hits = 0;
    for (let record = 0; record < this.run.count; ++record) {
      let hit = 0;
      if (find !== null) {
        find.lastIndex = 0;
        hit = find.test(this.run.message[record]) ? 1 : 0;
      }
      this.isHit[record] = hit;
      this.hits += hit;
    }
  }

  inRange(from, to) {
    return this.range === null || (to >= this.range.from && from <= this.range.to);
  }

  /** The records that pass, in order. */
  records() {
    const { run } = this;
    const passing = [];
    const threadShown = run.threads.map((thread) => !this.hiddenThreads.has(thread.number));
    const byTime = this.range !== null && this.range.axis === "time";
    for (let record = 0; record < run.count; ++record) {
      if (!threadShown[run.thread[record]] || run.severity[record] < this.level) continue;
      if (this.only && this.find !== null && this.isHit[record] === 0) continue;
      if (this.commands.size > 0) {
        const span = run.spanOf[record];
        if (span < 0 || !this.commands.has(run.spans[span].command)) continue;
      }
      if (this.range !== null) {
        const place = byTime ? run.at[record] : record;
        if (place < this.range.from || place > this.range.to) continue;
      }
      passing.push(record);
    }
    return passing;
  }

  /** The spans that pass; one with a hit is a hit. */
  spans() {
    const { run } = this;
    const byTime = this.range !== null && this.range.axis === "time";
    let withHits = null;
    if (this.only && this.find !== null) {
      withHits = new Set();
      for (let record = 0; record < run.count; ++record) if (this.isHit[record] === 1) withHits.add(run.spanOf[record]);
    }
    return run.spans.filter((span) => !this.hiddenThreads.has(span.thread) && span.severity >= this.level &&
      (this.commands.size === 0 || this.commands.has(span.command)) && (withHits === null || withHits.has(span.number)) &&
      (byTime ? this.inRange(span.begin, span.end) : this.inRange(span.first, span.last)));
  }
}
