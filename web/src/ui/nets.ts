import { type Address, addressOf, addressText } from "../data/address";
import { captureOf, clockThatIs, launchOf, reachedWords, reachingWords, roleWords } from "../data/binding";
import type { Context } from "../data/design";
import type { Match, SignalDetails } from "../data/format";
import { type App, quoted } from "./app";
import { type Child, h, plural, shown } from "./dom";
import { breadcrumbs, commandText, facts, pagedTable, place, section, title } from "./parts";
import { connections } from "./connections";
import { schematicOf, stepsOf } from "./schematic";
import { bitsText, MOST_BITS, type Subject, subjectOf } from "./subject";

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
