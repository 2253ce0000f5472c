import type { Body } from "../data/body";
import type { Context } from "../data/design";
import type { App } from "./app";

/** Bits of a bus that a card looks at one by one. */
export const MOST_BITS = 256;

/** One net of the design, or a bus bit by bit, as a card sees it. */
export interface Subject {
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

export function subjectOf(app: App, context: Context, path: string[], name: string): Subject | undefined {
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

/** `[7:4] [0]` for the names of bits, runs of neighbours in short. */
export function bitsText(names: string[]): string {
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
