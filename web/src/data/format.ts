/** What the program writes into a page. */

/** Number of a source file and a line; file -1: none. */
export type Place = [file: number, line: number];

export interface ClockHead {
  name: string;
  /** Among all clocks of the design, in the order of the hierarchy. */
  number: number;
  root: string;
  edges: string;
  registers: number;
  nets: number;
  parents: number[];
  names: string[];
  place?: Place;
}

export type Severity = "safe" | "warning" | "unsafe";

export interface CrossingRow {
  /** Place in the clocks; -1: a port or a black box. */
  launch: number;
  capture: number;
  class: string;
  severity: Severity;
  from: string;
  to: string;
  pin: string;
  bits: number;
  cells: number;
  stages: number;
  place: Place;
  control?: string;
  meets?: string;
}

/** Name, number of the module, place among the cells above, pairs of clock port and electrical code above. */
export type SubHead = [name: string, module: number, cell: number, clockPorts: number[]];

export interface ModuleHead {
  name: string;
  module: string;
  library: string;
  place?: Place;
  /** Clocks that begin at nets of its own. */
  clocks: number;
  ports: number;
  nets: number;
  signals: number;
  /** Leaf cells. */
  cells: number;
  /** Pairs of electrical code and number of registers of its own leaf cells. */
  registers: number[];
  subs: SubHead[];
  /** Where its contents stand in the part of all modules. */
  at: number;
  bytes: number;
}

/** Direction: 1 for an input, 2 for an output, 3 for both. */
export type Port = [name: string, direction: number, net: number];
export type Pin = [name: string, direction: number, isClock: boolean];

export interface CellKind {
  name: string;
  kind: string;
  register: boolean;
  pins: Pin[];
}

export interface Head {
  format: string;
  version: number;
  program: string;
  command: string;
  name: string;
  top: string;
  form: string;
  postMap?: string;
  directory: string;
  details: { signals: number; verdicts: number; chains: number };
  clocks: { list: ClockHead[]; nets: number; withoutClock: number };
  /** Pairs: launch clock, capture clock, safe, warning, unsafe, rows. */
  crossings: { all: number; listed: number; pairs: number[][] };
  reasons: Record<string, string>;
  cellKinds: CellKind[];
  modules: ModuleHead[];
  files: string[];
}

/** The contents of one module, column by column. */
export interface ModuleBody {
  ports: Port[];
  nets: string[];
  launch: number[];
  distance: number[];
  capture: number[];
  electrical: number[];
  /** Each: flags, then triples of kind, number and distance. */
  launchSets: number[][];
  captureSets: number[][];
  /** Names of nets and buses; 0: that of the one net. */
  signals: (string | 0)[];
  /** One net, or runs of nets: first, count, step. Net -1: tied to a constant. */
  bits: (number | number[])[];
  /** 1: declared by the user, 2: a bus. */
  flags: number[];
  places: number[];
  aliases: [signal: number, names: string[]][];
  ranges: [signal: number, left: number, right: number][];
  cells: string[];
  /** Place in the kinds of cells, or -1 minus the place in the instances. */
  kinds: number[];
  pins: number[];
  cellPlaces: number[];
}

export interface ChainStep {
  net: string;
  step: "cell" | "hierarchy" | "register" | "end";
  cell?: string;
  type?: string;
  output?: string;
  input?: string;
  file?: string;
  line?: number;
}

export interface ClockChain {
  clock: string;
  cells: number;
  data: ChainStep[];
  clock_to_root: ChainStep[];
}

export interface Why {
  bit: number;
  clocks: ClockChain[];
  networks: ClockChain[];
  ends: { end: string; data: ChainStep[] }[];
}

export type Reason = [reason: string, bars: boolean, bits: number, evidence: string, instead: string];
export type Match = [grade: string, reason: string, targets: string[], cell: string, evidence: string];

export interface SignalDetails {
  signal: number;
  verdict: "ok" | "warning" | "partly" | "no";
  probeable: number;
  clock?: number;
  reasons?: Reason[];
  matches?: (Match | null)[];
  why?: Why;
}

/** By path of the instance. */
export type Details = Record<string, SignalDetails[]>;
