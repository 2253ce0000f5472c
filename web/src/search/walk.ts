import type { Body } from "../data/body";
import type { Context, Design } from "../data/design";
import { type Matcher, matcherOf } from "./matcher";
import type { Query } from "./query";

export interface Hit {
  kind: "instance" | "net" | "bus" | "cell";
  path: string[];
  name: string;
  /** The name that matched, when it is another one. */
  alias?: string;
  width: number;
}

/** A net, bus or cell of a module that can match, and the name that does. */
interface Candidate {
  kind: "net" | "bus" | "cell";
  /** As addressed; the item itself. */
  name: string;
  matched: string;
  width: number;
}

/** Results without end must not keep a search from being stopped: after so many steps it pauses. */
const STEPS_BETWEEN_PAUSES = 256;

/**
 * Finds, level by level, what matches a query: first what matches by its own name, then what stands below something
 * that does. Modules are looked into when the walk gets there, each once. Undefined is a pause.
 * @throws SyntaxError for a bad regular expression
 */
export function* search(design: Design, query: Query): Generator<Hit | undefined> {
  if (query.text === "") {
    return;
  }
  const matcher = matcherOf(query);
  yield* new Walk(design, query, matcher).byOwnName();
  if (matcher.includesBelow) {
    yield* new Walk(design, query, matcher).byPath();
  }
}

class Walk {
  private readonly candidates: (Candidate[] | undefined)[] = [];
  private readonly inSubtree: (boolean | undefined)[] = [];
  private steps = 0;

  constructor(
    private readonly design: Design,
    private readonly query: Query,
    private readonly matcher: Matcher,
  ) {}

  *byOwnName(): Generator<Hit | undefined> {
    const waiting: { context: Context; path: string[] }[] = [{ context: this.design.root(), path: [] }];
    for (let next = 0; next < waiting.length; ++next) {
      const { context, path } = waiting[next]!;
      waiting[next] = undefined!;
      if (++this.steps % STEPS_BETWEEN_PAUSES === 0) {
        yield undefined;
      }
      const module = context[context.length - 1]!.module;
      const prefix = path.length === 0 ? "" : `${path.join("/")}/`;
      for (const candidate of this.candidatesOf(module)) {
        if (++this.steps % STEPS_BETWEEN_PAUSES === 0) {
          yield undefined;
        }
        if (this.matcher.ownNameDecides || this.matcher.matches(prefix + candidate.matched)) {
          yield hitOf(candidate, path);
        }
      }
      const subs = this.design.module(module).subs;
      for (let sub = 0; sub < subs.length; ++sub) {
        const name = subs[sub]![0];
        const below = [...path, name];
        if (this.query.instances && this.matcher.canMatch(name) && this.matcher.matches(prefix + name)) {
          yield { kind: "instance", path: below, name, width: 0 };
        }
        if (this.mayHold(subs[sub]![1])) {
          waiting.push({ context: this.design.below(context, sub), path: below });
        }
      }
    }
  }

  /** What is only found because of where it stands. */
  *byPath(): Generator<Hit | undefined> {
    const waiting: { context: Context; path: string[] }[] = [{ context: this.design.root(), path: [] }];
    for (let next = 0; next < waiting.length; ++next) {
      const { context, path } = waiting[next]!;
      waiting[next] = undefined!;
      if (++this.steps % STEPS_BETWEEN_PAUSES === 0) {
        yield undefined;
      }
      const module = context[context.length - 1]!.module;
      const prefix = path.length === 0 ? "" : `${path.join("/")}/`;
      if (this.matcher.matches(prefix)) {
        for (const candidate of this.allOf(module, prefix)) {
          yield hitOf(candidate, path);
        }
      }
      const subs = this.design.module(module).subs;
      for (let sub = 0; sub < subs.length; ++sub) {
        const name = subs[sub]![0];
        const below = [...path, name];
        if (this.query.instances && !this.matcher.canMatch(name) && this.matcher.matches(prefix + name)) {
          yield { kind: "instance", path: below, name, width: 0 };
        }
        waiting.push({ context: this.design.below(context, sub), path: below });
      }
    }
  }

  private *allOf(module: number, prefix: string): Generator<Candidate> {
    const isFoundByName = (name: string): boolean => this.matcher.canMatch(name) && this.matcher.matches(prefix + name);
    for (const candidate of itemsOf(this.design.body(module), this.query, (name) => !isFoundByName(name))) {
      if (candidate.name === candidate.matched) {
        yield candidate;
      }
    }
  }

  /** Those of a module, kept for its next occurrence; the first ones do not wait for the others. */
  private *candidatesOf(module: number): Generator<Candidate> {
    const known = this.candidates[module];
    if (known) {
      yield* known;
      return;
    }
    const found: Candidate[] = [];
    for (const each of this.matchingItems(module)) {
      found.push(each);
      yield each;
    }
    this.candidates[module] = found;
  }

  private hasCandidates(module: number): boolean {
    const known = this.candidates[module];
    return known ? known.length > 0 : !this.matchingItems(module).next().done;
  }

  private matchingItems(module: number): Generator<Candidate> {
    return itemsOf(this.design.body(module), this.query, (name) => this.matcher.canMatch(name));
  }

  /** Whether anything can match in a module or below it. */
  private mayHold(module: number): boolean {
    return (this.inSubtree[module] ??=
      this.hasCandidates(module) ||
      this.design
        .module(module)
        .subs.some(([name, below]) => (this.query.instances && this.matcher.canMatch(name)) || this.mayHold(below)));
  }
}

function hitOf(candidate: Candidate, path: string[]): Hit {
  const { kind, name, matched, width } = candidate;
  return { kind, path, name, width, ...(matched === name ? {} : { alias: matched }) };
}

/** What of a module a query asks for, under each of its names that @p accepts takes. */
function* itemsOf(body: Body, query: Query, accepts: (name: string) => boolean): Generator<Candidate> {
  const columns = body.columns;
  if (query.nets) {
    for (let signal = 0; signal < columns.signals.length; ++signal) {
      const name = body.signalName(signal);
      if (!accepts(name)) {
        continue;
      }
      const kind = body.isBus(signal) ? "bus" : "net";
      yield { kind, name, matched: name, width: body.widthOf(signal) };
    }
    for (const [signal, names] of columns.aliases) {
      const name = body.signalName(signal);
      for (const matched of names.filter(accepts)) {
        yield { kind: body.isBus(signal) ? "bus" : "net", name, matched, width: body.widthOf(signal) };
      }
    }
    if (/[[\]]/.test(query.text)) {
      for (const name of columns.nets) {
        if (accepts(name) && body.signalCalled(name) === undefined) {
          yield { kind: "net", name, matched: name, width: 1 };
        }
      }
    }
  }
  if (query.cells) {
    for (let cell = 0; cell < columns.cells.length; ++cell) {
      const name = columns.cells[cell]!;
      if (columns.kinds[cell]! >= 0 && accepts(name)) {
        yield { kind: "cell", name, matched: name, width: 0 };
      }
    }
  }
}
