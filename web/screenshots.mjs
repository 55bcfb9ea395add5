// Takes screenshots of the page's main states into docs/screenshots/ (run by scripts/screenshots).
import { mkdir } from "node:fs/promises";
import { join } from "node:path";
import { createQuery, repository, sample, settled, startBrowser, startServer } from "./test/harness.mjs";

const out = join(repository, "docs", "screenshots");
await mkdir(out, { recursive: true });
const server = await startServer();
const browser = await startBrowser();
try {
  await createQuery(server.url, "comenzi-martie", "Comenzi martie 2024", await sample("orders"));
  await createQuery(server.url, "legislatia-muncii", "Legislatia muncii", await sample("legal_documents"));
  await createQuery(server.url, "clienti-oras", "Clienti dintr-un oras", await sample("parameter_query"));
  const page = await browser.context.newPage();
  const shot = (name) => page.screenshot({ path: join(out, `${name}.png`) });
  const center = (locator) => locator.evaluate((e) => e.scrollIntoView({ block: "center" }));

  await page.goto(server.url + "/");
  await page.getByRole("link", { name: "Comenzi martie 2024" }).waitFor();
  await shot("1-catalogue");

  await page.getByRole("link", { name: "Comenzi martie 2024" }).click();
  await settled(page);
  await shot("2-editor");

  const field = page.locator("section.field", { has: page.getByRole("heading", { name: /Data comenzii/ }) });
  await field.getByRole("button", { name: /Add a condition/ }).click();
  const row = field.locator("li.condition").last();
  const clause = row.getByLabel("Clause");
  await clause.selectOption(await clause.locator("option", { hasText: "intre" }).first().getAttribute("value"));
  await row.getByLabel("From").fill("2024-04-01");
  await row.getByLabel("To").fill("2024-04-15");
  await page.waitForFunction(() => document.querySelector("#out-sql").textContent.includes("#45397#"));
  await settled(page);
  await center(row);
  await shot("3-between-added");

  const quantity = page.locator("section.field", { has: page.getByRole("heading", { name: /^Cantitate/ }) });
  await quantity.getByLabel("Value").fill("doi");
  await settled(page);
  await center(quantity);
  await shot("4-invalid-value");
  await quantity.getByLabel("Value").fill("2");
  await settled(page);
  await page.getByRole("button", { name: "Save" }).click();
  await page.locator("#save-state", { hasText: "All changes saved" }).waitFor();

  // Someone else saves first: the second save asks which version stays.
  const other = await browser.context.newPage();
  await other.goto(server.url + "/#/q/comenzi-martie");
  await settled(other);
  await other.locator("section.field", { has: other.getByRole("heading", { name: /^Cantitate/ }) }).getByLabel("Value").fill("3");
  await other.getByRole("button", { name: "Save" }).click();
  await other.locator("#save-state", { hasText: "All changes saved" }).waitFor();
  await other.close();
  await quantity.getByLabel("Value").fill("5");
  await page.getByRole("button", { name: "Save" }).click();
  await page.getByRole("dialog").waitFor();
  await shot("7-conflict");
  await page.getByRole("button", { name: "Keep my version" }).click();
  await page.locator("#save-state", { hasText: "All changes saved" }).waitFor();

  await page.goto(server.url + "/#/q/clienti-oras");
  await settled(page);
  await page.getByLabel("Parameter Oras").fill("Cluj, Iasi");
  await settled(page);
  await shot("5-parameter");

  await page.setViewportSize({ width: 420, height: 860 });
  await page.goto(server.url + "/#/q/comenzi-martie");
  await page.locator("#query-title", { hasText: "Comenzi martie 2024" }).waitFor();
  await page.locator("section.field").first().waitFor();
  await settled(page);
  await shot("6-narrow");
  console.log(`screenshots written to ${out}`);
} finally {
  await browser.close();
  await server.stop();
}
