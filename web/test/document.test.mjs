// What the page does not touch comes back byte for byte: each sample is stored, opened, changed in
// one place and saved, and the stored text must equal the original with only that place changed.
import assert from "node:assert/strict";
import { test } from "node:test";
import { createQuery, getRecord, settled, useServerAndBrowser } from "./harness.mjs";

const env = useServerAndBrowser();

/** A string as the saved document writes it: CDATA when it holds "<" or ">", else escaped. */
function written(text) {
  if (/[<>]/.test(text)) return `<![CDATA[${text}]]>`;
  return text.replace(/&/g, "&amp;");
}

/** The text with the first element `tag` at or after `from` holding `content` instead. */
function replaceElement(text, from, tag, content) {
  const start = text.indexOf(`<${tag}`, from);
  assert.ok(start >= 0, `no <${tag}> after ${from}`);
  const empty = text.startsWith(`<${tag}/>`, start);
  const end = empty ? start + tag.length + 3 : text.indexOf(`</${tag}>`, start) + tag.length + 3;
  return text.slice(0, start) + (content === "" ? `<${tag}/>` : `<${tag}>${content}</${tag}>`) + text.slice(end);
}

async function saveAndRead(page, id) {
  await page.getByRole("button", { name: "Save" }).click();
  await page.locator("#save-state", { hasText: "All changes saved" }).waitFor();
  return String((await getRecord(env.url, id)).QueryDef);
}

test("one changed value or setting per sample; every other byte is kept", async () => {
  const samples = (await (await fetch(`${env.url}/api/samples`)).json()).samples;
  assert.ok(samples.length >= 3);
  for (const [index, { name, definition }] of samples.entries()) {
    const id = `exact-${index}`;
    const original = String((await createQuery(env.url, id, name, definition)).QueryDef);
    const page = await env.context.newPage();
    await page.goto(`${env.url}/#/q/${id}`);
    await settled(page);

    // A field setting: the first field's visibility.
    const visible = page.locator("section.field").first().getByLabel("Visible");
    await page.locator("section.field").first().locator("summary").click();
    const wasVisible = await visible.isChecked();
    await visible.setChecked(!wasVisible);
    const firstField = page.locator("section.field").first();
    const fieldName = (await firstField.locator("h3 .dbname").textContent()).trim();
    const fieldAt = original.indexOf(`<DBName>${fieldName}</DBName><UseInStatement>`);
    let expected = replaceElement(original, fieldAt, "IsVisible", wasVisible ? "False" : "True");
    let stored = await saveAndRead(page, id);
    assert.equal(stored, expected, `${name}: visibility of ${fieldName}`);

    // A condition's value, when the sample has a plain text value.
    const box = page.locator("input.value-text").first();
    if ((await box.count()) > 0) {
      const conditionId = await box.locator("xpath=ancestor::li[1]").getAttribute("data-condition-id");
      const numeric = (await box.getAttribute("inputmode")) === "decimal";
      const value = numeric ? "42" : "nou & <bun>";
      await box.fill(value);
      expected = replaceElement(stored, stored.indexOf(`<ConditionID>${conditionId}</ConditionID>`), "Value", written(value));
      stored = await saveAndRead(page, id);
      assert.equal(stored, expected, `${name}: value of condition ${conditionId}`);
    }
    await page.close();
  }
});
