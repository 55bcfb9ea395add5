// Test support: a `brixq serve` on an ephemeral port with a temporary catalogue, and Debian's
// chromium driven through playwright-core (the system browser; nothing is downloaded).
import assert from "node:assert/strict";
import { spawn } from "node:child_process";
import { mkdtemp, readFile, rm, writeFile } from "node:fs/promises";
import { tmpdir } from "node:os";
import { dirname, join, resolve } from "node:path";
import { createInterface } from "node:readline";
import { fileURLToPath } from "node:url";
import { after, before } from "node:test";
import { chromium } from "playwright-core";

const here = dirname(fileURLToPath(import.meta.url));
export const repository = resolve(here, "../..");

/** brixq comes from BRIXQ (set by CTest); the page from BRIXQ_WEB, else the server's default. */
export const brixq = process.env.BRIXQ ?? resolve(repository, "build/release/tools/brixq");

export async function startServer({ token = "" } = {}) {
  const folder = await mkdtemp(join(tmpdir(), "brixq-web-"));
  const args = ["serve", "--listen", "127.0.0.1:0", "--catalog", `sqlite:${join(folder, "catalog.db")}`];
  if (token) {
    await writeFile(join(folder, "token"), `${token}\n`, { mode: 0o600 });
    args.push("--token-file", join(folder, "token"));
  }
  if (process.env.BRIXQ_WEB) args.push("--web", process.env.BRIXQ_WEB);
  // The request log goes to standard error: kept quiet, its end shown if the server fails.
  const child = spawn(brixq, args, { stdio: ["ignore", "pipe", "pipe"] });
  let log = "";
  child.stderr.on("data", (chunk) => (log = (log + chunk).slice(-4000)));
  const exited = new Promise((done) => child.once("exit", (code, signal) => done({ code, signal })));
  const lines = createInterface({ input: child.stdout });
  const first = await Promise.race([
    new Promise((done) => lines.once("line", done)),
    exited.then(({ code }) => {
      throw new Error(`brixq serve ended before it listened (exit ${code}):\n${log}`);
    }),
  ]);
  const match = /listening on (http:\/\/\S+?)\/?$/.exec(first);
  if (!match) {
    child.kill("SIGTERM");
    throw new Error(`unexpected first line from brixq serve: ${first}`);
  }
  lines.on("line", () => {}); // keep draining
  return {
    url: match[1],
    async stop() {
      if (child.exitCode === null && child.signalCode === null) child.kill("SIGTERM");
      const { code } = await exited;
      await rm(folder, { recursive: true, force: true });
      return code;
    },
  };
}

const kBrowserArgs = [
  "--headless",
  "--no-sandbox",
  "--disable-gpu",
  "--disable-quic",
  "--no-first-run",
  "--disable-background-networking",
  "--disable-component-update",
  "--disable-sync",
];

/** A browser context with a fresh profile folder, removed by close(). */
export async function startBrowser(viewport = { width: 1280, height: 800 }) {
  const profile = await mkdtemp(join(tmpdir(), "brixq-chromium-"));
  const context = await chromium.launchPersistentContext(profile, {
    executablePath: process.env.CHROMIUM ?? "/usr/bin/chromium",
    headless: true,
    args: kBrowserArgs,
    viewport,
  });
  return {
    context,
    async close() {
      await context.close();
      await rm(profile, { recursive: true, force: true });
    },
  };
}

export async function sample(name) {
  return readFile(join(repository, "examples", `${name}.xml`), "utf8");
}

/** Stores a new record through the API, as the page would. */
export async function createQuery(url, id, name, definition, token = "") {
  const record = { ID: id, Name: name, Category: "test", QueryDef: definition, IsEditable: true };
  const headers = { "Content-Type": "application/json", "If-None-Match": "*" };
  if (token) headers.Authorization = `Bearer ${token}`;
  const response = await fetch(`${url}/api/queries/${id}`, {
    method: "PUT",
    headers,
    body: JSON.stringify(record),
  });
  if (!response.ok) throw new Error(`PUT ${id}: ${response.status} ${await response.text()}`);
  return response.json();
}

export async function getRecord(url, id) {
  const response = await fetch(`${url}/api/queries/${encodeURIComponent(id)}`);
  if (!response.ok) throw new Error(`GET ${id}: ${response.status}`);
  return response.json();
}

export async function renderText(url, definition, options = {}) {
  const response = await fetch(`${url}/api/render`, {
    method: "POST",
    headers: { "Content-Type": "application/json" },
    body: JSON.stringify({ definition, ...options }),
  });
  return { status: response.status, body: await response.json() };
}

/** Runs brixq COMMAND on a definition given as text; resolves to its standard output. */
export function brixqOutput(command, definition, extra = []) {
  return new Promise((done, fail) => {
    const child = spawn(brixq, [command, ...extra, "-"], { stdio: ["pipe", "pipe", "pipe"] });
    let out = "";
    let err = "";
    child.stdout.on("data", (d) => (out += d));
    child.stderr.on("data", (d) => (err += d));
    child.on("exit", (code) => (code === 0 ? done(out) : fail(new Error(err))));
    child.stdin.end(definition);
  });
}

/** Waits until the page has shown the answer to its latest render request. */
export async function settled(page) {
  await page.waitForFunction(() => {
    const state = document.querySelector(".render-state");
    return document.body.dataset.rendered && state && state.textContent === "";
  });
}

/**
 * Starts a server and a browser before the file's tests and stops both after them; the server
 * must stop cleanly.
 */
export function useServerAndBrowser(options = {}) {
  let server;
  let browser;
  before(async () => {
    server = await startServer(options);
    browser = await startBrowser();
  });
  after(async () => {
    await browser?.close();
    assert.equal(await server?.stop(), 0, "brixq serve stops cleanly on SIGTERM");
  });
  return {
    get url() {
      return server.url;
    },
    get context() {
      return browser.context;
    },
  };
}
