// The query-by-example page: the catalogue, and the editor of one saved query with its live output.

import {
  ApiError,
  clauseCatalogue,
  ConditionError,
  getQuery,
  putQuery,
  render,
  RenderedField,
  setTokenPrompt,
} from "./api";
import { CatalogueView, choiceDialog } from "./catalogue_view";
import { announce, h } from "./dom";
import { EditorView } from "./editor_view";
import { OutputView } from "./output_view";
import { Session } from "./session";

const kDebounce = 40;

interface Timings {
  lastRefreshMs: number;
  lastServerMs: number;
  refreshes: number;
}

declare global {
  interface Window {
    brixTimings: Timings;
    brixDefinition: () => string;
  }
}

class App {
  private session: Session | null = null;
  private fields: RenderedField[] = [];
  private fieldsKey = "";
  private renderTimer = 0;
  private renderSeq = 0;
  private renderAbort: AbortController | null = null;
  private lastEditAt = 0;
  private saving = false;
  private ignoreHash = false;
  private readonly clauseNames = new Map<number, string>();

  private readonly main = document.getElementById("main") as HTMLElement;
  private readonly banner = document.getElementById("page-error") as HTMLElement;
  private readonly title = document.getElementById("query-title") as HTMLElement;
  private readonly saveButton = document.getElementById("save") as HTMLButtonElement;
  private readonly undoButton = document.getElementById("undo") as HTMLButtonElement;
  private readonly saveState = document.getElementById("save-state") as HTMLElement;
  private readonly dialog = document.getElementById("dialog") as HTMLDialogElement;

  private readonly catalogue = new CatalogueView({
    open: (id) => this.navigate(`#/q/${encodeURIComponent(id)}`),
    showError: (error) => this.showError(error),
  });
  private readonly output = new OutputView(() => this.scheduleRender());
  private readonly editor = new EditorView(
    () => this.session as Session,
    {
      edit: (change, group) => this.edit(change, group),
      editRows: (change) => this.edit(change),
    },
    this.clauseNames,
  );
  private readonly editorLayout = h(
    "div",
    { class: "workspace" },
    h("section", { class: "query", "aria-label": "Conditions and fields" }, this.editor.element),
    this.output.element,
  );

  constructor() {
    // For the browser tests and for trying the page from the console.
    window.brixTimings = { lastRefreshMs: 0, lastServerMs: 0, refreshes: 0 };
    window.brixDefinition = () => this.session?.definition.text() ?? "";
    this.saveButton.addEventListener("click", () => void this.save());
    this.undoButton.addEventListener("click", () => this.undo());
    window.addEventListener("hashchange", () => void this.route());
    window.addEventListener("beforeunload", (event) => {
      if (!this.session?.dirty) return;
      event.preventDefault();
      event.returnValue = "";
    });
    document.addEventListener("keydown", (event) => this.shortcut(event));
    setTokenPrompt(() => this.askToken());
  }

  private askToken(): Promise<string | null> {
    return new Promise((resolve) => {
      const input = h("input", { type: "password", id: "token", autocomplete: "off" });
      const form = h(
        "form",
        { method: "dialog" },
        h("h2", { id: "dialog-title" }, "This server needs its access token to save"),
        h("p", {}, h("label", { for: "token" }, "Token"), " ", input),
        h("div", { class: "dialog-buttons" }, h("button", { type: "submit", class: "primary" }, "Use token"), h("button", { type: "button", value: "" }, "Cancel")),
      );
      const opener = document.activeElement as HTMLElement | null;
      const listening = new AbortController();
      const done = (token: string | null) => {
        listening.abort();
        this.dialog.close();
        opener?.focus();
        resolve(token);
      };
      form.addEventListener("submit", (event) => {
        event.preventDefault();
        done(input.value || null);
      });
      form.querySelector("button[type=button]")?.addEventListener("click", () => done(null));
      this.dialog.replaceChildren(form);
      this.dialog.addEventListener("cancel", () => done(null), { signal: listening.signal });
      this.dialog.showModal();
      input.focus();
    });
  }

  async start(): Promise<void> {
    try {
      for (const clause of await clauseCatalogue()) {
        this.clauseNames.set(clause.number, clause.description || clause.name);
      }
    } catch (error) {
      this.showError(error);
    }
    await this.route();
  }

