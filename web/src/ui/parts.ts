import { addressText } from "../data/address";
import type { Place } from "../data/format";
import type { App } from "./app";
import { type Child, count, h, s, short, shown } from "./dom";

/** Parts that several cards have. */

export function copyButton(text: string, what: string): HTMLButtonElement {
  const button = h(
    "button",
    {
      class: "copy",
      "aria-label": `Copy ${what}`,
      title: `Copy ${what}`,
      click: () => {
        void copy(text).then((isDone) => {
          button.replaceChildren(isDone ? "copied" : "not copied");
          setTimeout(() => button.replaceChildren(copyIcon()), 1200);
        });
      },
    },
    copyIcon(),
  );
  return button;
}

function copyIcon(): SVGSVGElement {
  return s(
    "svg",
    { width: 14, height: 14, viewBox: "0 0 14 14", "aria-hidden": "true", class: "icon" },
    s("rect", { x: 1, y: 1, width: 8.5, height: 8.5, rx: 1.5 }),
    s("rect", { x: 4.5, y: 4.5, width: 8.5, height: 8.5, rx: 1.5 }),
  );
}

async function copy(text: string): Promise<boolean> {
  try {
    await navigator.clipboard.writeText(text);
    return true;
  } catch {
    // Pages from a disk may not use the clipboard everywhere.
    const field = h("textarea", { class: "offscreen" });
    field.value = text;
    document.body.append(field);
    field.select();
    const isDone = document.execCommand("copy");
    field.remove();
    return isDone;
  }
}

/** A command to run, with a button that copies it. */
export function commandText(command: string): HTMLElement {
  return h("p", { class: "command" }, h("code", {}, shown(command)), copyButton(command, "the command"));
}

/** The way from the top, each level a link. */
export function breadcrumbs(app: App, path: string[]): HTMLElement {
  return h(
    "nav",
    { class: "crumbs", "aria-label": "Path" },
    h("a", { href: "#/" }, short(app.design.head.top, 60)),
    path.map((name, at) => [
      h("span", { class: "dim", "aria-hidden": "true" }, "/"),
      h("a", { href: addressText({ view: "instance", path: path.slice(0, at + 1) }) }, short(name, 60)),
    ]),
  );
}

export function title(kind: string, name: string, path: string, suffix: Child = undefined): HTMLElement {
  return h(
    "div",
    { class: "title" },
    h("h1", {}, h("span", { class: "kind" }, kind), " ", h("span", { class: "name" }, shown(name)), suffix),
    copyButton(path, "the path"),
  );
}

export function facts(rows: [term: string, value: Child][]): HTMLElement {
  return h(
    "dl",
    { class: "facts" },
    rows
      .filter(([, value]) => value !== undefined && value !== null && value !== false && value !== "")
      .map(([term, value]) => [h("dt", {}, term), h("dd", {}, value)]),
  );
}

export function place(app: App, where: Place | undefined): Child {
  const text = app.design.placeText(where);
  return text === "" ? undefined : h("code", { class: "place" }, shown(text));
}

export function section(name: string, ...children: Child[]): HTMLElement {
  return h("section", {}, h("h2", {}, name), children);
}

/** A table of which the first rows are shown, and more on request. */
export function pagedTable<T>(caption: string, columns: string[], rows: T[], cellsOf: (row: T) => Child[], page = 100): HTMLElement {
  const body = h("tbody");
  const isNumber = (cell: Child): boolean => typeof cell === "string" && /^[\d,.]+$/.test(cell);
  const numbers = rows.length > 0 ? cellsOf(rows[0]!).map((cell, at) => at > 0 && isNumber(cell)) : [];
  const more = h("button", { class: "more", click: () => show() });
  let next = 0;
  const show = (): void => {
    for (const row of rows.slice(next, next + page)) {
      body.append(
        h(
          "tr",
          {},
          cellsOf(row).map((cell, at) =>
            at === 0
              ? h("th", { scope: "row" }, cell)
              : h("td", { class: isNumber(cell) ? "number" : undefined }, cell),
          ),
        ),
      );
    }
    next = Math.min(rows.length, next + page);
    more.hidden = next === rows.length;
    more.textContent = `Show more (${count(rows.length - next)} left)`;
  };
  show();
  return h(
    "div",
    { class: "table", role: "region", tabindex: "0", "aria-label": caption },
    h("table", {}, h("caption", { class: "offscreen" }, caption), h("thead", {}, h("tr", {}, columns.map((each, at) => h("th", { scope: "col", class: numbers[at] ? "number" : undefined }, each)))), body),
    more,
  );
}
