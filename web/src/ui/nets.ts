import { type Address, addressOf, addressText } from "../data/address";
import { captureOf, clockThatIs, launchOf, reachedWords, reachingWords, roleWords } from "../data/binding";
import type { Body, Context } from "../data/design";
import type { Match, SignalDetails } from "../data/format";
import { type App, quoted } from "./app";
import { type Child, h, plural, shown } from "./dom";
import { breadcrumbs, commandText, facts, pagedTable, place, section, title } from "./parts";
import { schematicOf, stepsOf } from "./schematic";

/** Bits of a bus that a card looks at one by one. */
const MOST_BITS = 256;

/** One net of the design, or a bus bit by bit, as a card sees it. */
interface Subject {
  app: App;
  context: Context;
  path: string[];
  fullName: string;
  body: Body;
  /** -1 for a bit of a signal, when signals know it by no name. */
  signal: number;
  nets: number[];
  /** Name of each bit. */
  bitNames: string[];
}

function subjectOf(app: App, context: Context, path: string[], name: string): Subject | undefined {
  const body = app.design.body(context[context.length - 1]!.module);
  const called = body.signalCalled(name);
  const net = body.netCalled(name);
  if (called === undefined && net === undefined) {
    return undefined;
  }
  const nets = called !== undefined ? body.bitsOf(called) : [net!];
  const range = called !== undefined ? body.rangeOf(called) : undefined;
  const bitNames = nets.map((each, at) => {
    const index = range && (range[0] >= range[1] ? range[0] - at : range[0] + at);
    return index !== undefined && nets.length > 1 ? `[${index}]` : (body.columns.nets[each] ?? `bit ${nets.length - 1 - at}`);
  });
  const fullName = [...path, name].join("/");
  return { app, context, path, fullName, body, signal: called ?? -1, nets, bitNames };
}

/** Card of a net or bus; undefined when the module has none of that name. */
export function netCard(app: App, context: Context, path: string[], name: string): HTMLElement | undefined {
  const subject = subjectOf(app, context, path, name);
  if (!subject) {
    return undefined;
  }
  const { body, signal, nets } = subject;
  const isBus = signal >= 0 && body.isBus(signal);
  const range = signal >= 0 ? body.rangeOf(signal) : undefined;
  const module = context[context.length - 1]!.module;
  const bus = signal < 0 ? body.signalOf(nets[0]!) : -1;
  const late = h("div", { "aria-live": "polite" }, h("p", { class: "dim" }, "Reading details…"));
  void app.detailsOf(path.join("/"), signal).then(
    (details) => late.replaceChildren(...lateSections(subject, details)),
    (fault: Error) => late.replaceChildren(h("p", { class: "fault", role: "alert" }, fault.message)),
  );
  const aliases = signal >= 0 ? body.aliasesOf(signal) : [];
  return h(
    "article",
    { class: "card" },
    breadcrumbs(app, path),
    title(isBus ? "Bus" : "Net", name, subject.fullName, range && h("span", { class: "dim" }, `[${range[0]}:${range[1]}]`)),
    facts([
      ["Path", h("code", {}, shown(subject.fullName))],
      ["Width", isBus ? plural(nets.length, "bit") : undefined],
      ["In module", h("a", { href: addressText({ view: "module", number: module }) }, shown(app.design.module(module).name))],
      ["Source", signal >= 0 ? place(app, body.placeOf(signal)) : undefined],
      ["Declared", signal >= 0 ? (body.isDeclared(signal) ? "by the user" : "by a tool") : undefined],
      ["Bit of", bus >= 0 && h("a", { href: addressText({ view: "net", path, name: body.signalName(bus) }) }, shown(body.signalName(bus)))],
      ["Also called", aliases.length > 0 && h("ul", { class: "plain" }, aliases.slice(0, 50).map((each) => h("li", {}, h("code", {}, shown(each)))))],
    ]),
    clocksSection(subject),
    late,
    connections(subject),
  );
}

/** Bits that are alike, as ranges of their names. */
function grouped(subject: Subject, textOf: (net: number) => { key: string; content: Child }): { bits: string; content: Child }[] {
  const groups = new Map<string, { names: string[]; content: Child }>();
  subject.nets.slice(0, MOST_BITS).forEach((net, at) => {
    const { key, content } =
      net < 0 ? { key: "constant", content: h("span", { class: "dim" }, "tied to a constant") as Child } : textOf(net);
    const known = groups.get(key);
    if (known) {
      known.names.push(subject.bitNames[at]!);
    } else {
      groups.set(key, { names: [subject.bitNames[at]!], content });
    }
  });
  return [...groups.values()].map(({ names, content }) => ({ bits: bitsText(names), content }));
}

