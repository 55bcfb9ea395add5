// A new user's path: create a query from the orders sample, add a "between" condition on the
// order date, watch the SQL and the description follow, save, reload and find it again.
import assert from "node:assert/strict";
import { test } from "node:test";
import { brixqOutput, createQuery, getRecord, renderText, sample, settled, useServerAndBrowser } from "./harness.mjs";

const env = useServerAndBrowser();

/** Creates a query from a sample through the catalogue's form and waits for its editor. */
async function createFromSample(sampleName, name) {
  const page = await env.context.newPage();
  await page.goto(env.url + "/");
  await page.getByLabel("Sample", { exact: true }).selectOption(sampleName);
  await page.getByLabel("Name", { exact: true }).fill(name);
  await page.getByRole("button", { name: "Create" }).click();
  await page.waitForURL(/#\/q\//);
  await settled(page);
  return page;
}

test("between on a date field: SQL and description update, saved, found after a reload", async () => {
  const page = await createFromSample("orders", "Comenzi de test");

  const field = page.locator("section.field", { has: page.getByRole("heading", { name: /Data comenzii/ }) });
  const before = await field.locator("li.condition").count();
  await field.getByRole("button", { name: /Add a condition/ }).click();
  const row = field.locator("li.condition").nth(before);
  const clause = row.getByLabel("Clause");
  const between = await clause.locator("option", { hasText: "intre" }).first().getAttribute("value");
  await clause.selectOption(between);
  await row.getByLabel("From").fill("2024-04-01");
  await row.getByLabel("To").fill("2024-04-30");
  await page.waitForFunction(() => document.querySelector("#out-sql").textContent.includes("BETWEEN #45383# AND #45412#"));
  await settled(page);
  const description = (await row.locator("p.description").textContent()) ?? "";
  assert.match(description, /este intre 01-Apr-2024 si 30-Apr-2024$/);

  await page.getByRole("button", { name: "Save" }).click();
  await page.waitForFunction(() => document.querySelector("#save-state").textContent === "All changes saved");
  const id = decodeURIComponent(new URL(page.url()).hash.slice("#/q/".length));

  // Every text shown is the engine's own for the stored document.
  const stored = String((await getRecord(env.url, id)).QueryDef);
  await settled(page);
  assert.equal(await page.locator("#out-sql").textContent(), (await brixqOutput("sql", stored)).replace(/\n$/, ""));
  const lines = (await brixqOutput("describe", stored)).trimEnd().split("\n").map((l) => l.split("\t").slice(1).join("\t"));
  assert.deepEqual(await page.locator("#out-descriptions li").allTextContents(), lines);

  await page.reload();
  await settled(page);
  const again = page.locator("section.field", { has: page.getByRole("heading", { name: /Data comenzii/ }) });
  assert.equal(await again.locator("li.condition").count(), before + 1);
  assert.match((await again.locator("p.description").last().textContent()) ?? "", /01-Apr-2024 si 30-Apr-2024/);
  assert.equal(await page.locator("#save-state").textContent(), "All changes saved");

  await page.goto(env.url + "/#/");
  await page.getByLabel("Search").fill("de test");
  await assert.doesNotReject(page.getByRole("link", { name: "Comenzi de test" }).waitFor());
  await page.close();
});

test("a value the engine cannot use is shown as an error beside its condition", async () => {
  const page = await createFromSample("orders", "Valoare gresita");
  const sqlBefore = await page.locator("#out-sql").textContent();

  const field = page.locator("section.field", { has: page.getByRole("heading", { name: /^Cantitate/ }) });
  const value = field.getByLabel("Value");
  await value.fill("doi");
  await settled(page);
  const error = field.locator("p.error");
  await error.waitFor();
  const definition = await page.evaluate(() => window.brixDefinition());
  const answer = await renderText(env.url, definition);
  assert.equal(answer.status, 422);
  const expected = answer.body.conditionErrors.find((e) => e.conditionId === 103);
  assert.ok(expected, "the server names the condition");
  assert.equal(await error.locator(".reason").textContent(), expected.description);
  assert.equal(await value.getAttribute("aria-invalid"), "true");
  assert.ok(await page.locator(".output .banner").isVisible());
  assert.equal(await page.locator("#out-sql").textContent(), sqlBefore, "the last good output stays");

  await value.fill("2");
  await settled(page);
  assert.ok(await error.isHidden());
  assert.ok(await page.locator(".output .banner").isHidden());
  assert.equal(await value.getAttribute("aria-invalid"), null);
});

test("a fixed day and parameter values give the engine's texts for that day and those values", async () => {
  await createQuery(env.url, "today", "Azi", await sample("orders"));
  await createQuery(env.url, "city", "Oras", await sample("parameter_query"));
  const page = await env.context.newPage();
  await page.goto(`${env.url}/#/q/today`);
  await settled(page);
  const field = page.locator("section.field", { has: page.getByRole("heading", { name: /Data comenzii/ }) });
  await field.getByRole("button", { name: /Add a condition/ }).click();
  const clause = field.locator("li.condition").last().getByLabel("Clause");
  await clause.selectOption(await clause.locator("option", { hasText: /^astazi$/ }).getAttribute("value"));
  await page.getByLabel("Today is").fill("2024-03-15");
  // The date box reports its new value a moment after the fill returns.
  await page.waitForFunction(() => document.querySelector("#out-sql").textContent.includes("#45366#"));
  await settled(page);
  const definition = await page.evaluate(() => window.brixDefinition());
  const expected = (await brixqOutput("sql", definition, ["--date", "2024-03-15"])).replace(/\n$/, "");
  assert.equal(await page.locator("#out-sql").textContent(), expected);

  // Unsaved changes: leaving asks first.
  await page.goto(`${env.url}/#/q/city`);
  const leave = page.getByRole("dialog", { name: "Leave without saving?" });
  await leave.getByRole("button", { name: "Cancel" }).click();
  assert.match(page.url(), /#\/q\/today$/);
  await page.goto(`${env.url}/#/q/city`);
  await leave.getByRole("button", { name: "Leave without saving" }).click();
  await page.locator("#query-title", { hasText: "Oras" }).waitFor();
  await page.getByLabel("Parameter Oras").fill("Cluj, Iasi");
  await settled(page);
  const city = await page.evaluate(() => window.brixDefinition());
  const withValues = (await brixqOutput("sql", city, ["--param", "Oras=Cluj,Iasi"])).replace(/\n$/, "");
  assert.equal(await page.locator("#out-sql").textContent(), withValues);
  const answer = await renderText(env.url, city, { params: [{ name: "Oras", values: ["Cluj", "Iasi"] }] });
  assert.deepEqual(
    await page.locator("#out-sqlite table.parameters tbody td:nth-child(3)").allTextContents(),
    answer.body.statements.sqlite.parameters.map((p) => String(p.value)),
  );
});

test("the list editor splits an IN list into items and writes it back quoted", async () => {
  await createQuery(env.url, "list", "Lista", await sample("orders"));
  const page = await env.context.newPage();
  await page.goto(`${env.url}/#/q/list`);
  await settled(page);
  const field = page.locator("section.field", { has: page.getByRole("heading", { name: /^Oras/ }) });
  assert.deepEqual(await field.locator("input.list-item").evaluateAll((boxes) => boxes.map((b) => b.value)), ["Cluj", "Iasi"]);
  await field.getByRole("button", { name: "Add a list item" }).click();
  await page.keyboard.type("Targu 'Mures'");
  await field.getByLabel("Item 1").fill("");
  // Two edits, two refreshes: wait for the one after the last edit.
  await page.waitForFunction(() => {
    const sql = document.querySelector("#out-sql").textContent;
    return sql.includes("Mures") && !sql.includes("Cluj");
  });
  await settled(page);
  assert.match(await page.locator("#out-sql").textContent(), /City IN \('Iasi', 'Targu ''Mures'''\)\)/);
  assert.deepEqual(
    await page.locator("#out-sqlite table.parameters tbody td:nth-child(3)").evaluateAll((cells) => cells.slice(0, 2).map((c) => c.textContent)),
    ["Iasi", "Targu 'Mures'"],
  );
});

test("a stored definition that does not render still opens, with its error beside the condition", async () => {
  const broken = (await sample("orders")).replace("<Value>2</Value>", "<Value>doi</Value>");
  await createQuery(env.url, "broken", "Stricata", broken);
  const page = await env.context.newPage();
  await page.goto(`${env.url}/#/q/broken`);
  const field = page.locator("section.field", { has: page.getByRole("heading", { name: /^Cantitate/ }) });
  await field.locator("p.error").waitFor();
  assert.equal(await field.getByLabel("Value").inputValue(), "doi");
  assert.ok(await page.locator(".output .banner").isVisible());
  await field.getByLabel("Value").fill("3");
  await page.waitForFunction(() => document.querySelector("#out-sql").textContent.includes("Quantity >= 3"));
  assert.ok(await field.locator("p.error").isHidden());
});
