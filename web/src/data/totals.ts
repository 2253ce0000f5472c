import { type Context, type Design, electricalOf } from "./design";

/** What an occurrence holds with all below it. */
export interface Totals {
  registers: number;
  cells: number;
  instances: number;
  signals: number;
  /** Registers by what their clock pin is electrically in the module, without inversion; 0: none. */
  uses: Map<number, number>;
}

/** The code of a clock of the module, or of a port. */
function codeOf(isPort: boolean, number: number): number {
  return 1 + (isPort ? 1 : 0) + 4 * number;
}

/** Adds up what modules hold, each module once. */
export class TotalsTable {
  private readonly totals: Totals[] = [];

  constructor(private readonly design: Design) {
    // A module stands behind those that it instantiates.
    design.head.modules.forEach((module, number) => {
      const totals: Totals = {
        registers: 0,
        cells: module.cells,
        instances: 1,
        signals: module.signals,
        uses: new Map(),
      };
      const add = (code: number, registers: number) => {
        totals.registers += registers;
        totals.uses.set(code, (totals.uses.get(code) ?? 0) + registers);
      };
      for (let at = 0; at < module.registers.length; at += 2) {
        const own = electricalOf(module.registers[at]!);
        add(own ? codeOf(own.isPort, own.number) : 0, module.registers[at + 1]!);
      }
      module.subs.forEach(([, below, , clockPorts], sub) => {
        const inside = this.totals[below]!;
        totals.cells += inside.cells;
        totals.instances += inside.instances;
        totals.signals += inside.signals;
        for (const [code, registers] of inside.uses) {
          const use = electricalOf(code);
          if (!use) {
            add(0, registers);
          } else if (use.isPort) {
            add(boundPort(clockPorts, use.number), registers);
          } else {
            add(codeOf(false, use.number + design.firstClockOf(number, sub)), registers);
          }
        }
      });
      this.totals.push(totals);
    });
  }

  of(module: number): Totals {
    return this.totals[module]!;
  }

  /** Registers of an occurrence by clock, the most first; clock -1: those that no clock reaches. */
  byClock(context: Context): { clock: number; registers: number }[] {
    const counts = new Map<number, number>();
    for (const [code, registers] of this.of(context[context.length - 1]!.module).uses) {
      const clock = this.clockOf(context, code);
      counts.set(clock, (counts.get(clock) ?? 0) + registers);
    }
    return [...counts]
      .map(([clock, registers]) => ({ clock, registers }))
      .sort((a, b) => b.registers - a.registers || a.clock - b.clock);
  }

  private clockOf(context: Context, code: number): number {
    for (let at = context.length; at-- > 0; ) {
      const use = electricalOf(code);
      if (!use) {
        return -1;
      }
      if (!use.isPort) {
        return this.design.clockAt(context[at]!, use.number) ?? -1;
      }
      if (at === 0) {
        return -1;
      }
      code = boundPort(this.design.subOf(context, at)[3], use.number);
    }
    return -1;
  }
}

/** What port @p number of an instance is on the outside. */
function boundPort(clockPorts: number[], number: number): number {
  for (let at = 0; at < clockPorts.length; at += 2) {
    if (clockPorts[at] === number) {
      const above = electricalOf(clockPorts[at + 1]!);
      return above ? codeOf(above.isPort, above.number) : 0;
    }
  }
  return 0;
}
