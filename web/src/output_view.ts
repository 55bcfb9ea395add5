// The live output beside the editor: the engine's texts for the definition as it stands, and the
// controls that try it with a fixed day and parameter values.

import { ApiError, Parameter, Rendered, Statement } from "./api";
import { h } from "./dom";

export interface TryOptions {
  date: string;
  params: Map<string, string>;
}

export class OutputView {
  readonly element: HTMLElement;
  readonly options: TryOptions = { date: "", params: new Map() };
  private readonly banner = h("div", { class: "banner error", role: "alert", hidden: true });
  // Not a live region: it changes on every keystroke.
  private readonly state = h("p", { class: "render-state" });
  private readonly sql = h("pre", { id: "out-sql", class: "code", tabindex: 0, "aria-label": "SQL" });
  private readonly where = h("pre", { id: "out-where", class: "code", tabindex: 0, "aria-label": "WHERE" });
  private readonly sqlite = h("div", { id: "out-sqlite" });
  private readonly postgresql = h("div", { id: "out-postgresql" });
  private readonly fullText = h("pre", { id: "out-fulltext", class: "code", tabindex: 0, "aria-label": "Full-text request" });
  private readonly descriptions = h("ol", { id: "out-descriptions", class: "descriptions" });
  private readonly paramsBox = h("div", { class: "params" });
  private paramNames: string[] = [];

  constructor(private readonly changed: () => void) {
    const dateId = "try-date";
    const date = h("input", { type: "date", id: dateId, "aria-describedby": "try-date-note" });
    date.addEventListener("input", () => {
      this.options.date = date.value;
      this.changed();
    });
    const section = (title: string, body: HTMLElement, open = true) =>
      h("details", { class: "out", open }, h("summary", {}, title), body);
    this.element = h(
      "aside",
      { class: "output", "aria-label": "Output" },
      h(
        "div",
        { class: "try" },
        h("label", { for: dateId }, "Today is"),
        date,
        h("span", { id: "try-date-note", class: "note" }, "empty: the real date"),
        this.paramsBox,
      ),
      this.state,
      this.banner,
      section("SQL", this.sql),
      section("WHERE alone", this.where, false),
      section("SQLite statement", this.sqlite),
      section("PostgreSQL statement", this.postgresql, false),
      section("Full-text request", this.fullText, false),
      section("Conditions", this.descriptions),
    );
  }

  /** Offers one values box per parameter name of the definition. */
  setParamNames(names: string[]): void {
    if (names.join("\n") === this.paramNames.join("\n")) return;
    this.paramNames = names;
    this.paramsBox.replaceChildren(
      ...names.map((name, index) => {
        const id = `try-param-${index + 1}`;
        const input = h("input", {
          type: "text",
          id,
          value: this.options.params.get(name) ?? "",
          placeholder: "value, value, ...",
        });
        input.addEventListener("input", () => {
          this.options.params.set(name, input.value);
          this.changed();
        });
        return h("span", { class: "param" }, h("label", { for: id }, `Parameter ${name}`), input);
      }),
    );
  }

  pending(): void {
    this.state.textContent = "Updating…";
  }

  show(rendered: Rendered): void {
    this.banner.hidden = true;
    this.element.classList.remove("stale");
    this.state.textContent = "";
    setText(this.sql, rendered.sql);
    setText(this.where, rendered.where);
    this.statement(this.sqlite, rendered.statements?.sqlite);
    this.statement(this.postgresql, rendered.statements?.postgresql);
    setText(this.fullText, rendered.fullText);
    const items = this.descriptions.children;
    rendered.descriptions.forEach((d, i) => {
      const item = items[i] as HTMLElement | undefined;
      if (item) {
        if (item.textContent !== d.text) item.textContent = d.text;
      } else {
        this.descriptions.appendChild(h("li", {}, d.text));
      }
    });
    while (this.descriptions.children.length > rendered.descriptions.length) {
      this.descriptions.lastElementChild?.remove();
    }
  }

  /** The definition did not render: the engine's error, kept beside the last good output. */
  failed(error: ApiError, onCondition: boolean): void {
    this.state.textContent = "";
    this.banner.hidden = false;
    this.element.classList.add("stale");
    this.banner.replaceChildren(
      h("strong", {}, "The engine cannot use this definition as it stands:"),
      h("span", { class: "reason" }, error.error.description),
      h("span", { class: "note" }, `${error.error.source}, ${error.error.hex ?? error.error.number}`),
      h(
        "span",
        {},
        onCondition
          ? "The condition it comes from is marked in the editor. Below: the last output that rendered."
          : "Below: the last output that rendered.",
      ),
    );
  }

  // Rows are updated in place: a keystroke changes one parameter of possibly thousands.
  private statement(box: HTMLElement, statement: Statement | undefined): void {
    if (!statement) {
      box.replaceChildren();
      return;
    }
    let pre = box.querySelector("pre");
    let body = box.querySelector("tbody");
    let none = box.querySelector("p.note") as HTMLElement | null;
    if (!pre || !body || !none) {
      pre = h("pre", { class: "code", tabindex: 0 });
      body = h("tbody", {});
      none = h("p", { class: "note" }, "No parameters.");
      const head = h("tr", {}, h("th", { scope: "col" }, "Parameter"), h("th", { scope: "col" }, "Type"), h("th", { scope: "col" }, "Value"));
      box.replaceChildren(pre, h("table", { class: "parameters" }, h("thead", {}, head), body), none);
    }
    setText(pre, statement.sql);
    const rows = body.rows;
    statement.parameters.forEach((p: Parameter, i: number) => {
      const cells = [p.placeholder ?? String(i + 1), p.type, valueText(p.value)];
      const row = rows[i];
      if (!row) {
        body.appendChild(h("tr", {}, cells.map((text) => h("td", {}, text))));
        return;
      }
      cells.forEach((text, c) => setText(row.cells[c], text));
    });
    while (rows.length > statement.parameters.length) body.lastElementChild?.remove();
    (body.parentElement as HTMLElement).hidden = statement.parameters.length === 0;
    none.hidden = statement.parameters.length > 0;
  }
}

function setText(node: HTMLElement, text: string): void {
  if (node.textContent !== text) node.textContent = text;
}

function valueText(value: unknown): string {
  return typeof value === "string" ? value : JSON.stringify(value);
}
