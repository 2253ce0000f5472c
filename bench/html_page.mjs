// Measures the page of a design: size of the file, time to the first picture, time to the first hit of a search.
//
//     NETLISTDB=PROGRAM node bench/html_page.mjs DESIGN SEARCH [ROUNDS]
//
// Prints the median of the rounds. Needs Chromium and what `npm ci` installs in web/.
import { execFileSync } from "node:child_process";
import { mkdtempSync, rmSync, statSync } from "node:fs";
import { tmpdir } from "node:os";
import { join } from "node:path";
import { pathToFileURL } from "node:url";
import { startBrowser } from "../web/test/support.mjs";

const [design, search, rounds = "3"] = process.argv.slice(2);
if (!search) {
  console.error("usage: NETLISTDB=PROGRAM node bench/html_page.mjs DESIGN SEARCH [ROUNDS]");
  process.exit(2);
}
const directory = mkdtempSync(join(tmpdir(), "netlistdb-bench-"));
process.on("exit", () => rmSync(directory, { recursive: true, force: true }));
const file = join(directory, "page.html");
const begin = performance.now();
execFileSync(process.env.NETLISTDB, ["html", design, "-o", file], { stdio: "inherit" });
const written = (performance.now() - begin) / 1000;

const median = (values) => values.sort((a, b) => a - b)[Math.floor(values.length / 2)];
const pictures = [];
const hits = [];
const browser = await startBrowser();
for (let round = 0; round < Number(rounds); ++round) {
  const page = await browser.newPage();
  await page.setViewport({ width: 1400, height: 900 });
  await page.goto(pathToFileURL(file).href, { timeout: 60_000 });
  await page.waitForSelector(".icicle svg", { timeout: 60_000 });
  pictures.push(
    await page.evaluate(
      () =>
        new Promise((done) =>
          requestAnimationFrame(() => requestAnimationFrame(() => done(performance.now() / 1000))),
        ),
    ),
  );
  await new Promise((done) => setTimeout(done, 1500));
  hits.push(
    await page.evaluate((text) => {
      const begin = performance.now();
      return new Promise((done) => {
        const watch = new MutationObserver(() => {
          if (document.querySelector("#hits a")) {
            watch.disconnect();
            done((performance.now() - begin) / 1000);
          }
        });
        watch.observe(document.body, { childList: true, subtree: true });
        const input = document.querySelector("input[type=search]");
        input.value = text;
        input.dispatchEvent(new Event("input"));
      });
    }, search),
  );
  await page.close();
}
await browser.close();
console.log(`written in     ${written.toFixed(2)} s`);
console.log(`file           ${(statSync(file).size / 1e6).toFixed(2)} MB`);
console.log(`first picture  ${median(pictures).toFixed(2)} s`);
console.log(`first hit      ${median(hits).toFixed(2)} s`);
