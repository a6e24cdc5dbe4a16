// A list of which only the rows in view exist.

class RecordList {
  static ROW = 24;
  static HEAD = 26; // of the line above the rows, which stays in view

  /** `fill(row, position)` puts content into an element; `on.pick(position, event)` hears clicks. */
  constructor(viewport, body, fill, on) {
    this.viewport = viewport;
    this.body = body;
    this.fill = fill;
    this.count = 0;
    this.rows = new Map(); // position -> element
    this.spare = [];
    this.scheduled = false;
    viewport.addEventListener("scroll", () => this.schedule(), { passive: true });
    new ResizeObserver(() => this.schedule()).observe(viewport);
    body.addEventListener("mousedown", (event) => { if (event.shiftKey) event.preventDefault(); });
    body.addEventListener("click", (event) => {
      const row = event.target.closest(".row");
      if (row !== null && getSelection().isCollapsed) on.pick(Number(row.dataset.position), event);
    });
    body.addEventListener("dblclick", (event) => {
      const row = event.target.closest(".row");
      if (row !== null) on.open(Number(row.dataset.position));
    });
  }

  /** Shows that many rows anew. */
  reset(count) {
    this.count = count;
    this.body.style.height = count * RecordList.ROW + "px";
    this.viewport.setAttribute("aria-rowcount", String(count + 1));
    this.refresh();
  }

  /** Fills what is in view again. */
  refresh() {
    for (const row of this.rows.values()) this.drop(row);
    this.rows.clear();
    this.render();
  }

  schedule() {
    if (this.scheduled) return;
    this.scheduled = true;
    requestAnimationFrame(() => { this.scheduled = false; this.render(); });
  }

  drop(row) {
    row.hidden = true;
    this.spare.push(row);
  }

  render() {
    const { scrollTop, clientHeight } = this.viewport;
    const first = Math.max(0, Math.floor(scrollTop / RecordList.ROW) - 6);
    const end = Math.min(this.count, Math.ceil((scrollTop + clientHeight) / RecordList.ROW) + 6);
    for (const [position, row] of this.rows) {
      if (position >= first && position < end) continue;
      this.rows.delete(position);
      this.drop(row);
    }
    for (let position = first; position < end; ++position) {
      if (this.rows.has(position)) continue;
      const row = this.spare.pop() ?? this.body.appendChild(document.createElement("div"));
      row.hidden = false;
      row.className = "row";
      row.setAttribute("role", "row");
      row.setAttribute("aria-rowindex", String(position + 2));
      row.id = "row-" + position;
      row.dataset.position = String(position);
      row.style.top = position * RecordList.ROW + "px";
      row.replaceChildren();
      this.fill(row, position);
      this.rows.set(position, row);
    }
  }

  /** Scrolls as little as needed; to the middle where it is far. */
  reveal(position) {
    const top = position * RecordList.ROW, { scrollTop } = this.viewport;
    const clientHeight = this.viewport.clientHeight - RecordList.HEAD;
    const margin = Math.min(RecordList.ROW * 2, clientHeight / 4);
    if (top < scrollTop - clientHeight || top > scrollTop + 2 * clientHeight) {
      this.viewport.scrollTop = top - clientHeight / 2;
    } else if (top < scrollTop + margin) {
      this.viewport.scrollTop = top - margin;
    } else if (top + RecordList.ROW > scrollTop + clientHeight - margin) {
      this.viewport.scrollTop = top + RecordList.ROW - clientHeight + margin;
    }
    this.render();
    this.viewport.setAttribute("aria-activedescendant", "row-" + position);
  }

  get page() { return Math.max(1, Math.floor(this.viewport.clientHeight / RecordList.ROW) - 2); }
}
