import { type Address, addressText } from "../data/address";
import type { Body } from "../data/body";
import type { Context } from "../data/design";
import type { App } from "./app";
import { type Child, h, shown } from "./dom";
import { pagedTable, section } from "./parts";
import { bitsText, MOST_BITS, type Subject } from "./subject";

interface Connection {
  cell: number;
  pin: string;
  role: "drives" | "loads" | "both";
  bits: string[];
}

/** What is on the nets inside the module, and through its ports outside. */
export function connections(subject: Subject): HTMLElement {
  const { app, body, nets, bitNames, path, context } = subject;
  const found = new Map<string, Connection>();
  const ports = new Map<string, { name: string; direction: number; bits: string[] }>();
  nets.slice(0, MOST_BITS).forEach((net, at) => {
    if (net < 0) {
      return;
    }
    for (const { cell, pin } of body.pinsOn(net)) {
      const { name, direction } = body.pinOf(cell, pin);
      const base = name.replace(/\[-?\d+\]$/, "");
      const role = direction === 2 ? "drives" : direction === 3 ? "both" : "loads";
      const key = `${cell} ${role} ${base}`;
      const known = found.get(key) ?? { cell, pin: base, role, bits: [] };
      known.bits.push(bitNames[at]!);
      found.set(key, known);
    }
    body.columns.ports.forEach(([name, direction, inside]) => {
      if (inside === net) {
        const base = name.replace(/\[-?\d+\]$/, "");
        const known = ports.get(base) ?? { name: base, direction, bits: [] };
        known.bits.push(bitNames[at]!);
        ports.set(base, known);
      }
    });
  });
  const all = [...found.values()];
  const isWide = nets.length > 1;
  const table = (title: string, rows: Connection[]): Child =>
    rows.length > 0
      ? pagedTable(title, ["Cell", "Kind", "Pin", ...(isWide ? ["Bits"] : [])], rows, ({ cell, pin, bits }) => {
          const kind = body.kindOf(cell);
          const name = body.columns.cells[cell]!;
          const address: Address = kind ? { view: "cell", path, name } : { view: "instance", path: [...path, name] };
          const type = kind ? kind.name : app.design.module(app.design.module(body.number).subs[body.subOf(cell)]![1]).name;
          return [h("a", { href: addressText(address) }, shown(name)), shown(type), shown(pin), ...(isWide ? [shown(bitsText([...new Set(bits)]))] : [])];
        })
      : h("p", { class: "dim" }, "None in this module.");
  return section(
    "Drivers and loads",
    ports.size > 0 &&
      h(
        "p",
        {},
        [...ports.values()].map(({ name, direction }, at) => [
          at > 0 && ", ",
          `${direction === 1 ? "Input" : direction === 2 ? "Output" : "Inout"} port `,
          h("code", {}, shown(name)),
          " of the module",
        ]),
        path.length > 0 && ["; outside: ", outside(app, context, path, body, nets)],
      ),
    h("h3", {}, "Drivers"),
    table(
      "Drivers",
      all.filter(({ role }) => role !== "loads"),
    ),
    h("h3", {}, "Loads"),
    table(
      "Loads",
      all.filter(({ role }) => role !== "drives"),
    ),
  );
}

/** The nets of the level above that the ports of the module are on. */
function outside(app: App, context: Context, path: string[], body: Body, nets: number[]): Child {
  const above = app.design.body(context[context.length - 2]!.module);
  const cell = app.design.subOf(context, context.length - 1)[2];
  const wanted = new Set(nets);
  const names = new Set<string>();
  body.columns.ports.forEach(([, , inside], port) => {
    const net = wanted.has(inside) ? above.netOn(cell, port) : -1;
    if (net >= 0) {
      const signal = above.signalOf(net);
      names.add(signal >= 0 ? above.signalName(signal) : above.columns.nets[net]!);
    }
  });
  const most = 8;
  return names.size === 0
    ? "not connected"
    : [...names].slice(0, most).map((name, at) => [
        at > 0 && ", ",
        h("a", { href: addressText({ view: "net", path: path.slice(0, -1), name }) }, h("code", {}, shown(name))),
        at + 1 === most && names.size > most && ` and ${names.size - most} more`,
      ]);
}
