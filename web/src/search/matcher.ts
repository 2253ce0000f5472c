import type { Query } from "./query";

/** Tells whether full names match a query. */
export interface Matcher {
  /** Whether an item of that own name can match, wherever it stands. */
  canMatch(ownName: string): boolean;
  matches(fullName: string): boolean;
  /** True when whatever stands below a match matches, too. */
  includesBelow: boolean;
  /** True when canMatch() decides. */
  ownNameDecides: boolean;
}

/** The regular expression that matches what a wildcard pattern does. */
export function regexOfGlob(glob: string): string {
  let text = "";
  for (let at = 0; at < glob.length; ++at) {
    const each = glob[at]!;
    if (each === "*" && glob[at + 1] === "*") {
      text += "[^]*";
      ++at;
    } else if (each === "*") {
      text += "[^/]*";
    } else if (each === "?") {
      text += "[^/]";
    } else {
      const plain = each === "\\" && at + 1 < glob.length ? glob[++at]! : each;
      text += plain.replace(/[\\^$.*+?()[\]{}|/-]/, "\\$&");
    }
  }
  return text;
}

/** @throws SyntaxError for a bad regular expression */
export function matcherOf(query: Query): Matcher {
  const flags = query.ignoreCase ? "iu" : "u";
  if (query.mode === "regex") {
    const pattern = new RegExp(query.text, flags);
    return {
      canMatch: () => true,
      matches: (name) => pattern.test(name),
      includesBelow: false,
      ownNameDecides: false,
    };
  }
  if (query.mode === "glob") {
    const pattern = new RegExp(`^${regexOfGlob(query.text)}$`, flags);
    const tail = query.text.slice(query.text.lastIndexOf("/") + 1);
    const own = new RegExp(`${tail.includes("**") ? "" : "^"}${regexOfGlob(tail)}$`, flags);
    return {
      canMatch: (name) => name.includes("/") || own.test(name),
      matches: (name) => pattern.test(name),
      includesBelow: false,
      ownNameDecides: false,
    };
  }
  const fold = (name: string): string => (query.ignoreCase ? name.toLowerCase() : name);
  const text = fold(query.text);
  const tail = text.slice(text.lastIndexOf("/") + 1);
  return {
    canMatch: (name) => fold(name).includes(tail),
    matches: (name) => fold(name).includes(text),
    includesBelow: true,
    ownNameDecides: tail === text,
  };
}
