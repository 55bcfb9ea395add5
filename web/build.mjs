// Builds the page into one folder: app.js (bundled, minified), index.html and style.css.
// Usage: node build.mjs [--outdir DIR]   (default: dist)
import { build } from "esbuild";
import { copyFile, mkdir } from "node:fs/promises";
import { dirname, join, resolve } from "node:path";
import { fileURLToPath } from "node:url";

const here = dirname(fileURLToPath(import.meta.url));
const at = process.argv.indexOf("--outdir");
const outdir = resolve(at > 0 ? process.argv[at + 1] : join(here, "dist"));

await mkdir(outdir, { recursive: true });
await build({
  entryPoints: [join(here, "src/main.ts")],
  bundle: true,
  minify: true,
  format: "esm",
  target: "es2022",
  outfile: join(outdir, "app.js"),
  logLevel: "warning",
});
for (const file of ["index.html", "style.css"]) await copyFile(join(here, file), join(outdir, file));
console.log(`web page built into ${outdir}`);
