import { type Address, addressText } from "../data/address";
import { parseQuery, type Query, queryText } from "../search/query";
import type { Hit } from "../search/walk";
import type { App } from "./app";
import { count, h, shown } from "./dom";

const PAGE = 200;
const HINTS = {
  text: "Lies anywhere in the full name",
  glob: "* and ? within one level, ** across levels",
  regex: "A regular expression, found anywhere in the full name",
};

/** The box in the header: typing leads to the view of what is found. */
export class SearchBox {
  readonly element: HTMLFormElement;
  private readonly input: HTMLInputElement;
  private readonly mode: HTMLSelectElement;
  private readonly checks: Record<"ignoreCase" | "nets" | "instances" | "cells", HTMLInputElement>;
  private timer = 0;

  constructor() {
    const changed = (): void => this.go();
    const check = (label: string, isChecked: boolean): [HTMLInputElement, HTMLElement] => {
      const box = h("input", { type: "checkbox", checked: isChecked, change: changed });
      return [box, h("label", { class: "check" }, box, ` ${label}`)];
    };
    this.input = h("input", {
      type: "search",
      placeholder: "Search all names…  ( / )",
      "aria-label": "Search all names",
      autocomplete: "off",
      spellcheck: "false",
      input: () => {
        clearTimeout(this.timer);
        this.timer = window.setTimeout(changed, 40);
      },
    });
    this.mode = h(
      "select",
      { "aria-label": "What is typed is", change: changed },
      h("option", { value: "text" }, "text"),
      h("option", { value: "glob" }, "glob"),
      h("option", { value: "regex" }, "regex"),
    );
    const [ignoreCase, ignoreCaseLabel] = check("ignore case", true);
    const [nets, netsLabel] = check("nets and buses", true);
    const [instances, instancesLabel] = check("instances", true);
    const [cells, cellsLabel] = check("cells", false);
    this.checks = { ignoreCase, nets, instances, cells };
    this.element = h(
      "form",
      {
        role: "search",
        submit: (event: Event) => {
          event.preventDefault();
          this.go();
          document.querySelector<HTMLElement>("#hits a")?.focus();
        },
      },
      this.input,
      this.mode,
      h("span", { class: "options" }, ignoreCaseLabel, netsLabel, instancesLabel, cellsLabel),
    );
    document.addEventListener("keydown", (event) => {
      const isTyping = (event.target as Element).closest("input, textarea, select");
      if (event.key === "/" && !isTyping) {
        event.preventDefault();
        this.input.focus();
        this.input.select();
      }
    });
  }

  get hasFocus(): boolean {
    return this.element.contains(document.activeElement);
  }

  /** Shows the query of an address that the box did not lead to. */
  take(address: Address): void {
    this.element.classList.toggle("active", address.view === "search");
    const query = address.view === "search" ? parseQuery(address.query) : undefined;
    if (this.hasFocus) {
      return;
    }
    if (!query) {
      this.input.value = "";
      return;
    }
    this.input.value = query.text;
    this.mode.value = query.mode;
    for (const key of ["ignoreCase", "nets", "instances", "cells"] as const) {
      this.checks[key].checked = query[key];
    }
  }

  private go(): void {
    clearTimeout(this.timer);
    const query: Query = {
      mode: this.mode.value as Query["mode"],
      text: this.input.value,
      ignoreCase: this.checks.ignoreCase.checked,
      nets: this.checks.nets.checked,
      instances: this.checks.instances.checked,
      cells: this.checks.cells.checked,
    };
    const address = addressText({ view: "search", query: queryText(query) });
    // Letters typed one after the other are one step back in the browser.
    if (location.hash === address) {
      return;
    }
    if (location.hash.startsWith("#/search/")) {
      history.replaceState(null, "", address);
      window.dispatchEvent(new Event("hashchange"));
    } else if (query.text !== "") {
      location.hash = address;
    }
  }
}

function hitRow(hit: Hit): HTMLElement {
  const address: Address =
    hit.kind === "instance"
      ? { view: "instance", path: hit.path }
      : { view: hit.kind === "cell" ? "cell" : "net", path: hit.path, name: hit.name };
  const fullName = hit.kind === "instance" ? hit.path.join("/") : [...hit.path, hit.name].join("/");
  return h(
    "li",
    {},
    h("span", { class: "kind" }, hit.kind),
    h("a", { href: addressText(address) }, shown(fullName)),
    hit.width > 1 && h("span", { class: "dim" }, ` ${hit.width} bits`),
    hit.alias !== undefined && h("span", { class: "dim" }, ` also called ${shown(hit.alias)}`),
  );
}

/** What a query finds, as it is found. */
export function searchView(app: App, text: string): HTMLElement | undefined {
  const query = parseQuery(text);
  if (!query) {
    return undefined;
  }
  const status = h("p", { role: "status" }, query.text === "" ? "Type what to look for." : "Searching…");
  const list = h("ol", { id: "hits", class: "hits" });
  const more = h("button", { class: "more", hidden: true }, "Show more");
  let found = 0;
  more.addEventListener("click", () => {
    more.hidden = true;
    status.textContent = "Searching…";
    app.search.more(PAGE);
  });
  app.search.search(query, PAGE, {
    hits: (hits) => {
      found += hits.length;
      list.append(...hits.map(hitRow));
      status.textContent = `${count(found)} found so far…`;
    },
    done: (isComplete) => {
      const nothing = found === 0 ? "Nothing found" : `${count(found)} found`;
      status.textContent = query.text === "" ? "Type what to look for." : isComplete ? `${nothing}.` : `The first ${count(found)}.`;
      more.hidden = isComplete;
    },
    fault: (message) => {
      status.className = "fault";
      status.textContent = message;
    },
  });
  return h("article", { class: "card" }, h("h1", {}, "Search"), h("p", { class: "dim" }, HINTS[query.mode]), status, list, more);
}
