// The catalogue: saved queries, a page at a time, searched by name or category; new queries from
// the bundled samples; deletion after a confirmation.

import { ApiError, deleteQuery, listQueries, ListItem, putQuery, QueryRecord, samples } from "./api";
import { announce, h } from "./dom";

const kPageSize = 50;

export interface CatalogueHost {
  open(id: string): void;
  showError(error: unknown): void;
}

export class CatalogueView {
  readonly element: HTMLElement;
  private readonly search = h("input", { type: "search", id: "catalogue-search", placeholder: "Name or category" });
  private readonly body = h("tbody", {});
  private readonly position = h("span", { class: "position", "aria-live": "polite" });
  private readonly previous = h("button", { type: "button" }, "Previous");
  private readonly next = h("button", { type: "button" }, "Next");
  private readonly sample = h("select", { id: "sample-name" });
  private readonly newName = h("input", { type: "text", id: "new-name", required: true });
  private readonly confirmDialog = h("dialog", { class: "confirm", "aria-labelledby": "confirm-title" });
  private offset = 0;
  private total = 0;
  private searchTimer = 0;
  private loadSeq = 0;
  private sampleTexts = new Map<string, string>();

  constructor(private readonly host: CatalogueHost) {
    this.search.addEventListener("input", () => {
      clearTimeout(this.searchTimer);
      this.searchTimer = window.setTimeout(() => {
        this.offset = 0;
        void this.load();
      }, 200);
    });
    this.previous.addEventListener("click", () => this.page(-1));
    this.next.addEventListener("click", () => this.page(1));
    const create = h("form", { class: "create", "aria-labelledby": "create-title" });
    create.addEventListener("submit", (event) => {
      event.preventDefault();
      void this.create();
    });
    create.append(
      h("h2", { id: "create-title" }, "New query from a sample"),
      h("label", { for: "sample-name" }, "Sample"),
      this.sample,
      h("label", { for: "new-name" }, "Name"),
      this.newName,
      h("button", { type: "submit" }, "Create"),
    );
    this.element = h(
      "section",
      { class: "catalogue", "aria-labelledby": "catalogue-title" },
      h("h2", { id: "catalogue-title" }, "Saved queries"),
      h("div", { class: "search" }, h("label", { for: "catalogue-search" }, "Search"), this.search),
      h(
        "table",
        { class: "queries" },
        h("caption", { class: "visually-hidden" }, "Saved queries"),
        h(
          "thead",
          {},
          h(
            "tr",
            {},
            h("th", { scope: "col" }, "Name"),
            h("th", { scope: "col" }, "Category"),
            h("th", { scope: "col" }, "Modified"),
            h("th", { scope: "col" }, h("span", { class: "visually-hidden" }, "Actions")),
          ),
        ),
        this.body,
      ),
      h("nav", { class: "pager", "aria-label": "Pages" }, this.previous, this.position, this.next),
      create,
      this.confirmDialog,
    );
  }

  async load(): Promise<void> {
    const seq = ++this.loadSeq;
    try {
      const page = await listQueries(this.search.value, this.offset, kPageSize);
      if (seq !== this.loadSeq) return;
      this.total = page.total;
      this.body.replaceChildren(...page.items.map((item) => this.row(item)));
      if (page.items.length === 0) {
        this.body.append(h("tr", {}, h("td", { colspan: 4, class: "note" }, this.search.value ? "No saved query matches." : "No saved queries yet.")));
      }
      const last = Math.min(this.total, this.offset + page.items.length);
      this.position.textContent = this.total ? `${this.offset + 1}–${last} of ${this.total}` : "";
      this.previous.disabled = this.offset === 0;
      this.next.disabled = last >= this.total;
    } catch (error) {
      this.host.showError(error);
    }
    if (this.sampleTexts.size === 0) await this.loadSamples();
  }

  focus(): void {
    this.search.focus();
  }

  private page(step: number): void {
    this.offset = Math.max(0, this.offset + step * kPageSize);
    void this.load();
  }

  private row(item: ListItem): HTMLElement {
    const open = h("a", { href: `#/q/${encodeURIComponent(item.ID)}` }, item.Name || item.ID);
    const remove = h("button", { type: "button", class: "danger" }, "Delete");
    remove.setAttribute("aria-label", `Delete ${item.Name || item.ID}`);
    remove.disabled = !item.IsEditable;
    remove.addEventListener("click", () => void this.confirmDelete(item, remove));
    return h(
      "tr",
      {},
      h("td", {}, open, item.Description ? h("div", { class: "note" }, item.Description) : null),
      h("td", {}, item.Category),
      h("td", {}, stamp(item.ModificatData, item.ModificatOra)),
      h("td", {}, remove),
    );
  }

