// The catalogue on a server that takes writes only with its token: deleting asks for a confirmation
// first, then for the token, once per browser tab.
import assert from "node:assert/strict";
import { test } from "node:test";
import { createQuery, sample, useServerAndBrowser } from "./harness.mjs";

const token = "s3cret-token";
const env = useServerAndBrowser({ token });

const exists = async (id) => (await fetch(`${env.url}/api/queries/${id}`)).status === 200;

test("delete after a confirmation; a cancelled confirmation keeps the query", async () => {
  const orders = await sample("orders");
  await createQuery(env.url, "keep-me", "Ramane", orders, token);
  await createQuery(env.url, "delete-me", "Se sterge", orders, token);
  const page = await env.context.newPage();
  await page.goto(`${env.url}/#/`);
  await page.getByText("1–2 of 2").waitFor();

  await page.getByRole("button", { name: "Delete Se sterge" }).click();
  const confirm = page.getByRole("dialog", { name: "Delete “Se sterge”?" });
  await confirm.getByRole("button", { name: "Cancel" }).click();
  assert.ok(await exists("delete-me"));

  await page.getByRole("button", { name: "Delete Se sterge" }).click();
  await confirm.getByRole("button", { name: "Delete" }).click();
  const ask = page.getByRole("dialog", { name: "This server needs its access token to save" });
  await ask.getByLabel("Token").fill(token);
  await ask.getByLabel("Token").press("Enter");
  await page.getByText("1–1 of 1").waitFor();
  assert.equal(await exists("delete-me"), false);
  assert.ok(await exists("keep-me"));

  // The token is kept for the tab: the next write does not ask again.
  await page.getByRole("button", { name: "Delete Ramane" }).click();
  await page.getByRole("dialog", { name: "Delete “Ramane”?" }).getByRole("button", { name: "Delete" }).click();
  await page.getByText("No saved queries yet.").waitFor();
  assert.equal(await exists("keep-me"), false);
});

test("search by name or category, a page at a time", async () => {
  const definition = await sample("parameter_query");
  for (let i = 0; i < 55; ++i) {
    await createQuery(env.url, `p${String(i).padStart(2, "0")}`, `Pagina ${String(i).padStart(2, "0")}`, definition, token);
  }
  const page = await env.context.newPage();
  await page.goto(`${env.url}/#/`);
  await page.getByText("1–50 of 55").waitFor();
  await page.getByRole("button", { name: "Next" }).click();
  await page.getByText("51–55 of 55").waitFor();
  assert.deepEqual(await page.locator("table.queries tbody a").allTextContents(),
    ["Pagina 50", "Pagina 51", "Pagina 52", "Pagina 53", "Pagina 54"]);
  await page.getByLabel("Search").fill("pagina 0");
  await page.getByText("1–10 of 10").waitFor();
  await page.getByLabel("Search").fill("TEST");
  await page.getByText("1–50 of 55").waitFor();
});
