import { addressText } from "../data/address";
import type { Body } from "../data/body";
import type { Context } from "../data/design";
import type { App } from "./app";
import { type Child, count, h, plural, shown } from "./dom";
import { Icicle } from "./icicle";
import { breadcrumbs, facts, pagedTable, place, section, title } from "./parts";

const DIRECTIONS = ["", "input", "output", "inout"];

/** Card of an instance of a module. */
export function instanceCard(app: App, context: Context, path: string[]): HTMLElement {
  const { design, totals } = app;
  const number = context[context.length - 1]!.module;
  const module = design.module(number);
  const total = totals.of(number);
  const name = path.length === 0 ? design.head.top : path[path.length - 1]!;
  return h(
    "article",
    { class: "card" },
    path.length > 0 && breadcrumbs(app, path),
    title(path.length === 0 ? "Top" : "Instance", name, path.join("/")),
    facts([
      ["Path", path.length > 0 && h("code", {}, shown(path.join("/")))],
      ["Module", h("a", { href: addressText({ view: "module", number }) }, shown(module.name))],
      ["Source", place(app, path.length > 0 ? cellPlace(design.body(context[context.length - 2]!.module), design.subOf(context, context.length - 1)[2]) : module.place)],
      ["Holds", `${plural(total.registers, "register")}, ${plural(total.cells, "cell")}, ${plural(total.instances - 1, "instance")}, ${plural(total.signals, "net or bus", "nets and buses")}`],
      ["Design", path.length === 0 && `${shown(design.head.name)}, ${design.head.form}${design.head.postMap === undefined ? "" : `, with ${shown(design.head.postMap)}`}`],
    ]),
    section("Registers by clock", new Icicle(app, context, path).element),
    path.length === 0 && leftOut(app),
    whenWhole(app, () => {
      const body = design.body(number);
      return [portsSection(app, context, path, body), signalsSection(app, path, body), cellsSection(path, body)];
    }),
  );
}

/** What @p make makes, at once or when the modules of the design have been read. */
function whenWhole(app: App, make: () => HTMLElement[]): HTMLElement[] {
  if (app.design.isWhole) {
    return make();
  }
  const waiting = h("p", { class: "note", role: "status" }, "Reading the modules of the design…");
  void app.whole.then(() => waiting.replaceWith(...make()), () => {});
  return [waiting];
}

function cellPlace(body: Body, cell: number): [number, number] {
  return [body.columns.cellPlaces[2 * cell] ?? -1, body.columns.cellPlaces[2 * cell + 1] ?? 0];
}

/** Ports in short, the bits of a vector together, with the nets above. */
function portsSection(app: App, context: Context, path: string[], body: Body): HTMLElement {
  const ports = new Map<string, { direction: number; width: number; outside: Set<string> }>();
  const above = path.length > 0 ? app.design.body(context[context.length - 2]!.module) : undefined;
  const cell = path.length > 0 ? app.design.subOf(context, context.length - 1)[2] : -1;
  body.columns.ports.forEach(([name, direction], at) => {
    const base = name.replace(/\[-?\d+\]$/, "");
    const port = ports.get(base) ?? { direction, width: 0, outside: new Set<string>() };
    ++port.width;
    const net = above ? above.netOn(cell, at) : -1;
    if (above && net >= 0) {
      const signal = above.signalOf(net);
      port.outside.add(signal >= 0 ? above.signalName(signal) : above.columns.nets[net]!);
    }
    ports.set(base, port);
  });
  const columns = ["Port", "Direction", "Bits", ...(above ? ["Outside"] : [])];
  return section(
    `Ports (${count(ports.size)})`,
    ports.size > 0 &&
      pagedTable(
        "Ports",
        columns,
        [...ports],
        ([name, port]) => [
          signalLink(path, body, name),
          DIRECTIONS[port.direction],
          count(port.width),
          ...(above
            ? [
                [...port.outside].slice(0, 4).map((each, at): Child => [
                  at > 0 && ", ",
                  h("a", { href: addressText({ view: "net", path: path.slice(0, -1), name: each }) }, shown(each)),
                ]),
              ]
            : []),
        ],
        50,
      ),
  );
}

function signalLink(path: string[], body: Body, name: string): Child {
  const isKnown = body.signalCalled(name) !== undefined || body.netCalled(name) !== undefined;
  return isKnown ? h("a", { href: addressText({ view: "net", path, name }) }, shown(name)) : shown(name);
}

function signalsSection(app: App, path: string[], body: Body): HTMLElement {
  const all = body.columns.signals.map((_, signal) => signal);
  const declared = all.filter((signal) => body.isDeclared(signal));
  const others = all.length - declared.length;
  const table = h("div");
  const show = (signals: number[]): void => {
    table.replaceChildren(
      pagedTable("Nets and buses", ["Name", "Bits", "Source"], signals, (signal) => {
        const name = body.signalName(signal);
        return [h("a", { href: addressText({ view: "net", path, name }) }, shown(name)), count(body.widthOf(signal)), place(app, body.placeOf(signal))];
      }),
    );
  };
  show(declared.length > 0 ? declared : all);
  return section(
    `Nets and buses (${count(all.length)})`,
    declared.length > 0 &&
      others > 0 &&
      h(
        "label",
        { class: "check" },
        h("input", {
          type: "checkbox",
          change: (event: Event) => show((event.target as HTMLInputElement).checked ? all : declared),
        }),
        ` with ${count(others)} that no user declared`,
      ),
    table,
  );
}