  private shortcut(event: KeyboardEvent): void {
    if (!(event.ctrlKey || event.metaKey) || event.altKey) return;
    const key = event.key.toLowerCase();
    if (key === "s" && this.session) {
      event.preventDefault();
      void this.save();
    } else if (key === "z" && !event.shiftKey && this.session) {
      // Inside a text box the browser's own undo edits the box; elsewhere it takes back an edit.
      const target = event.target as HTMLElement;
      const typing = target instanceof HTMLInputElement && ["text", "search", "number"].includes(target.type);
      if (!typing) {
        event.preventDefault();
        this.undo();
      }
    }
  }

  private navigate(hash: string): void {
    if (location.hash === hash) void this.route();
    else location.hash = hash;
  }

  private async route(): Promise<void> {
    if (this.ignoreHash) {
      this.ignoreHash = false;
      return;
    }
    const match = /^#\/q\/(.+)$/.exec(location.hash);
    const id = match ? decodeURIComponent(match[1]) : null;
    if (this.session && this.session.id !== id && this.session.dirty && !(await this.leaveUnsaved())) {
      this.ignoreHash = true;
      location.hash = `#/q/${encodeURIComponent(this.session.id)}`;
      return;
    }
    this.clearError();
    if (id) await this.open(id);
    else this.showCatalogue();
  }

  private async leaveUnsaved(): Promise<boolean> {
    const choice = await choiceDialog(
      this.dialog,
      "Leave without saving?",
      "This query has changes that are not saved. They are lost if you leave.",
      [{ value: "leave", label: "Leave without saving", danger: true }],
      null,
    );
    return choice === "leave";
  }

  private showCatalogue(): void {
    this.session = null;
    this.title.textContent = "Saved queries";
    document.title = "brixq — saved queries";
    this.updateButtons();
    this.main.replaceChildren(this.catalogue.element);
    void this.catalogue.load().then(() => this.catalogue.focus());
  }

  private async open(id: string): Promise<void> {
    try {
      const { record, etag } = await getQuery(id);
      this.session = new Session(record, etag);
    } catch (error) {
      this.session = null;
      this.showCatalogue();
      this.showError(error);
      return;
    }
    this.fields = [];
    this.fieldsKey = "";
    const name = String(this.session.record["Name"] || id);
    this.title.textContent = name;
    document.title = `brixq — ${name}`;
    this.editor.element.replaceChildren(h("p", { class: "note" }, "Loading…"));
    this.output.setParamNames(this.session.definition.parameterNames());
    this.main.replaceChildren(this.editorLayout);
    this.updateButtons();
    await this.runRender();
    (this.editor.element.querySelector("select, input, button") as HTMLElement | null)?.focus();
  }

  private edit(change: () => void, group = ""): void {
    const session = this.session;
    if (!session) return;
    session.beforeEdit(group);
    change();
    this.lastEditAt = performance.now();
    this.updateButtons();
    this.scheduleRender();
  }

  private undo(): void {
    if (!this.session?.undo()) return;
    this.editor.draw(this.fields);
    this.updateButtons();
    this.scheduleRender();
    announce("Last edit undone.");
  }

  private scheduleRender(): void {
    clearTimeout(this.renderTimer);
    this.output.pending();
    this.renderTimer = window.setTimeout(() => void this.runRender(), kDebounce);
  }

  private async runRender(): Promise<void> {
    const session = this.session;
    if (!session) return;
    const seq = ++this.renderSeq;
    const editAt = this.lastEditAt;
    this.renderAbort?.abort();
    const abort = new AbortController();
    this.renderAbort = abort;
    const definition = session.definition.text();
    try {
      const rendered = await render({ definition, ...this.tryOptions() }, abort.signal);
      if (seq !== this.renderSeq || session !== this.session) return;
      this.useFields(rendered.fields);
      this.output.show(rendered);
      this.editor.element.classList.remove("stale");
      this.editor.showDescriptions(rendered.descriptions);
      const problems: ConditionError[] = (rendered.problems ?? [])
        .filter((p) => p.conditionId !== undefined)
        .map((p) => ({ conditionId: p.conditionId as number, number: 0, source: p.path ?? "", description: p.message }));
      this.editor.showErrors(problems);
    } catch (error) {
      if (seq !== this.renderSeq || session !== this.session) return;
      if (!(error instanceof ApiError)) return; // aborted by a newer request
      if (this.fields.length === 0) await this.renderStructure(session);
      this.output.failed(error, error.conditionErrors.length > 0);
      this.editor.element.classList.add("stale");
      this.editor.showErrors(error.conditionErrors);
    }
    // Measured when the next frame starts, once the new output has been laid out.
    requestAnimationFrame(() => {
      if (editAt > 0) window.brixTimings.lastRefreshMs = performance.now() - editAt;
      window.brixTimings.lastServerMs = lastRenderRequestMs();
      window.brixTimings.refreshes += 1;
      document.body.dataset.rendered = String(seq);
    });
  }

