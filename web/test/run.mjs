// Tests the page: `NETLISTDB=PROGRAM node run.mjs`. Installs the packages of the lock file when they are not there.
// Screenshots go to $WEB_OUTPUT (default: build/web).
import { execFileSync, spawnSync } from "node:child_process";
import { existsSync, mkdirSync, readFileSync, writeFileSync } from "node:fs";
import { dirname, join, resolve } from "node:path";
import { fileURLToPath } from "node:url";

const web = resolve(dirname(fileURLToPath(import.meta.url)), "..");
process.env.WEB_OUTPUT ??= resolve(web, "../build/web");
mkdirSync(process.env.WEB_OUTPUT, { recursive: true });

const lock = readFileSync(join(web, "package-lock.json"), "utf8");
const stamp = join(web, "node_modules/.installed-lock.json");
if (!existsSync(stamp) || readFileSync(stamp, "utf8") !== lock) {
  execFileSync("npm", ["ci", "--no-audit", "--no-fund"], { cwd: web, stdio: "inherit", timeout: 240_000 });
  writeFileSync(stamp, lock);
}
const tests = ["bundle", "data", "page"].map((name) => join(web, "test", `${name}.test.mjs`));
const result = spawnSync(process.execPath, ["--test", ...tests], { cwd: web, stdio: "inherit", timeout: 280_000 });
process.exit(result.status ?? 1);
