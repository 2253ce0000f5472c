import { addressText } from "../data/address";
import type { Context } from "../data/design";
import type { App } from "./app";
import { count, h, shown } from "./dom";
import { VirtualList } from "./virtual";

interface Node {
  context: Context;
  path: string[];
  place: number;
  siblings: number;
  isOpen: boolean;
}

const ROW = 28;

/** The hierarchy as a tree: the children of an instance are made when it is opened. */
export class InstanceTree {
  readonly element: HTMLElement;
  private readonly list: VirtualList;
  private nodes: Node[];
  private active = 0;
  private current = "";

  constructor(private readonly app: App) {
    this.list = new VirtualList(ROW, (at) => this.row(at), {
      role: "tree",
      tabindex: "0",
      "aria-label": "Instances",
      class: "virtual tree",
    });
    this.element = this.list.element;
    this.nodes = [{ context: app.design.root(), path: [], place: 1, siblings: 1, isOpen: false }];
    this.open(0);
    this.element.addEventListener("keydown", (event) => this.onKey(event));
    this.element.addEventListener("focus", () => this.show());
    this.show();
  }

  /** Opens the way to an instance and marks it as the one that is shown. */
  reveal(path: string[]): void {
    this.current = path.join("\u0000");
    let at = 0;
    for (let depth = 0; depth < path.length; ++depth) {
      this.open(at);
      const wanted = path.slice(0, depth + 1).join("\u0000");
      let next = at + 1;
      while (next < this.nodes.length && this.nodes[next]!.path.length > depth) {
        if (this.nodes[next]!.path.length === depth + 1 && this.nodes[next]!.path.join("\u0000") === wanted) {
          break;
        }
        ++next;
      }
      if (next === this.nodes.length || this.nodes[next]!.path.length !== depth + 1) {
        return;
      }
      at = next;
    }
    this.active = at;
    this.show();
    this.list.scrollTo(at);
  }

  private subsOf(node: Node) {
    return this.app.design.module(node.context[node.context.length - 1]!.module).subs;
  }

  private open(at: number): void {
    const node = this.nodes[at]!;
    const subs = this.subsOf(node);
    if (node.isOpen || subs.length === 0) {
      return;
    }
    node.isOpen = true;
    const children = subs.map(([name], sub) => ({
      context: this.app.design.below(node.context, sub),
      path: [...node.path, name],
      place: sub + 1,
      siblings: subs.length,
      isOpen: false,
    }));
    this.nodes = [...this.nodes.slice(0, at + 1), ...children, ...this.nodes.slice(at + 1)];
  }

  private close(at: number): void {
    const depth = this.nodes[at]!.path.length;
    let end = at + 1;
    while (end < this.nodes.length && this.nodes[end]!.path.length > depth) {
      ++end;
    }
    this.nodes[at]!.isOpen = false;
    this.nodes = [...this.nodes.slice(0, at + 1), ...this.nodes.slice(end)];
  }

  private toggle(at: number): void {
    if (this.nodes[at]!.isOpen) {
      this.close(at);
    } else {
      this.open(at);
    }
    this.active = at;
    this.show();
  }

  private show(): void {
    this.list.update(this.nodes.length);
    this.element.setAttribute("aria-activedescendant", `node-${this.active}`);
  }

  private row(at: number): HTMLElement {
    const { design, totals, marks } = this.app;
    const node = this.nodes[at]!;
    const module = node.context[node.context.length - 1]!.module;
    const hasChildren = this.subsOf(node).length > 0;
    const { registers } = totals.of(module);
    const main = totals.byClock(node.context)[0];
    const name = node.path.length === 0 ? design.head.top : node.path[node.path.length - 1]!;
    const row = h(
      "div",
      {
        class: "row",
        role: "treeitem",
        id: `node-${at}`,
        "aria-level": node.path.length + 1,
        "aria-posinset": node.place,
        "aria-setsize": node.siblings,
        "aria-expanded": hasChildren ? String(node.isOpen) : undefined,
        "aria-selected": String(node.path.join("\u0000") === this.current),
        "data-active": at === this.active,
        title: `${shown(node.path.join("/")).slice(0, 400)}: ${shown(design.module(module).name).slice(0, 200)}`,
        click: (event: MouseEvent) => {
          if ((event.target as Element).closest(".twist")) {
            this.toggle(at);
          } else {
            this.go(at);
          }
        },
      },
      h("span", { class: "twist", "aria-hidden": "true" }, hasChildren ? (node.isOpen ? "▾" : "▸") : ""),
      registers > 0 && main ? marks.swatch(main.clock) : h("span", { class: "swatch" }),
      h("span", { class: "name" }, shown(name.slice(0, 400))),
      h("span", { class: "dim type" }, shown(design.module(module).name.slice(0, 200))),
      h("span", { class: "dim number" }, registers > 0 ? count(registers) : ""),
    );
    row.style.paddingInlineStart = `${4 + 14 * node.path.length}px`;
    return row;
  }

  private go(at: number): void {
    this.active = at;
    location.hash = addressText({ view: "instance", path: this.nodes[at]!.path });
    this.show();
  }

  private onKey(event: KeyboardEvent): void {
    const node = this.nodes[this.active]!;
    switch (event.key) {
      case "ArrowDown":
        this.move(this.active + 1);
        break;
      case "ArrowUp":
        this.move(this.active - 1);
        break;
      case "PageDown":
        this.move(this.active + this.list.pageSize);
        break;
      case "PageUp":
        this.move(this.active - this.list.pageSize);
        break;
      case "Home":
        this.move(0);
        break;
      case "End":
        this.move(this.nodes.length - 1);
        break;
      case "ArrowRight":
        if (node.isOpen) {
          this.move(this.active + 1);
        } else {
          this.toggle(this.active);
        }
        break;
      case "ArrowLeft":
        if (node.isOpen) {
          this.toggle(this.active);
        } else {
          let above = this.active;
          while (above > 0 && this.nodes[above]!.path.length >= node.path.length) {
            --above;
          }
          this.move(above);
        }
        break;
      case "Enter":
      case " ":
        this.go(this.active);
        break;
      default:
        return;
    }
    event.preventDefault();
  }

  private move(at: number): void {
    this.active = Math.max(0, Math.min(this.nodes.length - 1, at));
    this.show();
    this.list.scrollTo(this.active);
  }
}