  // The fields and their clause lists do not depend on the conditions, so a definition that does
  // not render still gets its editor from the same definition without them.
  private async renderStructure(session: Session): Promise<void> {
    try {
      const rendered = await render({ definition: session.definition.withoutConditions(), parts: ["fields"] });
      if (session === this.session) this.useFields(rendered.fields);
    } catch (error) {
      this.showError(error);
    }
  }

  private useFields(fields: RenderedField[]): void {
    const key = JSON.stringify(fields);
    if (key === this.fieldsKey) return;
    this.fields = fields;
    this.fieldsKey = key;
    this.editor.draw(fields);
  }

  private tryOptions(): { date?: string; params?: { name: string; values: string[] }[] } {
    const options: { date?: string; params?: { name: string; values: string[] }[] } = {};
    if (this.output.options.date) options.date = this.output.options.date;
    const params = [...this.output.options.params]
      .map(([name, text]) => ({ name, values: text.split(",").map((v) => v.trim()).filter((v) => v !== "") }))
      .filter((p) => p.values.length > 0);
    if (params.length) options.params = params;
    return options;
  }

  private async save(): Promise<void> {
    const session = this.session;
    if (!session || this.saving || !session.editable) return;
    this.saving = true;
    this.saveState.textContent = "Saving…";
    const sent = session.recordToSave();
    try {
      const stored = await putQuery(sent, session.etag);
      this.afterSave(session, sent, stored.record, stored.etag);
    } catch (error) {
      if (error instanceof ApiError && [409, 412, 428].includes(error.status)) await this.conflict(session);
      else this.showError(error, "Not saved: ");
    } finally {
      this.saving = false;
      this.updateButtons();
    }
  }

  private afterSave(session: Session, sent: Record<string, unknown>, record: Record<string, string | number | boolean>, etag: string): void {
    if (session !== this.session) return;
    if (session.definition.text() === sent["QueryDef"]) {
      session.stored(record, etag);
      this.editor.draw(this.fields);
    } else {
      // Edits made while the save was under way stay, still unsaved, on top of the new version.
      session.etag = etag;
      session.record = { ...record, QueryDef: session.recordToSave()["QueryDef"] };
    }
    this.clearError();
    announce("Saved.");
    this.scheduleRender();
  }

  private async conflict(session: Session): Promise<void> {
    const choice = await choiceDialog(
      this.dialog,
      "Someone else saved this query first",
      "The saved query changed after you opened it. Keep your version (it replaces theirs) or load theirs (your changes are lost).",
      [
        { value: "mine", label: "Keep my version" },
        { value: "theirs", label: "Load their version", danger: true },
      ],
      this.saveButton,
    );
    if (!choice) {
      this.saveState.textContent = "Not saved: someone else saved first.";
      return;
    }
    try {
      const latest = await getQuery(session.id);
      if (choice === "theirs") {
        session.stored(latest.record, latest.etag);
        this.editor.draw(this.fields);
        this.scheduleRender();
        announce("Their version is loaded.");
      } else {
        const sent = session.recordToSave();
        const stored = await putQuery(sent, latest.etag);
        this.afterSave(session, sent, stored.record, stored.etag);
      }
    } catch (error) {
      this.showError(error, "Not saved: ");
    }
  }

  private updateButtons(): void {
    const session = this.session;
    this.saveButton.hidden = this.undoButton.hidden = !session;
    this.saveButton.disabled = !session || !session.editable || this.saving;
    this.undoButton.disabled = !session?.canUndo();
    if (!session) this.saveState.textContent = "";
    else if (!session.editable) this.saveState.textContent = "Read only";
    else if (!this.saving) this.saveState.textContent = session.dirty ? "Unsaved changes" : "All changes saved";
  }

  private showError(error: unknown, prefix = ""): void {
    const text = error instanceof ApiError
      ? `${error.error.description}${error.error.number ? ` (${error.error.source}, ${error.error.hex ?? error.error.number})` : ""}`
      : String(error);
    this.banner.textContent = prefix + text;
    this.banner.hidden = false;
  }

  private clearError(): void {
    this.banner.hidden = true;
    this.banner.textContent = "";
  }
}


/** How long the last render request took from sending to the answer's last byte. */
function lastRenderRequestMs(): number {
  const entries = performance.getEntriesByType("resource") as PerformanceResourceTiming[];
  const last = entries.filter((e) => e.name.endsWith("/api/render")).pop();
  performance.clearResourceTimings();
  return last ? last.responseEnd - last.requestStart : 0;
}

void new App().start();