  private async confirmDelete(item: ListItem, opener: HTMLElement): Promise<void> {
    const name = item.Name || item.ID;
    const yes = await confirmDialog(this.confirmDialog, `Delete “${name}”?`, "The saved query is removed from the catalogue. This cannot be undone.", "Delete", opener);
    if (!yes) return;
    try {
      await deleteQuery(item.ID);
      announce(`Deleted ${name}.`);
      if (this.offset >= this.total - 1) this.offset = Math.max(0, this.offset - kPageSize);
      await this.load();
      this.search.focus();
    } catch (error) {
      this.host.showError(error);
    }
  }

  private async loadSamples(): Promise<void> {
    try {
      const list = await samples();
      this.sampleTexts = new Map(list.map((s) => [s.name, s.definition]));
      this.sample.replaceChildren(...list.map((s) => h("option", { value: s.name }, s.name)));
    } catch (error) {
      this.host.showError(error);
    }
  }

  private async create(): Promise<void> {
    const definition = this.sampleTexts.get(this.sample.value);
    const name = this.newName.value.trim();
    if (!definition || !name) return;
    const record = newRecord(name, definition);
    try {
      const stored = await putQuery(record, null);
      this.newName.value = "";
      this.host.open(String(stored.record["ID"]));
    } catch (error) {
      this.host.showError(error instanceof ApiError ? error : new Error(String(error)));
    }
  }
}

const kIntegerKeys = ["CreatData", "ModificatData", "CodSectiune", "Cod_DocStart", "Cod_DocCrt", "Cod_DocEnd"];
const kBooleanKeys = ["IsEditable", "UseGrupari", "UseIerarhic", "UseTematica", "UseTipAct", "UseTipPub"];
const kTextKeys = [
  "ID", "Name", "Category", "Description", "UsedFor", "QueryDef", "AccessRights", "CreatDe", "CreatOra",
  "ModificatDe", "ModificatOra", "G6", "G1", "G1D", "G2", "G2D", "G3", "G3D", "G4", "G4D", "G5", "G5D",
  "CssFile", "RpxDesign",
];

/** A whole record for a new query: every key present, the stamps left to the server. */
export function newRecord(name: string, definition: string): QueryRecord {
  const record: QueryRecord = {};
  for (const key of kTextKeys) record[key] = "";
  for (const key of kIntegerKeys) record[key] = 0;
  for (const key of kBooleanKeys) record[key] = false;
  const slug = name.normalize("NFD").replace(/[^A-Za-z0-9._-]+/g, "-").replace(/^-+|-+$/g, "").slice(0, 80);
  record["ID"] = `${slug || "query"}-${Date.now().toString(36)}`;
  record["Name"] = name;
  record["QueryDef"] = definition;
  record["IsEditable"] = true;
  return record;
}

/** A day number (days since 30 December 1899) and a time as one readable stamp. */
function stamp(day: number, time: string): string {
  if (!day) return time;
  const date = new Date(Date.UTC(1899, 11, 30) + day * 86400000);
  return `${date.toISOString().slice(0, 10)} ${time}`.trim();
}

/** A modal question with a default of "no"; resolves true when the user confirms. */
export function confirmDialog(
  dialog: HTMLDialogElement,
  title: string,
  text: string,
  yesLabel: string,
  returnFocus: HTMLElement | null,
): Promise<boolean> {
  return choiceDialog(dialog, title, text, [{ value: "yes", label: yesLabel, danger: true }], returnFocus).then(
    (choice) => choice === "yes",
  );
}

export interface Choice {
  value: string;
  label: string;
  danger?: boolean;
}

/** A modal with a title, a text and buttons; Escape or Cancel resolve to "". */
export function choiceDialog(
  dialog: HTMLDialogElement,
  title: string,
  text: string,
  choices: Choice[],
  returnFocus: HTMLElement | null,
): Promise<string> {
  return new Promise((resolve) => {
    const cancel = h("button", { type: "button", value: "" }, "Cancel");
    const buttons = choices.map((c) => h("button", { type: "button", value: c.value, class: c.danger ? "danger" : "" }, c.label));
    dialog.replaceChildren(
      h("h2", { id: dialog.getAttribute("aria-labelledby") ?? "" }, title),
      h("p", {}, text),
      h("div", { class: "dialog-buttons" }, ...buttons, cancel),
    );
    const listening = new AbortController();
    const finish = (value: string) => {
      listening.abort();
      dialog.close();
      returnFocus?.focus();
      resolve(value);
    };
    for (const button of [...buttons, cancel]) button.addEventListener("click", () => finish(button.value));
    dialog.addEventListener("cancel", (event) => {
      event.preventDefault();
      finish("");
    }, { signal: listening.signal });
    dialog.showModal();
    cancel.focus();
  });
}
