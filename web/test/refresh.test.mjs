// Speed as the page feels it, measured and printed, not asserted: the output after a keystroke on a
// definition of 2,000 conditions, and the catalogue holding 10,000 saved queries.
import assert from "node:assert/strict";
import { test } from "node:test";
import { createQuery, sample, settled, useServerAndBrowser } from "./harness.mjs";

const env = useServerAndBrowser();

function manyConditions(orders, count) {
  const conditions = [];
  for (let i = 1; i <= count; ++i) {
    conditions.push(`<xqb_Condition name="Condition${i}"><ConditionID>${20000 + i}</ConditionID><ParamName/><Clause>4</Clause>` +
      `<WhereClauseLogic>1</WhereClauseLogic><Value>${i}</Value><SecondaryValue/><IsEditable>True</IsEditable><Tag/></xqb_Condition>`);
  }
  const start = orders.indexOf("<ConditionsCount>", orders.indexOf("<DBName>Quantity</DBName>"));
  const end = orders.indexOf("</xqb_Field>", start);
  return `${orders.slice(0, start)}<ConditionsCount>${count}</ConditionsCount>${conditions.join("")}${orders.slice(end)}`;
}

const median = (list) => [...list].sort((a, b) => a - b)[Math.floor(list.length / 2)];

test("output refresh after a keystroke, 2,000 conditions", async () => {
  await createQuery(env.url, "big", "Big", manyConditions(await sample("orders"), 2000));
  const page = await env.context.newPage();
  const opening = performance.now();
  await page.goto(`${env.url}/#/q/big`);
  await settled(page);
  const openMs = performance.now() - opening;
  const box = page.locator('li[data-condition-id="20001"]').getByLabel("Value");
  const times = [];
  const requests = [];
  for (let i = 0; i < 8; ++i) {
    const before = await page.evaluate(() => window.brixTimings.refreshes);
    await box.press(i % 2 ? "Backspace" : "7");
    await page.waitForFunction((n) => window.brixTimings.refreshes > n && document.querySelector(".render-state").textContent === "", before);
    const timings = await page.evaluate(() => window.brixTimings);
    times.push(timings.lastRefreshMs);
    requests.push(timings.lastServerMs);
  }
  assert.equal(await page.locator("#out-descriptions li").count(), 2004);
  const field = page.locator("section.field", { has: page.getByRole("heading", { name: /^Cantitate/ }) });
  assert.equal(await field.locator("li.condition").count(), 200, "long fields open a part at a time");
  await field.getByRole("button", { name: "Show 200 more of 2000 conditions" }).click();
  await field.locator("li.condition").nth(399).waitFor();  // the next batch is drawn after the click
  assert.equal(await field.locator("li.condition").count(), 400);
  console.log(`2,000 conditions: page open ${openMs.toFixed(0)} ms; output refreshed ${median(times).toFixed(0)} ms ` +
    `after the last keystroke (median of ${times.length}, max ${Math.max(...times).toFixed(0)} ms; 40 ms debounce included, ` +
    `${median(requests).toFixed(0)} ms of it the render request)`);
});

test("catalogue of 10,000 saved queries, paged", async () => {
  const definition = await sample("parameter_query");
  const filling = performance.now();
  const total = 10000;
  let next = 0;
  await Promise.all(Array.from({ length: 4 }, async () => {
    while (next < total) {
      const n = next++;
      await createQuery(env.url, `q${String(n).padStart(5, "0")}`, `Interogare ${n}`, definition);
    }
  }));
  const fillMs = performance.now() - filling;
  const stored = (await (await fetch(`${env.url}/api/queries?limit=1`)).json()).total;
  assert.ok(stored >= total);
  const page = await env.context.newPage();
  const opening = performance.now();
  await page.goto(`${env.url}/#/`);
  await page.getByText(`1–50 of ${stored}`).waitFor();
  const openMs = performance.now() - opening;
  const paging = performance.now();
  await page.getByRole("button", { name: "Next" }).click();
  await page.getByText(`51–100 of ${stored}`).waitFor();
  const pageMs = performance.now() - paging;
  const searching = performance.now();
  await page.getByLabel("Search").fill("Interogare 9999");
  await page.getByText("1–1 of 1").waitFor();
  const searchMs = performance.now() - searching;
  console.log(`catalogue of ${total}: stored in ${(fillMs / 1000).toFixed(1)} s; first page shown ${openMs.toFixed(0)} ms, ` +
    `next page ${pageMs.toFixed(0)} ms, search ${searchMs.toFixed(0)} ms (200 ms typing pause included)`);
});