/** `[7:4] [0]` for the names of bits, runs of neighbours in short. */
function bitsText(names: string[]): string {
  const parts: string[] = [];
  for (let at = 0; at < names.length; ) {
    const first = /^\[(-?\d+)\]$/.exec(names[at]!);
    let end = at + 1;
    let last = names[at]!;
    if (first) {
      const step = end < names.length && names[end] === `[${Number(first[1]) - 1}]` ? -1 : 1;
      while (end < names.length && names[end] === `[${Number(first[1]) + step * (end - at)}]`) {
        last = names[end]!;
        ++end;
      }
    }
    parts.push(end - at > 1 ? `${names[at]!.slice(0, -1)}:${last.slice(1)}` : names[at]!);
    at = end;
  }
  return parts.length > 8 ? `${parts.slice(0, 8).join(" ")} and ${parts.length - 8} more` : parts.join(" ");
}

function clocksSection(subject: Subject): HTMLElement {
  const { app, context, nets } = subject;
  const launches = grouped(subject, (net) => {
    const launch = launchOf(app.design, context, net);
    const through = launch.clocks.filter((each) => !each.isNetwork);
    const networks = launch.clocks.filter((each) => each.isNetwork);
    const is = clockThatIs(app.design, context, net);
    const words = reachingWords(launch.reached);
    return {
      key: JSON.stringify([launch, is]),
      content: [
        is && h("p", {}, "Is the clock ", app.marks.link(is.clock), is.isInverted && " inverted"),
        through.length > 0 &&
          h(
            "ul",
            { class: "plain" },
            through.map((each) => h("li", {}, app.marks.link(each.clock), " ", h("span", { class: "dim" }, plural(each.cells, "cell")))),
          ),
        through.length === 0 && h("p", { class: "dim" }, "The registers of no clock reach it."),
        networks
          .filter((each) => each.clock !== is?.clock)
          .map((each) => h("p", {}, "The clock ", app.marks.link(each.clock), " itself reaches it.")),
        words.length > 0 && h("p", { class: "dim" }, `Also reached by: ${words.join(", ")}`),
      ],
    };
  });
  const captures = grouped(subject, (net) => {
    const capture = captureOf(app.design, context, net);
    const words = reachedWords(capture.reached);
    return {
      key: JSON.stringify(capture),
      content: [
        capture.clocks.length > 0 &&
          h(
            "ul",
            { class: "plain" },
            capture.clocks.map((each) => h("li", {}, app.marks.link(each.clock), " ", h("span", { class: "dim" }, roleWords(each.roles).join(", ")))),
          ),
        capture.clocks.length === 0 && h("p", { class: "dim" }, "Registers of no clock capture it."),
        words.length > 0 && h("p", { class: "dim" }, `Also reaches: ${words.join(", ")}`),
      ],
    };
  });
  const isWide = nets.length > 1;
  const list = (groups: { bits: string; content: Child }[]): Child =>
    groups.map(({ bits, content }) => h("div", { class: "group" }, isWide && h("p", { class: "bits" }, shown(bits)), content));
  return section(
    "Clocks",
    h(
      "div",
      { class: "pair" },
      h("div", {}, h("h3", {}, "Changes with"), list(launches)),
      h("div", {}, h("h3", {}, "Captured by"), list(captures)),
    ),
    nets.length > MOST_BITS && h("p", { class: "note" }, `Shown for the first ${MOST_BITS} of ${nets.length} bits.`),
  );
}

const lastOr = (text: string): string => text.slice(text.lastIndexOf("/") + 1);

function lateSections(subject: Subject, details: SignalDetails | undefined): HTMLElement[] {
  return [whySection(subject, details), probeSection(subject, details), ...counterpartSection(subject, details)];
}

function whySection(subject: Subject, details: SignalDetails | undefined): HTMLElement {
  const { app, fullName, bitNames } = subject;
  const why = details?.why;
  if (!why) {
    return section(
      "Why these clocks",
      h("p", { class: "note" }, leftOutText(app, details !== undefined)),
      commandText(app.command("clock-of", `${quoted(fullName)} --why`)),
    );
  }
  const most = 8;
  const chains = [
    ...why.clocks.map((chain) => ({ chain, text: `${chain.clock}: ${plural(chain.cells, "cell")}` })),
    ...why.networks.map((chain) => ({ chain, text: `The clock ${chain.clock} itself: ${plural(chain.cells, "cell")}` })),
  ];
  const isWide = subject.nets.length > 1;
  return section(
    "Why these clocks",
    isWide && h("p", { class: "dim" }, `The shortest chains to bit ${shown(bitNames[why.bit] ?? "")}, from the clock on the left to the net on the right.`),
    chains.slice(0, most).map(({ chain, text }) => [
      h("h3", {}, shown(text)),
      schematicOf(app, chain, shown(`Chain from the clock ${chain.clock}`.slice(0, 300))),
      stepsOf(chain),
    ]),
    why.ends.map(({ end, data }) => [
      h("h3", {}, `Also from: ${end.replace(/-/g, " ")}`),
      schematicOf(app, { data }, `Chain from: ${end.replace(/-/g, " ")}`),
    ]),
    chains.length > most && h("p", { class: "note" }, `${chains.length - most} more chains are shown by the command:`),
    chains.length > most && commandText(app.command("clock-of", `${quoted(fullName)} --why`)),
    chains.length + why.ends.length === 0 && h("p", { class: "dim" }, "Nothing reaches it."),
  );
}

