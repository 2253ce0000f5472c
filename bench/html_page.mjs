// Measures the page of a design: size of the file, time to the first picture, until
// all that it shows first is there, and to the first hit of a search.
//
//     NETLISTDB=PROGRAM node bench/html_page.mjs DESIGN SEARCH [ROUNDS]
//
// DESIGN may be a page that was written before. Prints the median of the rounds. Needs Chromium and what `npm ci` installs in web/.
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
let file = design;
if (!design.endsWith(".html")) {
  const directory = mkdtempSync(join(tmpdir(), "netlistdb-bench-"));
  process.on("exit", () => rmSync(directory, { recursive: true, force: true }));
  file = join(directory, "page.html");
  const begin = performance.now();
  execFileSync(process.env.NETLISTDB, ["html", design, "-o", file], { stdio: "inherit" });
  console.log(`written in     ${((performance.now() - begin) / 1000).toFixed(2)} s`);
}

const median = (values) => values.sort((a, b) => a - b)[Math.floor(values.length / 2)];
const pictures = [];
const wholes = [];
const hits = [];
const browser = await startBrowser();
for (let round = 0; round < Number(rounds); ++round) {
  const page = await browser.newPage();
  await page.setViewport({ width: 1400, height: 900 });
  // Noted by the page itself: what it does afterwards keeps questions from outside waiting.
  await page.evaluateOnNewDocument(() => {
    window.picture = new Promise((done) => {
      const look = () => {
        if (document.querySelector(".icicle svg")) {
          requestAnimationFrame(() => setTimeout(() => done(performance.now() / 1000)));
        } else {
          requestAnimationFrame(look);
        }
      };
      requestAnimationFrame(look);
    });
    window.whole = new Promise((done) => {
      const look = () => {
        if (document.querySelector("table")) {
          done(performance.now() / 1000);
        } else {
          setTimeout(look, 20);
        }
      };
      look();
    });
  });
  await page.goto(pathToFileURL(file).href, { timeout: 60_000 });
  await page.waitForSelector("table", { timeout: 60_000 });
  pictures.push(await page.evaluate(() => window.picture));
  wholes.push(await page.evaluate(() => window.whole));
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
console.log(`file           ${(statSync(file).size / 1e6).toFixed(2)} MB`);
console.log(`first picture  ${median(pictures).toFixed(2)} s`);
console.log(`all of it      ${median(wholes).toFixed(2)} s`);
console.log(`first hit      ${median(hits).toFixed(2)} s`);
