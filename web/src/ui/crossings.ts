import { addressText, NO_CLOCK } from "../data/address";
import type { CrossingRow, Severity } from "../data/format";
import { type App, quoted } from "./app";
import { type Child, count, h, plural, short, shown } from "./dom";
import { nameLink } from "./nets";
import { commandText, pagedTable, place } from "./parts";

/** Clocks in a matrix; of more, pairs are listed. */
const MOST_CLOCKS = 40;
const SIGNS: Record<Severity, string> = { unsafe: "✗", warning: "!", safe: "✓" };

const launchName = (app: App, launch: number): string => (launch < 0 ? NO_CLOCK : app.design.clocks[launch]!.name);

function counts(pair: number[]): [Severity, number][] {
  const [, , safe, warning, unsafe] = pair as [number, number, number, number, number];
  const all: [Severity, number][] = [
    ["unsafe", unsafe],
    ["warning", warning],
    ["safe", safe],
  ];
  return all.filter(([, number]) => number > 0);
}

function pairLink(app: App, pair: number[]): HTMLElement {
  const [launch, capture] = pair as [number, number];
  const text = counts(pair)
    .map(([severity, number]) => `${count(number)} ${severity}`)
    .join(", ");
  const worst = counts(pair)[0]?.[0] ?? "safe";
  return h(
    "a",
    {
      class: `crossing ${worst}`,
      href: addressText({ view: "crossing", launch: launchName(app, launch), capture: app.marks.name(capture) }),
      title: text,
    },
    h("span", { class: "offscreen" }, `From ${short(launchName(app, launch), 200)} to ${short(app.marks.name(capture), 200)}: `),
    counts(pair).map(([severity, number]) =>
      h("span", { class: `severity ${severity}` }, `${SIGNS[severity]} ${count(number)}`, h("span", { class: "offscreen" }, ` ${severity}`)),
    ),
  );
}

export function crossingsView(app: App): HTMLElement {
  const { pairs, all } = app.design.head.crossings;
  const launches = [...new Set(pairs.map(([launch]) => launch!))];
  const captures = [...new Set(pairs.map(([, capture]) => capture!))];
  const intro = h(
    "p",
    { class: "dim" },
    `${plural(all, "row")} of paths between clocks, bits of one vector together. `,
    Object.entries(SIGNS).map(([severity, sign]) => [h("span", { class: `severity ${severity}` }, `${sign} ${severity}`), " "]),
  );
  if (pairs.length === 0) {
    return h("article", { class: "card" }, h("h1", {}, "Crossings"), h("p", {}, "No path leads from one clock to another."));
  }
  if (launches.length > MOST_CLOCKS || captures.length > MOST_CLOCKS) {
    const sorted = [...pairs].sort((a, b) => b[4]! - a[4]! || b[3]! - a[3]!);
    return h(
      "article",
      { class: "card" },
      h("h1", {}, "Crossings"),
      intro,
      pagedTable("Pairs of clocks with crossings", ["From", "To", "Crossings"], sorted, (pair) => [app.marks.link(pair[0]!), app.marks.link(pair[1]!), pairLink(app, pair)]),
    );
  }
  const byPair = new Map(pairs.map((pair) => [`${pair[0]} ${pair[1]}`, pair]));
  return h(
    "article",
    { class: "card" },
    h("h1", {}, "Crossings"),
    intro,
    h(
      "div",
      { class: "table matrix", role: "region", tabindex: "0", "aria-label": "Matrix of crossings" },
      h(
        "table",
        {},
        h("caption", {}, "From the clock of the row to that of the column, in bits"),
        h(
          "thead",
          {},
          h(
            "tr",
            {},
            h("td"),
            captures.map((clock) => h("th", { scope: "col" }, app.marks.swatch(clock), h("div", { class: "upright", title: shown(app.marks.name(clock)).slice(0, 500) }, short(app.marks.name(clock), 28)))),
          ),
        ),
        h(
          "tbody",
          {},
          launches.map((launch) =>
            h(
              "tr",
              {},
              h("th", { scope: "row" }, launch < 0 ? h("span", {}, "port or black box") : app.marks.link(launch)),
              captures.map((capture): Child => {
                const pair = byPair.get(`${launch} ${capture}`);
                return h("td", { class: launch === capture ? "same" : undefined }, pair && pairLink(app, pair));
              }),
            ),
          ),
        ),
      ),
    ),
  );
}

/** The crossings between two clocks; undefined when one of them is none of the design. */
export function crossingView(app: App, launch: string, capture: string): HTMLElement | undefined {
  const from = launch === NO_CLOCK ? -1 : app.design.clocks.findIndex(({ name }) => name === launch);
  const to = app.design.clocks.findIndex(({ name }) => name === capture);
  if (to < 0 || (from < 0 && launch !== NO_CLOCK)) {
    return undefined;
  }
  const list = h("div", {}, h("p", { class: "dim" }, "Reading details…"));
  void app.crossingRows().then(
    (rows) => list.replaceChildren(...rowsTable(app, rows, from, to)),
    (fault: Error) => list.replaceChildren(h("p", { class: "fault", role: "alert" }, fault.message)),
  );
  return h(
    "article",
    { class: "card" },
    h("p", {}, h("a", { href: "#/crossings" }, "← All crossings")),
    h("h1", {}, "Crossings"),
    h("p", { class: "between" }, from < 0 ? "from a port or black box" : app.marks.link(from), h("span", { "aria-label": "to" }, " → "), app.marks.link(to)),
    list,
  );
}

function rowsTable(app: App, all: CrossingRow[], from: number, to: number): HTMLElement[] {
  const order: Severity[] = ["unsafe", "warning", "safe"];
  const rows = all
    .filter((row) => row.launch === from && row.capture === to)
    .sort((a, b) => order.indexOf(a.severity) - order.indexOf(b.severity));
  const there = app.design.head.crossings.pairs.find((pair) => pair[0] === from && pair[1] === to)?.[5] ?? 0;
  const table = pagedTable("Crossings", ["How", "Class", "From", "To", "Bits", "Cells", "Note", "Source"], rows, (row): Child[] => [
          h("span", { class: `severity ${row.severity}` }, `${SIGNS[row.severity]} ${row.severity}`),
          row.class.replace(/-/g, " "),
          nameLink(app, row.from),
          [nameLink(app, row.to), h("span", { class: "dim" }, ` pin ${shown(row.pin)}`)],
          count(row.bits),
          count(row.cells),
          [
            row.stages > 0 && h("div", {}, plural(row.stages, "flip-flop")),
            row.control !== undefined && h("div", {}, "opened by ", nameLink(app, row.control)),
            row.meets !== undefined && h("div", {}, "meets another at ", nameLink(app, row.meets)),
          ],
          place(app, row.place),
        ]);
  if (rows.length === there) {
    return rows.length > 0 ? [table] : [h("p", { class: "dim" }, "None.")];
  }
  const names = [launchName(app, from), app.marks.name(to)].map(quoted);
  return [
    h("p", { class: "note" }, `The page holds ${count(rows.length)} of ${plural(there, "row")}. This shows all:`),
    commandText(app.command("crossings", `--from ${names[0]} --to ${names[1]}`)),
    table,
  ];
}