function leftOutText(app: App, hasVerdict: boolean): string {
  const { signals, verdicts, chains } = app.design.head.details;
  return hasVerdict
    ? `The page holds chains for ${plural(chains, "net or bus", "nets and buses")}, the nearest to the top; this one is not among them. This shows it:`
    : `The page holds details of ${verdicts.toLocaleString("en")} of ${signals.toLocaleString("en")} nets and buses that the user declared; this one is not among them. This shows it:`;
}

function probeSection(subject: Subject, details: SignalDetails | undefined): HTMLElement {
  const { app, fullName, nets } = subject;
  if (!details) {
    return section(
      "Probing",
      h("p", { class: "note" }, leftOutText(app, false)),
      commandText(app.command("probes", `--why-not ${quoted(fullName)}`)),
    );
  }
  const texts = { ok: "may be probed", warning: "may be probed, with something to think of", partly: "may be probed in part", no: "may not be probed" };
  return section(
    "Probing",
    h(
      "p",
      {},
      h("span", { class: `verdict ${details.verdict}` }, details.verdict),
      ` ${texts[details.verdict]}`,
      nets.length > 1 && `: ${details.probeable} of ${plural(nets.length, "bit")}`,
      details.clock !== undefined && [", sampled with ", app.marks.link(details.clock)],
    ),
    details.reasons &&
      h(
        "ul",
        {},
        details.reasons.map(([reason, bars, bits, evidence, instead]) =>
          h(
            "li",
            {},
            h("strong", {}, reason.replace(/-/g, " ")),
            bars ? " (bars it" : " (a warning",
            nets.length > 1 ? `, ${plural(bits, "bit")})` : ")",
            `: ${app.design.head.reasons[reason] ?? ""}`,
            evidence !== "" && h("div", { class: "dim" }, shown(evidence)),
            instead !== "" && h("div", {}, "Instead: ", nameLink(app, instead)),
          ),
        ),
      ),
  );
}

/** A full name as a link, when the page knows it. */
export function nameLink(app: App, fullName: string): HTMLElement {
  const address: Address | undefined = addressOf(app.design, fullName);
  const text = h("code", {}, shown(fullName));
  return address ? h("a", { href: addressText(address) }, text) : text;
}

function counterpartSection(subject: Subject, details: SignalDetails | undefined): HTMLElement[] {
  const { app, bitNames } = subject;
  if (app.design.head.postMap === undefined) {
    return [];
  }
  if (!details?.matches) {
    const command = `netlistdb map ${app.design.head.command} ${quoted(app.design.head.postMap)} ${quoted(subject.fullName)}`;
    return [section("In the device", h("p", { class: "note" }, leftOutText(app, false)), commandText(command))];
  }
  const rows = details.matches.map((match, at): [string, Match | null] => [bitNames[at]!, match]);
  return [
    section(
      "In the device",
      pagedTable("Counterparts in the post-map netlist", ["Bit", "Grade", "Net of the device", "What speaks for it"], rows, ([bit, match]) =>
        match === null
          ? [shown(bit), h("span", { class: "dim" }, "tied to a constant")]
          : [
              shown(bit),
              h("span", { class: `grade ${match[0]}` }, match[1] === "" ? match[0] : `${match[0]}: ${match[1]}`),
              h("ul", { class: "plain" }, match[2].slice(0, 5).map((target) => h("li", {}, h("code", {}, shown(target))))),
              shown([match[4], match[3] === "" ? "" : `in ${match[3]}`].filter((text) => text !== "").join("; ")),
            ],
      ),
    ),
  ];
}

interface Connection {
  cell: number;
  pin: string;
  role: "drives" | "loads" | "both";
  bits: string[];
}

/** What is on the nets inside the module, and through its ports outside. */
function connections(subject: Subject): HTMLElement {
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
          return [h("a", { href: addressText(address) }, shown(name)), shown(lastOr(type)), shown(pin), ...(isWide ? [shown(bitsText([...new Set(bits)]))] : [])];
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
