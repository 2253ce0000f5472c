import type { Context, Design } from "./design";

/** What an address of the page shows. */
export type Address =
  | { view: "instance"; path: string[] }
  | { view: "net"; path: string[]; name: string }
  | { view: "cell"; path: string[]; name: string }
  | { view: "module"; number: number }
  | { view: "clocks" }
  | { view: "clock"; name: string }
  | { view: "crossings" }
  | { view: "crossing"; launch: string; capture: string }
  | { view: "search"; query: string }
  | { view: "missing"; text: string };

/** What stands for ports and black boxes in place of a launch clock. */
export const NO_CLOCK = "(none)";

// Lone surrogates, which names cannot hold but addresses can, are none that encodeURIComponent takes.
const encode = (text: string): string => encodeURIComponent(text).replace(/[!'()*]/g, (c) => `%${c.charCodeAt(0).toString(16)}`);

export function addressText(address: Address): string {
  const join = (...parts: string[]): string => `#/${parts.map(encode).join("/")}`;
  switch (address.view) {
    case "instance":
      return address.path.length === 0 ? "#/" : join("inst", ...address.path);
    case "net":
    case "cell":
      return join(address.view, ...address.path, address.name);
    case "module":
      return join("module", String(address.number));
    case "clock":
      return join("clock", address.name);
    case "crossing":
      return join("crossings", address.launch, address.capture);
    case "search":
      return join("search", address.query);
    case "missing":
      return address.text;
    default:
      return join(address.view);
  }
}

export function parseAddress(hash: string): Address {
  const missing: Address = { view: "missing", text: hash };
  let parts: string[];
  try {
    parts = hash.replace(/^#?\/?/, "").split("/").map(decodeURIComponent);
  } catch {
    return missing;
  }
  const [kind, ...rest] = parts;
  switch (kind) {
    case "":
      return rest.length === 0 ? { view: "instance", path: [] } : missing;
    case "inst":
      return { view: "instance", path: rest };
    case "net":
    case "cell":
      return rest.length === 0 ? missing : { view: kind, path: rest.slice(0, -1), name: rest[rest.length - 1]! };
    case "module":
      return rest.length === 1 && /^\d+$/.test(rest[0]!) ? { view: "module", number: Number(rest[0]) } : missing;
    case "clocks":
      return rest.length === 0 ? { view: "clocks" } : missing;
    case "clock":
      return rest.length === 1 ? { view: "clock", name: rest[0]! } : missing;
    case "crossings":
      if (rest.length === 0) {
        return { view: "crossings" };
      }
      return rest.length === 2 ? { view: "crossing", launch: rest[0]!, capture: rest[1]! } : missing;
    case "search":
      return rest.length === 1 ? { view: "search", query: rest[0]! } : missing;
    default:
      return missing;
  }
}

/** The occurrence with these names from the top down. */
export function contextOf(design: Design, path: string[]): Context | undefined {
  let context = design.root();
  for (const name of path) {
    const sub = design.module(context[context.length - 1]!.module).subs.findIndex(([each]) => each === name);
    if (sub < 0) {
      return undefined;
    }
    context = design.below(context, sub);
  }
  return context;
}

/** The net, bus or instance that a full name in a text means. Names may hold slashes of their own. */
export function addressOf(design: Design, fullName: string): Address | undefined {
  const find = (context: Context, path: string[], rest: string): Address | undefined => {
    const module = context[context.length - 1]!.module;
    const body = design.body(module);
    const bits = rest.replace(/\[[^\]]*\]$/, "");
    for (const name of [rest, bits]) {
      if (body.signalCalled(name) !== undefined || body.netCalled(name) !== undefined) {
        return { view: "net", path, name };
      }
    }
    const subs = design.module(module).subs;
    for (let sub = 0; sub < subs.length; ++sub) {
      const name = subs[sub]![0];
      if (rest === name) {
        return { view: "instance", path: [...path, name] };
      }
      if (rest.startsWith(`${name}/`)) {
        const found = find(design.below(context, sub), [...path, name], rest.slice(name.length + 1));
        if (found) {
          return found;
        }
      }
    }
    return body.columns.cells.includes(rest) ? { view: "cell", path, name: rest } : undefined;
  };
  return find(design.root(), [], fullName);
}
