/** What is typed into the search box. */
export type Mode = "text" | "glob" | "regex";

export interface Query {
  mode: Mode;
  text: string;
  ignoreCase: boolean;
  /** Nets and buses. */
  nets: boolean;
  instances: boolean;
  /** Leaf cells. */
  cells: boolean;
}

const FLAGS = ["i", "n", "m", "c"] as const;

/** The query as part of an address. */
export function queryText(query: Query): string {
  const flags = [query.ignoreCase, query.nets, query.instances, query.cells];
  return `${query.mode}-${FLAGS.filter((_, at) => flags[at]).join("")}:${query.text}`;
}

export function parseQuery(text: string): Query | undefined {
  const match = /^(text|glob|regex)-([inmc]*):([^]*)$/.exec(text);
  if (!match) {
    return undefined;
  }
  const has = (flag: string): boolean => match[2]!.includes(flag);
  return {
    mode: match[1] as Mode,
    text: match[3]!,
    ignoreCase: has("i"),
    nets: has("n"),
    instances: has("m"),
    cells: has("c"),
  };
}
