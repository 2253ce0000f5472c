import { type Address, addressText, contextOf, parseAddress } from "../data/address";
import { jsonOf, takePart } from "../data/decode";
import { Design } from "../data/design";
import type { CrossingRow, Details, Head, SignalDetails } from "../data/format";
import { TotalsTable } from "../data/totals";
import { SearchClient } from "../search/client";
import { clockView, clocksView } from "./clocks";
import { crossingView, crossingsView } from "./crossings";
import { h, shown } from "./dom";
import { cellCard, instanceCard, moduleCard } from "./instances";
import { ClockMarks } from "./marks";
import { netCard } from "./nets";
import { SearchBox, searchView } from "./searchbox";
import { themeButton } from "./theme";
import { InstanceTree } from "./tree";

const VIEWS: [title: string, address: Address, views: Address["view"][]][] = [
  ["Hierarchy", { view: "instance", path: [] }, ["instance", "net", "cell", "module"]],
  ["Clocks", { view: "clocks" }, ["clocks", "clock"]],
  ["Crossings", { view: "crossings" }, ["crossings", "crossing"]],
];

/** The page: what all views share, and which of them is shown. */
export class App {
  readonly totals: TotalsTable;
  readonly marks: ClockMarks;
  private readonly tree: InstanceTree;
  private readonly searchBox: SearchBox;
  private readonly main = h("main", { id: "main", tabindex: "-1" });
  private readonly links: HTMLAnchorElement[];
  private client?: SearchClient;
  private details?: Promise<Details>;
  private rows?: Promise<CrossingRow[]>;
  private isFirst = true;
  /** Whether a view waits for the contents of modules. */
  private isWaiting = false;
  /** When the design has the contents of its modules. */
  readonly whole: Promise<void>;

  constructor(
    root: HTMLElement,
    readonly design: Design,
  ) {
    this.totals = new TotalsTable(design);
    this.marks = new ClockMarks(design);
    this.tree = new InstanceTree(this);
    this.searchBox = new SearchBox();
    const { head } = design;
    document.title = `${shown(head.top).slice(0, 100)} – netlistdb`;
    this.links = VIEWS.map(([title, address]) => h("a", { href: addressText(address) }, title));
    root.replaceChildren(
      h("button", { class: "skip", click: () => this.main.focus() }, "To the content"),
      h(
        "header",
        {},
        h("a", { class: "brand", href: "#/" }, h("strong", {}, shown(head.top)), h("span", { class: "badge" }, head.form)),
        h("nav", { "aria-label": "Views" }, this.links),
        this.searchBox.element,
        themeButton(),
      ),
      h("div", { class: "columns" }, h("aside", { "aria-label": "Hierarchy" }, this.tree.element), this.main),
    );
    this.whole = this.readModules();
    window.addEventListener("hashchange", () => this.show());
    this.show();
  }

  /** Shows what needs no contents of modules at once; ends when everything can be shown. */
  static async start(root: HTMLElement): Promise<void> {
    const app = new App(root, new Design(jsonOf<Head>(await takePart("head"))));
    await app.whole;
    if (app.isWaiting) {
      app.show();
    }
    // The picture comes first; then the search gets ready, which takes a copy of the data.
    await painted();
    setTimeout(() => app.search, 100);
  }

  private async readModules(): Promise<void> {
    await painted();
    this.design.moduleBytes = await takePart("modules");
  }

  get search(): SearchClient {
    return (this.client ??= new SearchClient(this.design));
  }

  /** What the page holds of one net or bus beyond its module; undefined when that is nothing. */
  async detailsOf(path: string, signal: number): Promise<SignalDetails | undefined> {
    this.details ??= takePart("details").then((bytes) => jsonOf<Details>(bytes));
    const all = await this.details;
    return Object.hasOwn(all, path) ? all[path]!.find((each) => each.signal === signal) : undefined;
  }

  crossingRows(): Promise<CrossingRow[]> {
    return (this.rows ??= takePart("crossings").then((bytes) => jsonOf<CrossingRow[]>(bytes)));
  }

  /** A command of the program about this design. */
  command(verb: string, rest: string): string {
    const { command, postMap } = this.design.head;
    const second = postMap === undefined || verb !== "probes" ? "" : ` ${quoted(postMap)}`;
    return `netlistdb ${verb} ${command}${second} ${rest}`;
  }

  private show(): void {
    const address = parseAddress(location.hash);
    const content = this.viewOf(address);
    this.main.replaceChildren(content);
    this.main.scrollTop = 0;
    VIEWS.forEach(([, , views], at) => {
      if (views.includes(address.view)) {
        this.links[at]!.setAttribute("aria-current", "page");
      } else {
        this.links[at]!.removeAttribute("aria-current");
      }
    });
    if (address.view === "instance" || address.view === "net" || address.view === "cell") {
      this.tree.reveal(address.path);
    }
    this.searchBox.take(address);
    if (!this.isFirst && !this.searchBox.hasFocus && !this.tree.element.contains(document.activeElement)) {
      this.main.focus({ preventScroll: true });
    }
    this.isFirst = false;
  }

  private viewOf(address: Address): HTMLElement {
    const isTop = address.view === "instance" && address.path.length === 0;
    this.isWaiting = !this.design.isWhole && !isTop;
    if (this.isWaiting) {
      return h("p", { class: "note", role: "status" }, "Reading the modules of the design…");
    }
    switch (address.view) {
      case "instance":
      case "net":
      case "cell": {
        const context = contextOf(this.design, address.path);
        const card =
          context &&
          (address.view === "instance"
            ? instanceCard(this, context, address.path)
            : address.view === "net"
              ? netCard(this, context, address.path, address.name)
              : cellCard(this, context, address.path, address.name));
        return card ?? missing();
      }
      case "module":
        return address.number < this.design.head.modules.length ? moduleCard(this, address.number) : missing();
      case "clocks":
        return clocksView(this);
      case "clock": {
        const clock = this.design.clocks.findIndex(({ name }) => name === address.name);
        return clock < 0 ? missing() : clockView(this, clock);
      }
      case "crossings":
        return crossingsView(this);
      case "crossing":
        return crossingView(this, address.launch, address.capture) ?? missing();
      case "search":
        return searchView(this, address.query) ?? missing();
      case "missing":
        return missing();
    }
  }
}

/** @p word as a shell takes it for one word. */
export function quoted(word: string): string {
  return /^[\w./+,:@%=-]+$/.test(word) ? word : `'${word.replace(/'/g, "'\\''")}'`;
}

/** When what the page holds by now can be seen. Pages that are not shown have no frames. */
function painted(): Promise<void> {
  return new Promise((done) => {
    requestAnimationFrame(() => setTimeout(done));
    setTimeout(done, 200);
  });
}

function missing(): HTMLElement {
  return h(
    "article",
    {},
    h("h1", {}, "Nothing here"),
    h("p", {}, "This address names nothing of this design; it may come from another build of it."),
    h("p", {}, h("a", { href: "#/" }, "To the top of the hierarchy")),
  );
}
