import type { Design } from "../data/design";
import { addressText } from "../data/address";
import { h, s, shown } from "./dom";

const HUES = [212, 28, 150, 330, 265, 50, 185, 0, 95, 300, 235, 15];
/** What is drawn over the colour, so that clocks are told apart without it. */
const PATTERNS = ["", "M0 8 8 0M-2 2 2-2M6 10 10 6", "M0 4H8", "M4 0V8", "M0 0 8 8M-2 6 2 10M6-2 10 2", "M0 4H8M4 0V8"];
/** Clocks with a mark of their own; the others share one. */
const MOST_MARKS = HUES.length * PATTERNS.length;

/** Colour, pattern and letters of each clock: those with the most registers come first. */
export class ClockMarks {
  private readonly rank: number[];

  constructor(private readonly design: Design) {
    this.rank = new Array<number>(design.clocks.length);
    design.clocks
      .map((clock, id) => ({ id, registers: clock.registers }))
      .sort((a, b) => b.registers - a.registers || a.id - b.id)
      .forEach(({ id }, rank) => (this.rank[id] = rank));
  }

  /** Letters: A to Z, AA, AB, and so on; a dash for no clock. */
  letters(clock: number): string {
    let text = "";
    for (let rest = clock < 0 ? -1 : this.rank[clock]!; rest >= 0; rest = Math.floor(rest / 26) - 1) {
      text = String.fromCharCode(65 + (rest % 26)) + text;
    }
    return text || "–";
  }

  name(clock: number): string {
    return clock < 0 ? "no clock" : this.design.clocks[clock]!.name;
  }

  private key(clock: number): number {
    const rank = clock < 0 ? MOST_MARKS : this.rank[clock]!;
    return Math.min(rank, MOST_MARKS);
  }

  /** The paint of a clock inside a drawing that holds paints() of it. */
  paint(clock: number, drawing: string): string {
    return `url(#${drawing}-${this.key(clock)})`;
  }

  /** Definitions of the paints of some clocks. @p drawing keeps those of different drawings apart. */
  paints(clocks: Iterable<number>, drawing: string): SVGDefsElement {
    const keys = new Set([...clocks].map((clock) => this.key(clock)));
    return s(
      "defs",
      {},
      [...keys].map((key) => {
        const isShared = key === MOST_MARKS;
        const pattern = s(
          "pattern",
          { id: `${drawing}-${key}`, width: 8, height: 8, patternUnits: "userSpaceOnUse" },
          s("rect", { width: 8, height: 8, class: isShared ? "paint none" : "paint" }),
          s("path", { d: isShared ? "" : PATTERNS[(key + Math.floor(key / HUES.length)) % PATTERNS.length]!, class: "hatch" }),
        );
        pattern.style.setProperty("--hue", String(HUES[key % HUES.length]));
        return pattern;
      }),
    );
  }

  /** A small square with the mark and the letters of a clock. */
  swatch(clock: number): SVGSVGElement {
    const drawing = `swatch${++swatches}`;
    const letters = this.letters(clock);
    return s(
      "svg",
      { class: "swatch", width: 12 + 8 * letters.length, height: 18, "aria-hidden": "true" },
      this.paints([clock], drawing),
      s("rect", { width: "100%", height: "100%", rx: 4, fill: this.paint(clock, drawing) }),
      s("text", { x: "50%", y: 13, "text-anchor": "middle" }, letters),
    );
  }

  /** The mark and name of a clock, as a link to it. */
  link(clock: number): HTMLElement {
    if (clock < 0) {
      return h("span", { class: "clock" }, this.swatch(clock), h("span", { class: "dim" }, "no clock"));
    }
    const { name } = this.design.clocks[clock]!;
    return h(
      "a",
      { class: "clock", href: addressText({ view: "clock", name }) },
      this.swatch(clock),
      h("span", { class: "name" }, shown(name)),
    );
  }
}

let swatches = 0;
