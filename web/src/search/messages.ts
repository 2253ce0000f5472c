import type { Head } from "../data/format";
import type { Query } from "./query";
import type { Hit } from "./walk";

/** To the worker. */
export type Request =
  | { what: "design"; head: Head; modules: Uint8Array<ArrayBuffer> }
  | { what: "search"; id: number; query: Query; limit: number }
  /** Goes on with the search that reached its limit. */
  | { what: "more"; id: number; limit: number }
  | { what: "stop" };

/** From the worker. */
export type Reply =
  | { what: "hits"; id: number; hits: Hit[] }
  /** The search is through, or has reached its limit. */
  | { what: "done"; id: number; isComplete: boolean }
  | { what: "fault"; id: number; message: string };
