import assert from "node:assert/strict";
import { execFileSync } from "node:child_process";
import { readFileSync } from "node:fs";
import { join } from "node:path";
import test from "node:test";
import { temporary, web } from "./support.mjs";

test("the types of the sources hold", () => {
  execFileSync(process.execPath, [join(web, "node_modules/typescript/bin/tsc"), "--noEmit"], { cwd: web, stdio: "inherit" });
});

test("the bundle that is checked in is the one that the sources make", () => {
  const made = join(temporary(), "page.html");
  execFileSync(process.execPath, [join(web, "build.mjs"), made], { cwd: web });
  assert.ok(
    readFileSync(made).equals(readFileSync(join(web, "dist/page.html"))),
    "web/dist/page.html is old; make it with: cd web && npm run build",
  );
});
