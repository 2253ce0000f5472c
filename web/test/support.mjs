// What the tests share: the program, pages that it writes, the data modules in this process, a browser.
import { execFileSync, spawnSync } from "node:child_process";
import { mkdtempSync, readFileSync, rmSync } from "node:fs";
import { tmpdir } from "node:os";
import { dirname, join, resolve } from "node:path";
import { fileURLToPath, pathToFileURL } from "node:url";
import { gunzipSync } from "node:zlib";
import { build } from "esbuild";
import puppeteer from "puppeteer-core";

export const web = resolve(dirname(fileURLToPath(import.meta.url)), "..");
export const repository = resolve(web, "..");
export const output = process.env.WEB_OUTPUT ?? join(repository, "build/web");
const program = process.env.NETLISTDB;

/** A directory that goes when the process ends. */
export function temporary() {
  const directory = mkdtempSync(join(tmpdir(), "netlistdb-web-"));
  process.on("exit", () => rmSync(directory, { recursive: true, force: true }));
  return directory;
}

/** Standard output of the program; exit codes 0 and 1 are answers. */
export function run(...args) {
  const options = typeof args.at(-1) === "object" ? args.pop() : {};
  const result = spawnSync(program, args, { cwd: repository, maxBuffer: 1 << 30, timeout: 120_000, encoding: "utf8", ...options });
  if (result.status !== 0 && result.status !== 1) {
    throw new Error(`netlistdb ${args.join(" ")}: ${result.stderr}`);
  }
  return result.stdout;
}

/** Writes a page and returns its file. */
export function writePage(name, ...args) {
  const file = join(temporary(), `${name}.html`);
  execFileSync(program, ["html", ...args, "-o", file], { cwd: repository, timeout: 120_000 });
  return file;
}

/** A part of the data of a page, before compression. */
export function partOf(file, id) {
  const page = readFileSync(file, "latin1");
  const mark = `<script type="application/gzip" id="${id}">`;
  const begin = page.indexOf(mark) + mark.length;
  return gunzipSync(Buffer.from(page.slice(begin, page.indexOf("</script>", begin)), "base64"));
}

let modules;
/** The sources of the page that need no browser, as one module. */
export async function sources() {
  if (!modules) {
    const file = join(temporary(), "sources.mjs");
    await build({
      stdin: {
        contents: ["data/design", "data/binding", "data/totals", "data/address", "search/walk", "search/matcher", "search/query"]
          .map((name) => `export * from "./src/${name}";`)
          .join("\n"),
        resolveDir: web,
      },
      bundle: true,
      format: "esm",
      outfile: file,
      logLevel: "error",
    });
    modules = await import(pathToFileURL(file));
  }
  return modules;
}

/** The design of a page. */
export async function designOf(file) {
  const { Design } = await sources();
  return new Design(JSON.parse(partOf(file, "head")), partOf(file, "modules"));
}

/** Every occurrence of a module with its path. */
export function* occurrences(design) {
  const waiting = [{ context: design.root(), path: [] }];
  for (const place of waiting) {
    yield place;
    design.module(place.context.at(-1).module).subs.forEach(([name], sub) =>
      waiting.push({ context: design.below(place.context, sub), path: [...place.path, name] }),
    );
  }
}

export function startBrowser() {
  return puppeteer.launch({
    executablePath: process.env.CHROMIUM ?? "/usr/bin/chromium",
    headless: true,
    args: ["--no-sandbox", "--disable-dev-shm-usage", "--disable-gpu", "--force-device-scale-factor=1"],
    timeout: 60_000,
    protocolTimeout: 120_000,
  });
}
