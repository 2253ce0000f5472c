// The page as people use it, in a browser.
import assert from "node:assert/strict";
import { mkdirSync, readFileSync, writeFileSync } from "node:fs";
import { join } from "node:path";
import { after, before, describe, test } from "node:test";
import { pathToFileURL } from "node:url";
import { hostileDesign, NAMES } from "./hostile.mjs";
import { output, startBrowser, temporary, web, writePage } from "./support.mjs";

const axe = readFileSync(join(web, "node_modules/axe-core/axe.min.js"), "utf8");

let browser;
let page;
let url;
const faults = [];
const requests = [];

async function open(file, hash = "") {
  await page.goto("about:blank");
  url = pathToFileURL(file).href;
  await page.goto(url + hash);
  await page.waitForSelector("article, [role=alert]");
  await whole();
}

/** Waits until what the view shows has been read. */
const whole = () => page.waitForFunction(() => !/Reading (details|the modules)/.test(document.getElementById("app").textContent));

async function go(hash) {
  await page.evaluate((to) => {
    location.hash = to;
  }, hash);
  await page.waitForFunction((to) => location.hash === to, {}, hash);
  await new Promise((done) => setTimeout(done, 50));
  await whole();
}

const text = (selector = "main") => page.$eval(selector, (element) => element.textContent);
const heading = () => text("main h1");

async function shot(name) {
  mkdirSync(output, { recursive: true });
  await page.screenshot({ path: join(output, `${name}.png`) });
}

/** The page may run no script of others, so the rules run in an isolated world. */
async function accessibility(what) {
  const session = await page.createCDPSession();
  const { frameTree } = await session.send("Page.getFrameTree");
  const { executionContextId } = await session.send("Page.createIsolatedWorld", { frameId: frameTree.frame.id });
  const evaluate = async (expression) => {
    const { result, exceptionDetails } = await session.send("Runtime.evaluate", {
      expression,
      contextId: executionContextId,
      awaitPromise: true,
      returnByValue: true,
    });
    assert.equal(exceptionDetails, undefined, exceptionDetails?.exception?.description);
    return result.value;
  };
  await evaluate(`${axe}; undefined`);
  const violations = await evaluate(
    `axe.run(document).then(({ violations }) => violations.map(({ id, nodes }) =>
       id + ": " + nodes.slice(0, 3).map(({ html, failureSummary }) => html.slice(0, 200) + " " + failureSummary).join(" | ")))`,
  );
  await session.detach();
  assert.deepEqual(violations, [], what);
}

before(async () => {
  browser = await startBrowser();
  page = await browser.newPage();
  await page.setViewport({ width: 1400, height: 900 });
  page.on("pageerror", (fault) => faults.push(fault.stack ?? String(fault)));
  page.on("console", (message) => message.type() === "error" && faults.push(message.text()));
  page.on("dialog", (dialog) => {
    faults.push(`dialog: ${dialog.message()}`);
    void dialog.dismiss();
  });
  page.on("request", (request) => requests.push(request.url()));
});

after(async () => {
  await browser?.close();
});

