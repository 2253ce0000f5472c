// Makes dist/page.html: style, program and worker in one file that loads nothing. `node build.mjs FILE` writes it there.
import { createHash } from "node:crypto";
import { mkdirSync, readFileSync, writeFileSync } from "node:fs";
import { dirname, join } from "node:path";
import { fileURLToPath } from "node:url";
import { build } from "esbuild";

const here = dirname(fileURLToPath(import.meta.url));
const target = process.argv[2] ?? join(here, "dist/page.html");

async function bundle(entry, plugins = []) {
  const result = await build({
    entryPoints: [join(here, "src", entry)],
    absWorkingDir: here,
    bundle: true,
    minify: true,
    write: false,
    format: "iife",
    target: ["chrome109", "firefox115", "safari16.4"],
    charset: "ascii",
    legalComments: "none",
    plugins,
  });
  return result.outputFiles[0].text;
}

/** Lets the program hold the worker as text. */
function textOfWorker(text) {
  return {
    name: "worker",
    setup(plugins) {
      plugins.onResolve({ filter: /^worker-text$/ }, () => ({ path: "worker-text", namespace: "worker" }));
      plugins.onLoad({ filter: /.*/, namespace: "worker" }, () => ({ contents: text, loader: "text" }));
    },
  };
}

const worker = await bundle("search/worker.ts");
const script = (await bundle("main.ts", [textOfWorker(worker)])).trim();
const style = (await bundle("style.css")).trim();
if (/<\/script|<!--/i.test(script) || /<\/style/i.test(style)) {
  throw new Error("the bundle holds what would end its element");
}
const hash = createHash("sha256").update(script).digest("base64");
const page = readFileSync(join(here, "src/page.html"), "utf8")
  .replace("{hash}", () => hash)
  .replace("{style}", () => style)
  .replace("{script}", () => script);
mkdirSync(dirname(target), { recursive: true });
writeFileSync(target, page);
