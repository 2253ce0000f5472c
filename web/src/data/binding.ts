import { type Context, type Design, electricalOf } from "./design";

/** A clock that reaches a net. */
export interface LaunchClock {
  clock: number;
  cells: number;
  /** The clock itself, other than through a register. */
  isNetwork: boolean;
}

export interface Launch {
  /** Through registers first, the nearest first. */
  clocks: LaunchClock[];
  reached: number;
}

/** A clock whose registers a net reaches. */
export interface CaptureClock {
  clock: number;
  roles: number;
}

export interface Capture {
  clocks: CaptureClock[];
  reached: number;
}

/** What the entries of a set are: the terms of one module. */
const enum Atom {
  Launched,
  Network,
  LaunchedByPort,
  InputPort,
  Captured,
  CapturedEnable,
  CapturedSetReset,
  CapturedByPort,
  CapturedByPortEnable,
  CapturedByPortSetReset,
  OutputPort,
}

const REACHED_BY_UNDRIVEN = 16;
const REACHING = ["input port", "constant", "black box", "latch", "nothing drives it", "combinational loop"];
const REACHED = ["output port", "black box", "latch", "clock pin"];
const ROLES = ["data", "enable", "set or reset"];

function words(names: string[], mask: number): string[] {
  return names.filter((_, bit) => (mask >> bit) & 1);
}

export const reachingWords = (mask: number): string[] => words(REACHING, mask);
export const reachedWords = (mask: number): string[] => words(REACHED, mask);
export const roleWords = (mask: number): string[] => words(ROLES, mask);

/** Keeps the smallest distance, or the union of bits, of each number. */
class Numbers {
  private readonly values = new Map<number, number>();
  constructor(private readonly join: (a: number, b: number) => number) {}
  add(number: number, value: number): void {
    const known = this.values.get(number);
    this.values.set(number, known === undefined ? value : this.join(known, value));
  }
  [Symbol.iterator](): IterableIterator<[number, number]> {
    return this.values[Symbol.iterator]();
  }
  get isEmpty(): boolean {
    return this.values.size === 0;
  }
}

const nearest = (a: number, b: number): number => Math.min(a, b);
const union = (a: number, b: number): number => a | b;

/** Net of the level above that is on port @p port of the occurrence at @p at; -1 for none. */
function netAbove(design: Design, context: Context, at: number, port: number): number {
  return design.body(context[at - 1]!.module).netOn(design.subOf(context, at)[2], port);
}

/** The clocks that a net, seen in an occurrence of its module, can change with. Binds ports on the way to the top. */
export function launchOf(design: Design, context: Context, net: number): Launch {
  const body = design.body(context[context.length - 1]!.module).columns;
  const through = new Numbers(nearest);
  const networks = new Numbers(nearest);
  let reached = 0;
  let sets = new Numbers(nearest);
  sets.add(body.launch[net]!, body.distance[net]!);
  let clockPorts = new Numbers(nearest);
  for (let at = context.length; at-- > 0; ) {
    const level = context[at]!;
    const columns = design.body(level.module).columns;
    const ports = new Numbers(nearest);
    const clockPortsHere = new Numbers(nearest);
    const launch = (into: Numbers, number: number, cells: number) => {
      const clock = design.clockAt(level, number);
      if (clock !== undefined) {
        into.add(clock, cells);
      }
    };
    for (const [port, cells] of clockPorts) {
      const above = netAbove(design, context, at + 1, port);
      const electrical = above < 0 ? undefined : electricalOf(columns.electrical[above]!);
      if (!electrical) {
        reached |= REACHED_BY_UNDRIVEN;
      } else if (electrical.isPort) {
        clockPortsHere.add(electrical.number, cells);
      } else {
        launch(through, electrical.number, cells);
      }
    }
    for (const [set, distance] of sets) {
      const entries = columns.launchSets[set]!;
      reached |= entries[0]!;
      for (let entry = 1; entry < entries.length; entry += 3) {
        const number = entries[entry + 1]!;
        const cells = distance + entries[entry + 2]!;
        switch (entries[entry] as Atom) {
          case Atom.LaunchedByPort:
            clockPortsHere.add(number, cells);
            break;
          case Atom.InputPort:
            ports.add(number, cells);
            break;
          case Atom.Network:
            launch(networks, number, cells);
            break;
          default:
            launch(through, number, cells);
        }
      }
    }
    clockPorts = clockPortsHere;
    if (at === 0 || (ports.isEmpty && clockPorts.isEmpty)) {
      break;
    }
    sets = new Numbers(nearest);
    const columnsAbove = design.body(context[at - 1]!.module).columns;
    for (const [port, cells] of ports) {
      const above = netAbove(design, context, at, port);
      if (above < 0) {
        reached |= REACHED_BY_UNDRIVEN;
      } else {
        sets.add(columnsAbove.launch[above]!, cells + columnsAbove.distance[above]!);
      }
    }
  }
  const sorted = (numbers: Numbers, isNetwork: boolean): LaunchClock[] =>
    [...numbers]
      .map(([clock, cells]) => ({ clock, cells, isNetwork }))
      .sort((a, b) => a.cells - b.cells || a.clock - b.clock);
  return { clocks: [...sorted(through, false), ...sorted(networks, true)], reached };
}

