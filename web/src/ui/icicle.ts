import { addressText } from "../data/address";
import type { Context } from "../data/design";
import type { App } from "./app";
import { count, h, plural, s, short, shown } from "./dom";

const LEVEL = 44;
const LEVELS = 5;
/** Instances narrower than this are drawn together. */
const NARROW = 5;

/** Instances as boxes, each level below its owner: as wide as they hold registers, painted as the clock of most. */
export class Icicle {
  readonly element = h("div", { class: "icicle" });
  private readonly clocks = new Set<number>();
  private width = 0;

  constructor(
    private readonly app: App,
    private readonly context: Context,
    private readonly path: string[],
  ) {
    new ResizeObserver(() => this.draw()).observe(this.element);
  }

  private weight(module: number): number {
    const totals = this.app.totals.of(module);
    return this.bySize ? totals.cells + totals.instances : totals.registers;
  }

  /** A design without registers is sized by its cells. */
  private get bySize(): boolean {
    return this.app.totals.of(this.context[this.context.length - 1]!.module).registers === 0;
  }

  private draw(): void {
    const width = Math.max(200, Math.floor(this.element.clientWidth));
    if (width === this.width) {
      return;
    }
    this.width = width;
    this.clocks.clear();
    const boxes: SVGElement[] = [];
    const depth = this.box(boxes, this.context, this.path, 0, 0, width);
    const unit = this.bySize ? "cells" : "registers";
    this.element.replaceChildren(
      s(
        "svg",
        { width, height: depth * LEVEL, role: "group", "aria-label": `Instances, as wide as they hold ${unit}` },
        this.app.marks.paints(this.clocks, "icicle"),
        boxes,
      ),
      this.legend(),
    );
  }

  /** Draws an occurrence and what is below it; returns the number of levels down to the lowest. */
  private box(boxes: SVGElement[], context: Context, path: string[], level: number, x: number, width: number): number {
    const { design, totals, marks } = this.app;
    const module = context[context.length - 1]!.module;
    const uses = totals.byClock(context);
    const main = uses[0]?.clock ?? -1;
    this.clocks.add(main);
    const name = path.length === 0 ? design.head.top : path[path.length - 1]!;
    const { registers } = totals.of(module);
    const parts = uses.slice(0, 3).map((use) => `${marks.name(use.clock)} ${count(use.registers)}`);
    const text = `${name}: ${plural(registers, "register")}${parts.length > 0 ? ` (${parts.join(", ")})` : ""}`;
    const y = level * LEVEL;
    boxes.push(
      s(
        "a",
        { href: addressText({ view: "instance", path }) },
        s("title", {}, shown(text.slice(0, 600))),
        s("rect", {
          x: x + 0.5,
          y: y + 0.5,
          width: Math.max(1, width - 1),
          height: LEVEL - 2,
          rx: 3,
          fill: marks.paint(main, "icicle"),
        }),
        width > 34 && s("text", { x: x + 7, y: y + 18 }, short(name, Math.floor((width - 10) / 7.4))),
        width > 54 &&
          s(
            "text",
            { x: x + 7, y: y + 34, class: "small" },
            short(`${marks.letters(main)} · ${count(registers)}`, Math.floor((width - 10) / 6.4)),
          ),
      ),
    );
    const subs = design.module(module).subs;
    if (level + 1 === LEVELS || subs.length === 0) {
      return level + 1;
    }
    const all = this.weight(module);
    const order = subs
      .map(([, below], sub) => ({ sub, weight: this.weight(below) }))
      .filter(({ weight }) => weight > 0)
      .sort((a, b) => b.weight - a.weight || a.sub - b.sub);
    let deepest = level + 1;
    let left = x;
    for (const [at, { sub, weight }] of order.entries()) {
      const part = (width * weight) / all;
      if (part < NARROW) {
        const rest = order.slice(at);
        const sum = rest.reduce((total, each) => total + each.weight, 0);
        this.rest(boxes, rest.length, sum, level + 1, left, Math.max(2, (width * sum) / all));
        deepest = Math.max(deepest, level + 2);
        break;
      }
      const below = [...path, subs[sub]![0]];
      deepest = Math.max(deepest, this.box(boxes, design.below(context, sub), below, level + 1, left, part));
      left += part;
    }
    return deepest;
  }

  private rest(boxes: SVGElement[], instances: number, weight: number, level: number, x: number, width: number): void {
    const text = `${plural(instances, "more instance")} with ${count(weight)} ${this.bySize ? "cells" : "registers"}`;
    boxes.push(
      s(
        "g",
        { class: "rest" },
        s("title", {}, text),
        s("rect", { x: x + 0.5, y: level * LEVEL + 0.5, width: Math.max(1, width - 1), height: LEVEL - 2, rx: 3 }),
        width > 70 && s("text", { x: x + 7, y: level * LEVEL + 26 }, short(`+ ${count(instances)} more`, width / 7.4)),
      ),
    );
  }

  private legend(): HTMLElement {
    const clocks = [...this.clocks].sort(
      (a, b) => (this.app.design.clocks[b]?.registers ?? 0) - (this.app.design.clocks[a]?.registers ?? 0),
    );
    const most = 12;
    return h(
      "p",
      { class: "legend" },
      clocks.slice(0, most).map((clock) => this.app.marks.link(clock)),
      clocks.length > most && h("span", { class: "dim" }, `and ${plural(clocks.length - most, "more clock")}`),
    );
  }
}
