import { jsonOf } from "./decode";
import type { Design } from "./design";
import type { CellKind, ModuleBody, Place } from "./format";

/** The contents of one module. */
export class Body {
  readonly columns: ModuleBody;
  private signalOfNet?: Int32Array;
  private firstPins?: Uint32Array;
  private pinsOfNets?: { first: Uint32Array; pins: Uint32Array };
  private signalNames?: Map<string, number>;
  private netNames?: Map<string, number>;

  constructor(
    private readonly design: Design,
    readonly number: number,
  ) {
    const { at, bytes } = design.module(number);
    this.columns = jsonOf<ModuleBody>(design.moduleBytes!.subarray(at, at + bytes));
  }

  signalName(signal: number): string {
    return this.columns.signals[signal] || this.columns.nets[this.columns.bits[signal] as number]!;
  }

  /** The nets of a signal, from the left; -1 for a bit that is tied to a constant. */
  bitsOf(signal: number): number[] {
    const bits = this.columns.bits[signal]!;
    if (typeof bits === "number") {
      return [bits];
    }
    const nets: number[] = [];
    for (let at = 0; at < bits.length; at += 3) {
      for (let bit = 0; bit < bits[at + 1]!; ++bit) {
        nets.push(bits[at]! + bit * bits[at + 2]!);
      }
    }
    return nets;
  }

  widthOf(signal: number): number {
    const bits = this.columns.bits[signal]!;
    return typeof bits === "number" ? 1 : bits.reduce((sum, part, at) => (at % 3 === 1 ? sum + part : sum), 0);
  }

  isDeclared(signal: number): boolean {
    return (this.columns.flags[signal]! & 1) !== 0;
  }

  isBus(signal: number): boolean {
    return (this.columns.flags[signal]! & 2) !== 0;
  }

  placeOf(signal: number): Place {
    return [this.columns.places[2 * signal]!, this.columns.places[2 * signal + 1]!];
  }

  aliasesOf(signal: number): string[] {
    return this.columns.aliases.find(([each]) => each === signal)?.[1] ?? [];
  }

  rangeOf(signal: number): [number, number] | undefined {
    const range = this.columns.ranges.find(([each]) => each === signal);
    return range && [range[1], range[2]];
  }

  signalCalled(name: string): number | undefined {
    this.signalNames ??= new Map(this.columns.signals.map((_, signal) => [this.signalName(signal), signal]));
    return this.signalNames.get(name);
  }

  netCalled(name: string): number | undefined {
    this.netNames ??= new Map(this.columns.nets.map((net, at) => [net, at]));
    return this.netNames.get(name);
  }

  /** The signal that a net is, or is a bit of; -1 when there is none. */
  signalOf(net: number): number {
    if (!this.signalOfNet) {
      this.signalOfNet = new Int32Array(this.columns.nets.length).fill(-1);
      for (let signal = this.columns.signals.length; signal-- > 0; ) {
        for (const bit of this.bitsOf(signal)) {
          if (bit >= 0) {
            this.signalOfNet[bit] = signal;
          }
        }
      }
    }
    return this.signalOfNet[net] ?? -1;
  }

  /** The kind of a leaf cell; undefined for an instance of a module. */
  kindOf(cell: number): CellKind | undefined {
    return this.design.head.cellKinds[this.columns.kinds[cell]!];
  }

  subOf(cell: number): number {
    return -1 - this.columns.kinds[cell]!;
  }

  private pinStarts(): Uint32Array {
    if (!this.firstPins) {
      const kinds = this.columns.kinds;
      const first = new Uint32Array(kinds.length + 1);
      for (let cell = 0; cell < kinds.length; ++cell) {
        const kind = this.kindOf(cell);
        const count = kind
          ? kind.pins.length
          : this.design.module(this.design.module(this.number).subs[this.subOf(cell)]![1]).ports;
        first[cell + 1] = first[cell]! + count;
      }
      this.firstPins = first;
    }
    return this.firstPins;
  }

  /** Net on each pin of a cell, -1 for none. */
  netsOf(cell: number): number[] {
    const first = this.pinStarts();
    return this.columns.pins.slice(first[cell], first[cell + 1]);
  }

  netOn(cell: number, pin: number): number {
    return this.columns.pins[this.pinStarts()[cell]! + pin]!;
  }

  /** Name and direction of a pin. */
  pinOf(cell: number, pin: number): { name: string; direction: number; isClock: boolean } {
    const kind = this.kindOf(cell);
    if (kind) {
      const [name, direction, isClock] = kind.pins[pin]!;
      return { name, direction, isClock };
    }
    const module = this.design.module(this.number).subs[this.subOf(cell)]![1];
    const [name, direction] = this.design.body(module).columns.ports[pin]!;
    return { name, direction, isClock: false };
  }

  /** Cells and pins on a net, in the order of the netlist. */
  pinsOn(net: number): { cell: number; pin: number }[] {
    const starts = this.pinStarts();
    const { first, pins } = (this.pinsOfNets ??= this.indexPins());
    const found: { cell: number; pin: number }[] = [];
    for (let at = first[net]!; at < first[net + 1]!; ++at) {
      const cell = cellAt(starts, pins[at]!);
      found.push({ cell, pin: pins[at]! - starts[cell]! });
    }
    return found;
  }

  private indexPins(): { first: Uint32Array; pins: Uint32Array } {
    const nets = this.columns.pins;
    const first = new Uint32Array(this.columns.nets.length + 2);
    for (const net of nets) {
      if (net >= 0) {
        ++first[net + 2]!;
      }
    }
    for (let net = 2; net < first.length; ++net) {
      first[net]! += first[net - 1]!;
    }
    const pins = new Uint32Array(first[first.length - 1]!);
    nets.forEach((net, at) => {
      if (net >= 0) {
        pins[first[net + 1]!++] = at;
      }
    });
    return { first, pins };
  }
}

/** The cell that a position among the pins of all cells belongs to. */
function cellAt(starts: Uint32Array, position: number): number {
  let low = 0;
  let high = starts.length - 1;
  while (high - low > 1) {
    const middle = (low + high) >> 1;
    if (starts[middle]! <= position) {
      low = middle;
    } else {
      high = middle;
    }
  }
  return low;
}