function cellsSection(path: string[] | undefined, body: Body): HTMLElement {
  const cells: number[] = [];
  body.columns.kinds.forEach((kind, cell) => {
    if (kind >= 0) {
      cells.push(cell);
    }
  });
  return section(
    `Cells (${count(cells.length)})`,
    cells.length > 0 &&
      pagedTable(
        "Cells",
        ["Name", "Type", "Kind"],
        cells,
        (cell) => {
          const name = body.columns.cells[cell]!;
          const kind = body.kindOf(cell)!;
          return [path ? h("a", { href: addressText({ view: "cell", path, name }) }, shown(name)) : shown(name), shown(kind.name), kind.kind];
        },
        25,
      ),
  );
}

function leftOut(app: App): HTMLElement | false {
  const { details, crossings } = app.design.head;
  const notes = [
    details.verdicts < details.signals &&
      `Probe verdicts are in the page for ${count(details.verdicts)} of ${count(details.signals)} nets and buses that the user declared, those nearest to the top.`,
    details.chains < details.signals &&
      `Chains that prove clocks are in the page for ${count(details.chains)} of them.`,
    crossings.listed < crossings.all && `${count(crossings.listed)} of ${count(crossings.all)} crossings are listed.`,
  ].filter((note) => note !== false);
  return (
    notes.length > 0 &&
    section("What this page leaves out", h("ul", { class: "note" }, notes.map((note) => h("li", {}, note))), h("p", {}, "Cards name the command that shows what they leave out."))
  );
}

/** Card of a leaf cell; undefined when there is none of that name. */
export function cellCard(app: App, context: Context, path: string[], name: string): HTMLElement | undefined {
  const body = app.design.body(context[context.length - 1]!.module);
  const cell = body.columns.cells.indexOf(name);
  const kind = cell < 0 ? undefined : body.kindOf(cell);
  if (!kind) {
    return undefined;
  }
  const nets = body.netsOf(cell);
  const pins = kind.pins.map((pin, at) => ({ pin, net: nets[at]! })).filter(({ pin }) => pin[1] !== 0);
  return h(
    "article",
    { class: "card" },
    breadcrumbs(app, path),
    title("Cell", name, [...path, name].join("/")),
    facts([
      ["Path", h("code", {}, shown([...path, name].join("/")))],
      ["Type", shown(kind.name)],
      ["Kind", kind.kind + (kind.register ? ", a register" : "")],
      ["Source", place(app, cellPlace(body, cell))],
    ]),
    section(
      "Pins",
      pagedTable("Pins", ["Pin", "Direction", "Net"], pins, ({ pin, net }) => {
        const netName = net < 0 ? undefined : body.columns.nets[net]!;
        return [
          shown(pin[0]),
          DIRECTIONS[pin[1]]! + (pin[2] ? ", clock" : ""),
          netName === undefined ? h("span", { class: "dim" }, "not connected") : h("a", { href: addressText({ view: "net", path, name: netName }) }, shown(netName)),
        ];
      }),
    ),
  );
}

/** Card of a module, with the instances of it. */
export function moduleCard(app: App, number: number): HTMLElement {
  const { design } = app;
  const module = design.module(number);
  const body = design.body(number);
  const users = design.head.modules
    .map((each, at) => ({ at, name: each.name, times: each.subs.filter(([, below]) => below === number).length }))
    .filter(({ times }) => times > 0);
  const first = firstInstance(app, number);
  const total = app.totals.of(number);
  return h(
    "article",
    { class: "card" },
    title("Module", module.name, module.name),
    facts([
      ["In the netlist", module.module !== module.name && h("code", {}, shown(module.module))],
      ["Library", shown(module.library)],
      ["Source", place(app, module.place)],
      ["Holds", `${plural(total.registers, "register")}, ${plural(total.cells, "cell")}, ${plural(total.instances - 1, "instance")} with all below it`],
      ["First instance", first && h("a", { href: addressText({ view: "instance", path: first }) }, first.length === 0 ? "the top" : shown(first.join("/")))],
      [
        "Used in",
        users.length > 0 &&
          h(
            "ul",
            { class: "plain" },
            users.slice(0, 100).map(({ at, name, times }) => h("li", {}, h("a", { href: addressText({ view: "module", number: at }) }, shown(name)), times > 1 && ` (${plural(times, "time")})`)),
          ),
      ],
    ]),
    module.subs.length > 0 &&
      section(
        `Instances in it (${count(module.subs.length)})`,
        pagedTable("Instances", ["Name", "Module", "Registers"], module.subs, ([name, below]) => [
          shown(name),
          h("a", { href: addressText({ view: "module", number: below }) }, shown(design.module(below).name)),
          count(app.totals.of(below).registers),
        ]),
      ),
    section(
      `Ports (${count(body.columns.ports.length)} bits)`,
      body.columns.ports.length > 0 && pagedTable("Ports", ["Port", "Direction"], body.columns.ports, ([name, direction]) => [shown(name), DIRECTIONS[direction]], 50),
    ),
    cellsSection(undefined, body),
  );
}

/** Where a walk level by level meets a module first. */
function firstInstance(app: App, number: number): string[] | undefined {
  const seen = new Set([app.design.top]);
  const waiting: { module: number; path: string[] }[] = [{ module: app.design.top, path: [] }];
  for (const { module, path } of waiting) {
    if (module === number) {
      return path;
    }
    for (const [name, below] of app.design.module(module).subs) {
      if (!seen.has(below)) {
        seen.add(below);
        waiting.push({ module: below, path: [...path, name] });
      }
    }
  }
  return undefined;
}
