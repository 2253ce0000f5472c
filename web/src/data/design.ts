import { Body } from "./body";
import type { ClockHead, Head, ModuleHead, Place, SubHead } from "./format";

/** One level of the way from the top down to an occurrence of a module. */
export interface Level {
  module: number;
  /** Place among the instances of the level above; -1 at the top. */
  sub: number;
  /** Number, among all clocks of the design, of the first one that begins in this occurrence. */
  firstClock: number;
}

/** An occurrence of a module: the levels from the top down. */
export type Context = Level[];

/** What is known of an electrical code. */
export interface Electrical {
  isPort: boolean;
  isInverted: boolean;
  /** Of the port, or of the clock in the module. */
  number: number;
}

export function electricalOf(code: number): Electrical | undefined {
  if (code === 0) {
    return undefined;
  }
  const rest = (code - 1) % 4;
  return { isPort: rest % 2 === 1, isInverted: rest >= 2, number: (code - 1 - rest) / 4 };
}

/** The design as the page holds it: folded by module, the contents of a module read when they are asked for. */
export class Design {
  readonly top: number;
  private readonly bodies: (Body | undefined)[] = [];
  private readonly firstClocks: Uint32Array[] = [];
  private readonly clockCounts: number[] = [];
  private readonly clockByNumber = new Map<number, number>();
  /** The contents of all modules; undefined until they have been taken out of the page. */
  moduleBytes?: Uint8Array<ArrayBuffer>;

  constructor(
    readonly head: Head,
    moduleBytes?: Uint8Array<ArrayBuffer>,
  ) {
    this.moduleBytes = moduleBytes;
    this.top = head.modules.length - 1;
    // A module stands behind those that it instantiates.
    for (const module of head.modules) {
      const first = new Uint32Array(module.subs.length);
      let count = module.clocks;
      module.subs.forEach((sub, at) => {
        first[at] = count;
        count += this.clockCounts[sub[1]]!;
      });
      this.firstClocks.push(first);
      this.clockCounts.push(count);
    }
    head.clocks.list.forEach((clock, id) => this.clockByNumber.set(clock.number, id));
  }

  get clocks(): ClockHead[] {
    return this.head.clocks.list;
  }

  module(number: number): ModuleHead {
    return this.head.modules[number]!;
  }

  /** Whether body() may be called. */
  get isWhole(): boolean {
    return this.moduleBytes !== undefined;
  }

  body(module: number): Body {
    return (this.bodies[module] ??= new Body(this, module));
  }

  root(): Context {
    return [{ module: this.top, sub: -1, firstClock: 0 }];
  }

  below(context: Context, sub: number): Context {
    const above = context[context.length - 1]!;
    const module = this.module(above.module).subs[sub]![1];
    return [...context, { module, sub, firstClock: above.firstClock + this.firstClocks[above.module]![sub]! }];
  }

  /** The clock that begins at place @p number of those of an occurrence; undefined when it clocks nothing. */
  clockAt(level: Level, number: number): number | undefined {
    return this.clockByNumber.get(level.firstClock + number);
  }

  firstClockOf(module: number, sub: number): number {
    return this.firstClocks[module]![sub]!;
  }

  subOf(context: Context, at: number): SubHead {
    return this.module(context[at - 1]!.module).subs[context[at]!.sub]!;
  }

  /** Names from the top down. */
  segments(context: Context): string[] {
    return context.slice(1).map((_, at) => this.subOf(context, at + 1)[0]);
  }

  path(context: Context): string {
    return this.segments(context).join("/");
  }

  placeText(place: Place | undefined): string {
    return place === undefined || place[0] < 0 ? "" : `${this.head.files[place[0]] ?? ""}:${place[1]}`;
  }
}
