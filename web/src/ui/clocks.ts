import { addressText } from "../data/address";
import type { App } from "./app";
import { type Child, count, h, shown } from "./dom";
import { nameLink } from "./nets";
import { facts, pagedTable, place, section, title } from "./parts";

interface Line {
  clock: number;
  depth: number;
}

/** Every clock once: each below the first that it is made from. */
function clockLines(app: App): Line[] {
  const { clocks } = app.design;
  const children = clocks.map((): number[] => []);
  clocks.forEach(({ parents }, clock) => {
    if (parents.length > 0) {
      children[parents[0]!]!.push(clock);
    }
  });
  const lines: Line[] = [];
  const isDrawn = new Set<number>();
  const draw = (root: number): void => {
    const waiting: Line[] = [{ clock: root, depth: 0 }];
    for (let line = waiting.pop(); line; line = waiting.pop()) {
      if (isDrawn.has(line.clock)) {
        continue;
      }
      isDrawn.add(line.clock);
      lines.push(line);
      for (const child of children[line.clock]!.slice().reverse()) {
        waiting.push({ clock: child, depth: line.depth + 1 });
      }
    }
  };
  clocks.forEach(({ parents }, clock) => parents.length === 0 && draw(clock));
  clocks.forEach((_, clock) => draw(clock));
  return lines;
}

function bar(value: number, most: number): HTMLElement {
  const element = h("span", { class: "bar", "aria-hidden": "true" });
  element.style.width = `${most > 0 ? Math.max(1, Math.round((90 * value) / most)) : 0}px`;
  return element;
}

export function clocksView(app: App): HTMLElement {
  const { list, nets, withoutClock } = app.design.head.clocks;
  const most = Math.max(0, ...list.map(({ registers }) => registers));
  return h(
    "article",
    { class: "card" },
    h("h1", {}, `Clocks (${count(list.length)})`),
    h("p", { class: "dim" }, `Below a clock stand those that are made from it. ${count(withoutClock)} of ${count(nets)} nets are reached by the registers of no clock.`),
    list.length === 0
      ? h("p", {}, "Nothing in this design is clocked.")
      : pagedTable(
          "Clock tree",
          ["Clock", "Begins at", "Edges", "Registers", "Nets", "Source"],
          clockLines(app),
          ({ clock, depth }): Child[] => {
            const each = list[clock]!;
            const name = h("span", { class: "branch" }, depth > 0 && h("span", { class: "dim", "aria-hidden": "true" }, "└ "), app.marks.link(clock));
            name.style.paddingInlineStart = `${depth * 18}px`;
            return [name, each.root.replace(/-/g, " "), each.edges, [bar(each.registers, most), count(each.registers)], count(each.nets), place(app, each.place)];
          },
          500,
        ),
  );
}

export function clockView(app: App, clock: number): HTMLElement {
  const each = app.design.clocks[clock]!;
  const made = app.design.clocks.map((_, id) => id).filter((id) => app.design.clocks[id]!.parents.includes(clock));
  const links = (ids: number[]): Child => ids.length > 0 && h("ul", { class: "plain" }, ids.slice(0, 200).map((id) => h("li", {}, app.marks.link(id))));
  const pairs = app.design.head.crossings.pairs.filter(([launch, capture]) => launch === clock || capture === clock);
  return h(
    "article",
    { class: "card" },
    title("Clock", each.name, each.name),
    facts([
      ["Mark", app.marks.swatch(clock)],
      ["Net", nameLink(app, each.name)],
      ["Begins at", each.root.replace(/-/g, " ")],
      ["Edges", each.edges],
      ["Registers", count(each.registers)],
      ["Nets", `${count(each.nets)} that its registers reach`],
      ["Source", place(app, each.place)],
      ["Made from", links(each.parents)],
      ["Makes", links(made)],
      ["Also called", each.names.length > 0 && h("ul", { class: "plain" }, each.names.slice(0, 50).map((name) => h("li", {}, nameLink(app, name))))],
    ]),
    section(
      "Crossings",
      pairs.length === 0
        ? h("p", { class: "dim" }, "None.")
        : pagedTable("Crossings of this clock", ["From", "To", "Unsafe", "Warning", "Safe", "Rows"], pairs, ([launch, capture, safe, warning, unsafe]) => [
            app.marks.link(launch!),
            app.marks.link(capture!),
            count(unsafe!),
            count(warning!),
            count(safe!),
            h("a", { href: addressText({ view: "crossing", launch: launch! < 0 ? "(none)" : app.marks.name(launch!), capture: app.marks.name(capture!) }) }, "list", h("span", { class: "offscreen" }, ` of crossings from ${shown(app.marks.name(launch!))} to ${shown(app.marks.name(capture!))}`)),
          ]),
    ),
  );
}
