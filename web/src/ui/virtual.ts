import { h } from "./dom";

/** A list of which only the rows in sight are elements. Rows are equally high. */
export class VirtualList {
  readonly element: HTMLElement;
  private readonly rows: HTMLElement;
  private length = 0;
  private first = -1;
  private last = -1;

  /** @p render makes the row at a place; rows are positioned by the list. */
  constructor(
    private readonly rowHeight: number,
    private readonly render: (at: number) => HTMLElement,
    attributes: Record<string, string> = {},
  ) {
    this.rows = h("div", { class: "rows", role: "presentation" });
    this.element = h("div", { class: "virtual", ...attributes }, this.rows);
    this.element.addEventListener("scroll", () => this.show(false), { passive: true });
    new ResizeObserver(() => this.show(false)).observe(this.element);
  }

  /** Shows @p length rows anew. */
  update(length: number): void {
    this.length = length;
    this.rows.style.height = `${length * this.rowHeight}px`;
    this.show(true);
  }

  scrollTo(at: number): void {
    const top = at * this.rowHeight;
    const { scrollTop, clientHeight } = this.element;
    if (top < scrollTop) {
      this.element.scrollTop = top;
    } else if (top + this.rowHeight > scrollTop + clientHeight) {
      this.element.scrollTop = top + this.rowHeight - clientHeight;
    }
    this.show(false);
  }

  get pageSize(): number {
    return Math.max(1, Math.floor(this.element.clientHeight / this.rowHeight) - 1);
  }

  private show(anew: boolean): void {
    const margin = 8;
    const first = Math.max(0, Math.floor(this.element.scrollTop / this.rowHeight) - margin);
    const visible = Math.ceil((this.element.clientHeight || 600) / this.rowHeight);
    const last = Math.min(this.length, first + visible + 2 * margin);
    if (!anew && first === this.first && last === this.last) {
      return;
    }
    this.first = first;
    this.last = last;
    const rows: HTMLElement[] = [];
    for (let at = first; at < last; ++at) {
      const row = this.render(at);
      row.style.top = `${at * this.rowHeight}px`;
      rows.push(row);
    }
    this.rows.replaceChildren(...rows);
  }
}
