/** Makes elements. Texts only ever become text: no name of a design is taken for markup. */

export type Child = Node | string | undefined | null | false | Child[];
export type Attributes = Record<string, string | number | boolean | undefined | EventListener | ((event: never) => void)>;

const SVG = "http://www.w3.org/2000/svg";

function append(element: Element, children: Child[]): void {
  for (const child of children) {
    if (Array.isArray(child)) {
      append(element, child);
    } else if (child !== undefined && child !== null && child !== false) {
      element.append(child);
    }
  }
}

function fill<E extends Element>(element: E, attributes: Attributes, children: Child[]): E {
  for (const [name, value] of Object.entries(attributes)) {
    if (typeof value === "function") {
      element.addEventListener(name, value as EventListener);
    } else if (value === true) {
      element.setAttribute(name, "");
    } else if (value !== undefined && value !== false) {
      element.setAttribute(name, String(value));
    }
  }
  append(element, children);
  return element;
}

/** An HTML element. An attribute that is a function listens to the event of that name. */
export function h<K extends keyof HTMLElementTagNameMap>(
  tag: K,
  attributes: Attributes = {},
  ...children: Child[]
): HTMLElementTagNameMap[K] {
  return fill(document.createElement(tag), attributes, children);
}

/** An SVG element. */
export function s<K extends keyof SVGElementTagNameMap>(
  tag: K,
  attributes: Attributes = {},
  ...children: Child[]
): SVGElementTagNameMap[K] {
  return fill(document.createElementNS(SVG, tag) as SVGElementTagNameMap[K], attributes, children);
}

/** @p name with what would not be seen, or would turn the order of other letters, made visible. */
export function shown(name: string): string {
  if (name !== "" && name.trim() === "") {
    return name.replace(/[^]/g, "\u2423");
  }
  return name.replace(/[\u0000-\u001f\u007f-\u009f\u061c\u200b-\u200f\u2028-\u202e\u2060-\u206f\ufeff]/g, (each) => {
    const code = each.charCodeAt(0);
    if (code < 0x20) {
      return String.fromCharCode(0x2400 + code);
    }
    return code === 0x7f ? "\u2421" : `\\u{${code.toString(16)}}`;
  });
}

/** The first @p most characters, with a mark where something was cut. */
export function short(name: string, most: number): string {
  const text = shown(name);
  return text.length > most ? `${text.slice(0, Math.max(1, most - 1))}…` : text;
}

const NUMBERS = new Intl.NumberFormat("en");
export const count = (value: number): string => NUMBERS.format(value);
export const plural = (value: number, one: string, many = `${one}s`): string =>
  `${count(value)} ${value === 1 ? one : many}`;
