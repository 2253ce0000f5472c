import { addressOf, addressText } from "../data/address";
import type { ChainStep, ClockChain } from "../data/format";
import type { App } from "./app";
import { h, s, short, shown } from "./dom";

const CELL = 96;
/** The longest wire; letters of a name on one. */
const WIRE = 118;
const LETTERS = 15;
const TOP = 44;
const HEIGHT = 48;
const ROW = 104;
/** Elements in one row; what is beyond, in the middle of a chain, is left out with a mark. */
const MOST = 40;

interface Element {
  kind: "cell" | "register" | "hierarchy" | "root" | "gap";
  title: string;
  type: string;
  output: string;
  input: string;
  /** Net behind it, to the right. */
  net: string;
}

function elementsOf(steps: ChainStep[]): Element[] {
  const elements = steps.map((step): Element => {
    const [cell, type] = [step.cell ?? "", step.type ?? ""];
    const common = { output: step.output ?? "", input: step.input ?? "", net: step.net };
    switch (step.step) {
      case "hierarchy":
        return { kind: "hierarchy", title: cell, type, ...common };
      case "end":
        return { kind: "root", title: cell || step.net, type: type || "starts here", ...common };
      default:
        return { kind: step.step, title: cell, type, ...common };
    }
  });
  elements.reverse();
  if (elements.length <= MOST) {
    return elements;
  }
  const gap: Element = {
    kind: "gap",
    title: `${elements.length - MOST} more`,
    type: "",
    output: "",
    input: "",
    net: elements[elements.length - MOST / 2 - 1]!.net,
  };
  return [...elements.slice(0, MOST / 2), gap, ...elements.slice(-MOST / 2)];
}

/** Length of the wire behind an element, which holds the name of its net. */
const wireOf = (element: Element): number => Math.min(WIRE, 7 * short(lastSegment(element.net), LETTERS).length + 20);

const lastSegment = (name: string): string => name.slice(name.lastIndexOf("/") + 1) || name;

/** A chain as a schematic from left to right: from the root of the clock to its register, and on to the net. */
export function schematicOf(app: App, chain: { data: ChainStep[]; clock_to_root?: ChainStep[] }, label: string): HTMLElement {
  const data = elementsOf(chain.data);
  const clock = elementsOf(chain.clock_to_root ?? []);
  // The register stands to the right of the last element of its clock.
  const shift = clock.reduce((sum, element) => sum + CELL + wireOf(element), 0);
  const clockRow = TOP + ROW;
  const width = shift + data.reduce((sum, element) => sum + CELL + wireOf(element), 0) + 40;
  const height = TOP + HEIGHT + 28 + (clock.length > 0 ? ROW : 0);
  const drawing: SVGElement[] = [];
  let x = 8;
  clock.forEach((element, at) => {
    const isLast = at === clock.length - 1;
    draw(app, drawing, element, x, clockRow, wireOf(element) + (isLast ? CELL / 2 : 0));
    x += CELL + wireOf(element);
  });
  for (const element of data) {
    draw(app, drawing, element, x, TOP, wireOf(element));
    x += CELL + wireOf(element);
  }
  if (clock.length > 0) {
    const pin = 8 + shift + CELL / 2;
    drawing.push(s("path", { class: "wire", d: `M${pin} ${clockRow + HEIGHT / 2}V${TOP + HEIGHT}` }));
  }
  return h(
    "figure",
    { class: "schematic" },
    h(
      "div",
      { class: "scroll", tabindex: "0", role: "region", "aria-label": label },
      s("svg", { width, height, role: "group", "aria-label": label }, drawing),
    ),
  );
}

/** Draws an element with the wire to its right and the name of the net on it. */
function draw(
  app: App,
  drawing: SVGElement[],
  element: Element,
  x: number,
  y: number,
  wire: number,
): void {
  const middle = y + HEIGHT / 2;
  const title = [element.title, element.type].filter((text) => text !== "").join(": ");
  const group = s("g", { class: `element ${element.kind}` }, s("title", {}, shown(title.slice(0, 1000))));
  switch (element.kind) {
    case "hierarchy":
      group.append(s("path", { class: "body", d: `M${x + 30} ${middle - 11}h26l11 11-11 11h-26z` }));
      break;
    case "gap":
      group.append(s("text", { x: x + CELL / 2, y: middle + 4, "text-anchor": "middle" }, `… ${element.title} …`));
      break;
    case "root":
      group.append(s("rect", { class: "body", x, y: y + 6, width: CELL, height: HEIGHT - 12, rx: 18 }));
      break;
    default:
      group.append(s("rect", { class: "body", x, y, width: CELL, height: HEIGHT, rx: 5 }));
      if (element.kind === "register") {
        const center = x + CELL / 2;
        group.append(s("path", { class: "edge", d: `M${center - 8} ${y + HEIGHT}l8-10 8 10` }));
      }
  }
  if (element.kind === "hierarchy") {
    const pass = x + 67;
    drawing.push(s("path", { class: "wire", d: `M${x} ${middle}H${x + 30}M${pass} ${middle}H${x + CELL}` }));
    group.append(s("text", { x: x + CELL / 2, y: y - 2, class: "small", "text-anchor": "middle" }, short(element.output, 14)));
  } else if (element.kind !== "gap") {
    const type = element.kind === "root" ? lastSegment(element.title) : element.type;
    group.append(s("text", { x: x + CELL / 2, y: middle - 4, "text-anchor": "middle" }, short(lastSegment(type), 13)));
    const pins = element.kind === "root" ? element.type : `${element.input} → ${element.output}`;
    group.append(s("text", { x: x + CELL / 2, y: middle + 9, class: "small", "text-anchor": "middle" }, short(pins, 16)));
  }
  drawing.push(group);
  drawing.push(s("path", { class: "wire", d: `M${x + CELL} ${middle}h${wire}` }));
  const address = addressOf(app.design, element.net);
  const text = s("text", { x: x + CELL + 6, y: middle - 6, class: "net" }, short(lastSegment(element.net), LETTERS));
  const labelled = [s("title", {}, shown(element.net.slice(0, 1000))), text];
  drawing.push(
    address
      ? s("a", { href: addressText(address) }, labelled)
      : s("g", {}, labelled),
  );
}

/** The same chain in words, for those who do not see it. */
export function stepsOf(chain: Pick<ClockChain, "data" | "clock_to_root">): HTMLElement {
  const steps = [...chain.data, ...chain.clock_to_root];
  return h(
    "details",
    {},
    h("summary", {}, "The same as a list"),
    h(
      "ol",
      { class: "steps" },
      steps.map((step) =>
        h(
          "li",
          {},
          h("code", {}, shown(step.net)),
          step.cell !== undefined && ` from ${shown(step.output ?? "")} of ${shown(step.cell)} (${shown(step.type ?? "")})`,
          step.input !== undefined && `, through ${shown(step.input)}`,
        ),
      ),
    ),
  );
}