describe("the page of a design in both forms", () => {
  before(async () => {
    await open(writePage("soc", "designs/soc_elaborated.json", "--post-map", "designs/soc_postmap.json"));
  });

  test("shows the top with its hierarchy and registers by clock", async () => {
    assert.match(await heading(), /soc_top/);
    await page.waitForSelector(".icicle a");
    const boxes = await page.$$eval(".icicle a title", (all) => all.map((each) => each.textContent));
    assert.ok(boxes.some((each) => /^u_cpu: \d+ registers \(clk_sys_i/.test(each)), boxes.slice(0, 5).join());
    assert.match(await text(".legend"), /clk_sys_i/);
    await accessibility("top");
    await shot("top");
  });

  test("makes the children of an instance when it is opened, and is walked by keys", async () => {
    await page.focus(".tree");
    const rows = () => page.$$eval(".row .name", (all) => all.map((each) => each.textContent));
    const active = () => page.$eval("[data-active] .name", (each) => each.textContent);
    await page.keyboard.press("Home");
    const closed = await rows();
    assert.ok(closed.includes("u_cpu") && !closed.includes("u_alu"));
    for (let press = 0; (await active()) !== "u_cpu"; ++press) {
      assert.ok(press < 40, "u_cpu is not reached");
      await page.keyboard.press("ArrowDown");
    }
    await page.keyboard.press("ArrowRight");
    const open = await rows();
    assert.ok(open.length > closed.length);
    assert.equal(await page.$eval("[data-active]", (each) => each.getAttribute("aria-expanded")), "true");
    await page.keyboard.press("ArrowRight");
    assert.equal(await page.$eval("[data-active]", (each) => each.getAttribute("aria-level")), "3");
    const id = await page.$eval("[data-active]", (each) => each.id);
    assert.equal(await page.$eval(".tree", (each) => each.getAttribute("aria-activedescendant")), id);
    const child = await active();
    await page.keyboard.press("Enter");
    await page.waitForFunction((name) => location.hash === `#/inst/u_cpu/${name}`, {}, child);
    assert.match(await heading(), new RegExp(child));
    await page.keyboard.press("ArrowLeft");
    assert.equal(await active(), "u_cpu");
    await page.keyboard.press("ArrowLeft");
    assert.deepEqual(await rows(), closed);
  });

  test("has a card for an instance that leads to its module", async () => {
    await go("#/inst/u_cpu");
    assert.match(await text(), /cpu_core/);
    assert.match(await text(".facts"), /designs\/rtl\/soc_top\.v:\d+/);
    await shot("instance");
    await accessibility("instance");
    await page.$eval(".facts a", (each) => each.click());
    await page.waitForFunction(() => location.hash.startsWith("#/module/"));
    assert.match(await heading(), /cpu_core/);
    assert.match(await text(), /Used in/);
    await accessibility("module");
  });

  test("has a card for a bus with clocks, chain, verdict, counterpart, drivers and loads", async () => {
    await go("#/net/u_spi/select_q");
    const card = await text();
    assert.match(card, /Bus select_q/);
    assert.match(card, /3 bits/);
    assert.match(card, /spi_master\.v:31/);
    assert.match(card, /clk_sys_i/);
    assert.match(card, /Why these clocks/);
    assert.match(card, /may be probed: 3 of 3 bits/);
    assert.match(card, /In the device/);
    assert.match(await text(".grade"), /exact|register|structural/);
    assert.ok((await page.$$(".schematic svg .register")).length >= 1);
    assert.match(await text(".steps"), /clk_sys_i/);
    const pins = await page.$$eval("[aria-label=Drivers] tbody td:nth-child(3)", (all) => all.map((each) => each.textContent));
    assert.deepEqual(pins, ["Q"]);
    assert.ok((await page.$$("[aria-label=Loads] tbody tr")).length >= 1);
    await accessibility("bus");
    await shot("bus");
    const element = await page.$(".schematic");
    await element.screenshot({ path: join(output, "schematic.png") });
  });

  test("a pin leads to the card of its cell, and back to the net", async () => {
    await page.$eval("[aria-label=Drivers] tbody a", (each) => each.click());
    await page.waitForFunction(() => location.hash.startsWith("#/cell/u_spi/"));
    assert.match(await heading(), /^Cell/);
    assert.match(await text(), /flip-flop, a register/);
    await accessibility("cell");
    assert.ok(await page.$eval("[aria-label=Pins]", (each) => [...each.querySelectorAll("a")].some((a) => a.textContent.startsWith("select_q"))));
  });

  test("the path is copied", async () => {
    await go("#/net/u_spi/select_q");
    await browser.defaultBrowserContext().overridePermissions(new URL(url).origin, []).catch(() => {});
    await page.evaluate(() => {
      window.copied = "";
      document.addEventListener("copy", () => (window.copied = String(document.activeElement.value ?? getSelection())));
      navigator.clipboard.writeText = (each) => {
        window.copied = each;
        return Promise.resolve();
      };
    });
    await page.click(".title .copy");
    await page.waitForFunction(() => window.copied === "u_spi/select_q");
  });

  test("shows the clock tree, and a clock", async () => {
    await go("#/clocks");
    const rows = await page.$$eval("tbody tr", (all) => all.map((each) => each.textContent));
    assert.ok(rows.length > 3);
    assert.ok(rows.some((row) => row.includes("└")), "no clock stands below another");
    await accessibility("clocks");
    await shot("clocks");
    await page.$eval("tbody a.clock", (each) => each.click());
    await page.waitForFunction(() => location.hash.startsWith("#/clock/"));
    assert.match(await text(), /Begins at/);
    await accessibility("clock");
  });

  test("shows crossings as a matrix that leads to their list", async () => {
    await go("#/crossings");
    assert.ok((await page.$$(".matrix a.crossing")).length > 3);
    await accessibility("crossings");
    await shot("crossings");
    await page.$eval(".matrix a.crossing", (each) => each.click());
    await page.waitForFunction(() => location.hash.startsWith("#/crossings/"));
    assert.ok((await page.$$("tbody tr")).length >= 1);
    assert.match(await text("thead"), /Class/);
    await accessibility("crossing");
    await shot("crossing");
  });

  test("an address opens what it names, and one that names nothing says so", async () => {
    await page.goto("about:blank");
    await page.goto(`${url}#/net/u_spi/select_q`);
    await page.waitForSelector("article");
    assert.match(await heading(), /select_q/);
    assert.equal(await page.$eval("[aria-selected=true] .name", (each) => each.textContent), "u_spi");
    for (const wrong of ["#/net/u_spi/none", "#/inst/none", "#/module/9999", "#/clock/none", "#/%", "#/crossings/a/b", "#/search/x", "#/constructor"]) {
      await go(wrong);
      assert.match(await heading(), /Nothing here/, wrong);
    }
  });

  for (const [mode, query, wanted] of [
    ["text", "select_q", "u_spi/select_q"],
    ["glob", "u_spi/*_q", "u_spi/select_q"],
    ["regex", "^u_spi/sel.*q$", "u_spi/select_q"],
  ]) {
    test(`finds names by ${mode} while they are typed`, async () => {
      await go("#/");
      await page.select("form select", mode);
      await page.keyboard.press("Escape");
      await page.evaluate(() => document.activeElement.blur());
      await page.keyboard.press("/");
      await page.keyboard.type(query);
      // Results of what was typed first are there before the last letter is.
      await page.waitForFunction((typed) => decodeURIComponent(location.hash).endsWith(`:${typed}`), {}, query);
      await page.waitForFunction(() => /found\./.test(document.querySelector("[role=status]")?.textContent ?? ""));
      const hits = await page.$$eval("#hits a", (all) => all.map((each) => each.textContent));
      assert.ok(hits.includes(wanted), hits.join());
      if (mode === "text") {
        await accessibility("search");
        await shot("search");
      }
      await page.keyboard.press("Enter");
      assert.ok(await page.$eval("#hits", (each) => each.contains(document.activeElement)));
      await page.keyboard.press("Enter");
      await page.waitForFunction(() => !location.hash.startsWith("#/search/"));
      await page.$eval("form input[type=search]", (each) => (each.value = ""));
    });
  }

  test("says what is wrong with a regular expression", async () => {
    await go(`#/search/${encodeURIComponent("regex-inm:(")}`);
    await page.waitForSelector(".fault");
    assert.match(await text(".fault"), /Invalid regular expression/);
  });

  test("stays whole in the dark, on a narrow window, and in print", async () => {
    await page.emulateMediaFeatures([{ name: "prefers-color-scheme", value: "dark" }]);
    await go("#/net/u_spi/select_q");
    await accessibility("dark");
    await shot("dark");
    await go("#/");
    await page.waitForSelector(".icicle a");
    await accessibility("dark top");
    await shot("dark-top");
    await page.emulateMediaFeatures([{ name: "prefers-color-scheme", value: "light" }]);
    await page.setViewport({ width: 390, height: 800 });
    await go("#/net/u_spi/select_q");
    assert.ok(await page.evaluate(() => document.documentElement.scrollWidth <= innerWidth), "the page is wider than the window");
    await accessibility("narrow");
    await shot("narrow");
    await page.setViewport({ width: 1400, height: 900 });
    await page.emulateMediaType("print");
    assert.equal(await page.$eval("aside", (each) => getComputedStyle(each).display), "none");
    await shot("print");
    await page.emulateMediaType("screen");
  });

  test("needs nothing but its file", () => {
    assert.deepEqual(
      requests.filter((each) => !/^(file|blob|data|about):/.test(each)),
      [],
    );
    assert.deepEqual(faults, []);
  });
});

describe("a page that breaks off", () => {
  test("shows the top before anything else, and then what is wrong", async () => {
    const file = join(temporary(), "broken.html");
    const original = readFileSync(writePage("whole", "designs/soc_elaborated.json"), "utf8");
    writeFileSync(file, original.replace(/(id="modules">)[^<]*/, "$1"));
    const script = await page.evaluateOnNewDocument(() => {
      new MutationObserver(() => {
        window.wasShown ||= document.querySelector(".icicle") !== null;
      }).observe(document, { childList: true, subtree: true });
    });
    await page.goto(pathToFileURL(file).href);
    await page.waitForSelector("[role=alert]");
    assert.match(await text("[role=alert]"), /holds no data \(modules\)/);
    assert.equal(await page.evaluate(() => window.wasShown), true);
    await page.removeScriptToEvaluateOnNewDocument(script.identifier);
  });

  test("shows a net that it is opened with once the modules are there", async () => {
    await open(writePage("soc", "designs/soc_elaborated.json"), "#/net/u_spi/select_q");
    assert.match(await heading(), /select_q/);
  });
});

describe("the page of a design whose names are hostile", () => {
  before(async () => {
    const directory = temporary();
    const design = join(directory, "hostile.json");
    writeFileSync(design, hostileDesign());
    await open(writePage("hostile", design));
  });

  const isBroken = () => page.evaluate(() => window.broken !== undefined || document.querySelectorAll("img, main script").length > 0);

  test("runs none of them, and shows each in its card", async () => {
    for (const name of NAMES) {
      const parts = [["inst", `i${name}`], ["net", name], ["net", `i${name}`, "q"], ["cell", `i${name}`, `$ff${name}`]];
      for (const [view, ...path] of parts) {
        await go(`#/${[view, ...path].map((each) => encodeURIComponent(each).replace(/[!'()*]/g, (c) => `%${c.charCodeAt(0).toString(16)}`)).join("/")}`);
        assert.doesNotMatch(await heading(), /Nothing here/, `${view} ${path.join("/").slice(0, 80)}`);
        assert.equal(await isBroken(), false, name.slice(0, 80));
      }
    }
    await go("#/");
    await page.waitForSelector(".icicle a");
    await accessibility("hostile");
    await shot("hostile");
  });

  test("finds each by the search, and links of its cards lead on", async () => {
    for (const name of NAMES.filter((each) => each.trim() !== "")) {
      await go(`#/search/${encodeURIComponent(`text-nm:i${name}`)}`);
      await page.waitForSelector("#hits a", { timeout: 10_000 });
      await page.$eval("#hits a", (each) => each.click());
      await page.waitForFunction(() => !location.hash.startsWith("#/search/"));
      assert.doesNotMatch(await heading(), /Nothing here/, name.slice(0, 80));
    }
    for (const view of ["#/clocks", "#/crossings", "#/module/0"]) {
      await go(view);
    }
    assert.equal(await isBroken(), false);
    assert.deepEqual(faults, []);
  });
});