function roleOf(kind: Atom): number {
  switch (kind) {
    case Atom.CapturedEnable:
    case Atom.CapturedByPortEnable:
      return 2;
    case Atom.CapturedSetReset:
    case Atom.CapturedByPortSetReset:
      return 4;
    default:
      return 1;
  }
}

/** The clocks whose registers a net, seen in an occurrence of its module, reaches. */
export function captureOf(design: Design, context: Context, net: number): Capture {
  const found = new Numbers(union);
  let reached = 0;
  let sets = new Set([design.body(context[context.length - 1]!.module).columns.capture[net]!]);
  let clockPorts = new Numbers(union);
  for (let at = context.length; at-- > 0; ) {
    const level = context[at]!;
    const columns = design.body(level.module).columns;
    const ports = new Set<number>();
    const clockPortsHere = new Numbers(union);
    const capture = (number: number, roles: number) => {
      const clock = design.clockAt(level, number);
      if (clock !== undefined) {
        found.add(clock, roles);
      }
    };
    for (const [port, roles] of clockPorts) {
      const above = netAbove(design, context, at + 1, port);
      const electrical = above < 0 ? undefined : electricalOf(columns.electrical[above]!);
      if (electrical?.isPort) {
        clockPortsHere.add(electrical.number, roles);
      } else if (electrical) {
        capture(electrical.number, roles);
      }
    }
    for (const set of sets) {
      const entries = columns.captureSets[set]!;
      reached |= entries[0]!;
      for (let entry = 1; entry < entries.length; entry += 3) {
        const kind = entries[entry] as Atom;
        const number = entries[entry + 1]!;
        if (kind === Atom.OutputPort) {
          ports.add(number);
        } else if (kind >= Atom.CapturedByPort) {
          clockPortsHere.add(number, roleOf(kind));
        } else {
          capture(number, roleOf(kind));
        }
      }
    }
    clockPorts = clockPortsHere;
    if (at === 0 || (ports.size === 0 && clockPorts.isEmpty)) {
      break;
    }
    const columnsAbove = design.body(context[at - 1]!.module).columns;
    sets = new Set(
      [...ports]
        .map((port) => netAbove(design, context, at, port))
        .filter((above) => above >= 0)
        .map((above) => columnsAbove.capture[above]!),
    );
  }
  const clocks = [...found].map(([clock, roles]) => ({ clock, roles })).sort((a, b) => a.clock - b.clock);
  return { clocks, reached };
}

/** The clock that a net is, and whether it is the inverse of where that begins. */
export function clockThatIs(
  design: Design,
  context: Context,
  net: number,
): { clock: number; isInverted: boolean } | undefined {
  let isInverted = false;
  for (let at = context.length; at-- > 0; ) {
    const electrical = electricalOf(design.body(context[at]!.module).columns.electrical[net]!);
    if (!electrical) {
      return undefined;
    }
    isInverted = isInverted !== electrical.isInverted;
    if (!electrical.isPort) {
      const clock = design.clockAt(context[at]!, electrical.number);
      return clock === undefined ? undefined : { clock, isInverted };
    }
    if (at === 0) {
      return undefined;
    }
    net = netAbove(design, context, at, electrical.number);
    if (net < 0) {
      return undefined;
    }
  }
  return undefined;
}
