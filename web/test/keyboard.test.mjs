// One condition added, set, moved and saved with the keyboard alone.
import assert from "node:assert/strict";
import { test } from "node:test";
import { createQuery, getRecord, sample, settled, useServerAndBrowser } from "./harness.mjs";

const env = useServerAndBrowser();

/** Presses Tab until the focused element passes `test` (at most `limit` times). */
async function tabTo(page, test, limit = 200) {
  for (let i = 0; i < limit; ++i) {
    await page.keyboard.press("Tab");
    if (await page.evaluate(test)) return;
  }
  throw new Error("focus never reached the control");
}

const focusedLabel = () => document.activeElement?.getAttribute("aria-label") ?? "";

test("keyboard only: add a condition, pick its clause, type its value, move it up, save", async () => {
  await createQuery(env.url, "keys", "Keyboard", await sample("orders"));
  const page = await env.context.newPage();
  await page.goto(`${env.url}/#/q/keys`);
  await settled(page);

  await tabTo(page, () => document.activeElement?.getAttribute("aria-label") === "Add a condition on Stare");
  await page.keyboard.press("Enter");
  assert.equal(await page.evaluate(focusedLabel), "Clause");
  await page.keyboard.press("ArrowDown"); // the second clause a text field offers: "sa fie"
  await settled(page);
  assert.equal(await page.evaluate(focusedLabel), "Clause", "focus stays on the redrawn picker");
  await page.keyboard.press("Tab");
  assert.equal(await page.evaluate(focusedLabel), "Value");
  await page.keyboard.type("anulata");
  await page.keyboard.press("Alt+ArrowUp");
  await settled(page);

  const rows = page.locator("section.field", { has: page.getByRole("heading", { name: /^Stare/ }) }).locator("li.condition");
  assert.equal(await rows.count(), 3);
  assert.equal(await rows.nth(1).locator("p.description").textContent(), "Stare (Comenzi) sa fie 'anulata'");
  assert.match(await page.evaluate(focusedLabel), /^Move up/);

  await page.keyboard.press("Control+s");
  await page.locator("#save-state", { hasText: "All changes saved" }).waitFor();
  const stored = String((await getRecord(env.url, "keys")).QueryDef);
  const status = stored.slice(stored.indexOf("<DBName>Status</DBName>"));
  const values = [...status.matchAll(/<Clause>(\d+)<\/Clause><WhereClauseLogic>\d+<\/WhereClauseLogic><Value>([^<]*)<\/Value>/g)]
    .map((m) => `${m[1]}:${m[2]}`);
  assert.deepEqual(values, ["3:livrata", "3:anulata", "13:in "]);
});

test("undo by keyboard takes back the last edit outside a text box", async () => {
  await createQuery(env.url, "undo", "Undo", await sample("orders"));
  const page = await env.context.newPage();
  await page.goto(`${env.url}/#/q/undo`);
  await settled(page);
  const field = page.locator("section.field", { has: page.getByRole("heading", { name: /^Stare/ }) });
  await field.getByRole("button", { name: "Remove: condition 1 on Stare" }).click();
  await settled(page);
  assert.equal(await field.locator("li.condition").count(), 1);
  await page.keyboard.press("Control+z");
  await settled(page);
  assert.equal(await field.locator("li.condition").count(), 2);
  assert.equal(await page.locator("#save-state").textContent(), "All changes saved");
});
