// What the page works out from its data is what the program shows.
import assert from "node:assert/strict";
import test from "node:test";
import { designOf, occurrences, run, sources, writePage } from "./support.mjs";

const DESIGNS = ["designs/soc_elaborated.json", "designs/soc_postmap.json"];
const pages = new Map();

async function pageDesign(design) {
  if (!pages.has(design)) {
    pages.set(design, await designOf(writePage("data", design, "--details", "0")));
  }
  return pages.get(design);
}

const WORDS = {
  "input port": "input-port",
  "black box": "black-box",
  "nothing drives it": "undriven",
  "combinational loop": "loop",
  "output port": "output-port",
  "clock pin": "clock-pin",
};

for (const file of DESIGNS) {
  test(`every net of ${file} has the clocks that the program shows`, async () => {
    const { launchOf, captureOf, reachingWords, reachedWords, roleWords } = await sources();
    const design = await pageDesign(file);
    const nets = new Map();
    for (const { context, path } of occurrences(design)) {
      design.body(context.at(-1).module).columns.nets.forEach((name, net) => nets.set([...path, name].join("/"), { context, net }));
    }
    const rows = JSON.parse(run("clock-of", file, "-", "--capture", "--format", "json", { input: [...nets.keys()].join("\n") })).results;
    assert.ok(rows.length > 1000);
    const name = (clock) => design.clocks[clock].name;
    let clocked = 0;
    for (const row of rows) {
      const place = nets.get(row.net);
      if (!place) {
        continue;
      }
      const launch = launchOf(design, place.context, place.net);
      const capture = captureOf(design, place.context, place.net);
      const words = (list) => list.map((word) => WORDS[word] ?? word).sort();
      assert.deepEqual(
        {
          clocks: launch.clocks.filter((each) => !each.isNetwork).map((each) => name(each.clock)),
          networks: launch.clocks.filter((each) => each.isNetwork).map((each) => name(each.clock)),
          reached: words(reachingWords(launch.reached)),
          captured: capture.clocks.map((each) => [name(each.clock), roleWords(each.roles).map((role) => role.replace("set or reset", "set-reset")).join(",")]),
          reaches: words(reachedWords(capture.reached)),
        },
        {
          clocks: row.clocks,
          networks: row.networks,
          reached: [...row.reached_by].sort(),
          captured: Object.entries(row.captured_by).map(([clock, roles]) => [clock, roles.replace(/ /g, "")]),
          reaches: [...row.reaches].sort(),
        },
        row.net,
      );
      clocked += row.clocks.length > 0 ? 1 : 0;
    }
    assert.ok(clocked > 500);
  });

  test(`registers by clock of ${file} add up to those of the program`, async () => {
    const { TotalsTable } = await sources();
    const design = await pageDesign(file);
    const shown = new TotalsTable(design).byClock(design.root()).filter(({ clock }) => clock >= 0);
    const expected = JSON.parse(run("clocks", file, "--format", "json")).results;
    const byName = Object.fromEntries(shown.map(({ clock, registers }) => [design.clocks[clock].name, registers]));
    for (const row of expected) {
      assert.equal(byName[row.clock] ?? 0, row.registers, row.clock);
    }
  });
}

const QUERIES = [
  ["text", "valid", []],
  ["text", "u_spi/se", []],
  ["text", "CLK", ["-i"]],
  ["glob", "u_*/*_q", ["--glob"]],
  ["glob", "**/*_q", ["--glob"]],
  ["glob", "u_spi/**", ["--glob"]],
  ["glob", "**count*", ["--glob", "-i"]],
  ["regex", "(rx|tx)_valid$", ["--regex"]],
  ["regex", "^u_[a-d]", ["--regex", "-i"]],
];

for (const [mode, text, options] of QUERIES) {
  test(`the search for ${mode} ${text} finds what the program finds`, async () => {
    const { search } = await sources();
    const file = DESIGNS[0];
    const design = await pageDesign(file);
    const query = { mode, text, ignoreCase: options.includes("-i"), nets: true, instances: true, cells: false };
    const modules = new Set([...occurrences(design)].map(({ path }) => path.join("/")));
    const found = new Set();
    for (const hit of search(design, query)) {
      if (hit) {
        const name = hit.kind === "instance" ? hit.path.join("/") : [...hit.path, hit.alias ?? hit.name].join("/");
        assert.ok(!found.has(`${hit.kind} ${name}`), `found twice: ${name}`);
        found.add(`${hit.kind} ${name}`);
      }
    }
    const names = new Set([...found].map((each) => each.slice(each.indexOf(" ") + 1)));
    const expected = JSON.parse(run("search", file, text, ...options, "--format", "json")).results.filter(
      // Leaf cells, and what is inside them, are no instances of the page.
      ({ kind, path }) => (kind === "instance" ? modules.has(path) : modules.has(path.slice(0, Math.max(0, path.lastIndexOf("/"))))),
    );
    assert.ok(expected.length > 0);
    const missing = expected.map(({ path, matched }) => matched ?? path).filter((path) => !names.has(path) && !path.endsWith("]"));
    assert.deepEqual(missing, []);
    const { matcherOf } = await sources();
    const matcher = matcherOf(query);
    for (const name of names) {
      assert.ok(matcher.matches(name), name);
    }
  });
}
