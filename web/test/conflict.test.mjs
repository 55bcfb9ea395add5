// Two pages edit the same saved query: the second save meets the first one's version and the user
// chooses which version stays.
import assert from "node:assert/strict";
import { test } from "node:test";
import { createQuery, getRecord, sample, settled, useServerAndBrowser } from "./harness.mjs";

const env = useServerAndBrowser();

async function openQuery(id) {
  const page = await env.context.newPage();
  await page.goto(`${env.url}/#/q/${id}`);
  await settled(page);
  return page;
}

function quantity(page) {
  return page.locator("section.field", { has: page.getByRole("heading", { name: /^Cantitate/ }) }).getByLabel("Value");
}

async function save(page) {
  await page.getByRole("button", { name: "Save" }).click();
}

async function savedValue(id) {
  const text = String((await getRecord(env.url, id)).QueryDef);
  return /<ConditionID>103<\/ConditionID>.*?<Value>(.*?)<\/Value>/.exec(text)[1];
}

test("the second save is told someone saved first, and may keep its own version", async () => {
  await createQuery(env.url, "conflict-keep", "Conflict", await sample("orders"));
  const first = await openQuery("conflict-keep");
  const second = await openQuery("conflict-keep");

  await quantity(first).fill("3");
  await save(first);
  await first.locator("#save-state", { hasText: "All changes saved" }).waitFor();

  await quantity(second).fill("5");
  await save(second);
  const dialog = second.getByRole("dialog", { name: "Someone else saved this query first" });
  await dialog.waitFor();
  assert.equal(await savedValue("conflict-keep"), "3", "nothing is stored before the user answers");
  await dialog.getByRole("button", { name: "Keep my version" }).click();
  await second.locator("#save-state", { hasText: "All changes saved" }).waitFor();
  assert.equal(await savedValue("conflict-keep"), "5");
});

test("the second save may load the other version instead, dropping its own edit", async () => {
  await createQuery(env.url, "conflict-load", "Conflict", await sample("orders"));
  const first = await openQuery("conflict-load");
  const second = await openQuery("conflict-load");

  await quantity(first).fill("4");
  await save(first);
  await first.locator("#save-state", { hasText: "All changes saved" }).waitFor();

  await quantity(second).fill("9");
  await save(second);
  const dialog = second.getByRole("dialog", { name: "Someone else saved this query first" });
  await dialog.getByRole("button", { name: "Load their version" }).click();
  await second.locator("#save-state", { hasText: "All changes saved" }).waitFor();
  assert.equal(await quantity(second).inputValue(), "4");
  await settled(second);
  assert.match(await second.locator("#out-sql").textContent(), /Quantity >= 4\)/);
  assert.equal(await savedValue("conflict-load"), "4");

  // The loaded version is the one the next save replaces.
  await quantity(second).fill("6");
  await save(second);
  await second.locator("#save-state", { hasText: "All changes saved" }).waitFor();
  assert.equal(await savedValue("conflict-load"), "6");
});
