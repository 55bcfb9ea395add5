// The query editor: tables and their fields in the engine's UI order, each field's settings and its
// conditions as rows with a clause picker and the value inputs the clause needs.

import { Clause, ConditionError, RenderedField } from "./api";
import { ConditionRef, Definition, FieldRef, readRow, readVariant, setRow } from "./definition";
import { h, uid } from "./dom";
import { Session } from "./session";
import { countUnit, dayText, isoDay, readList, takesDate, valueKind, writeList } from "./values";

const kRowsShown = 200;

export interface EditorHost {
  /** A change was made; `group` joins keystrokes into one undo step. */
  edit(change: () => void, group?: string): void;
  /** A change that alters the rows shown (add, remove, move, clause): the field is redrawn. */
  editRows(change: () => void): void;
}

interface FieldEntry {
  rendered: RenderedField;
  ref: FieldRef;
}

export class EditorView {
  readonly element = h("div", { class: "editor" });
  private descriptionNodes = new Map<number, HTMLElement>();
  private errorNodes = new Map<number, HTMLElement>();
  private fieldLists = new Map<Element, HTMLOListElement>();
  private fieldKeys = new Map<Element, string>();
  private shownRows = new Map<Element, number>();
  private pickerPrototypes = new Map<string, HTMLSelectElement>();

  constructor(
    private readonly session: () => Session,
    private readonly host: EditorHost,
    private readonly clauseNames: Map<number, string>,
  ) {}

  /** Draws the whole editor for the given field list (tables in order, fields in UI order). */
  draw(fields: RenderedField[]): void {
    const focused = document.activeElement?.id ?? "";
    const definition = this.session().definition;
    this.descriptionNodes.clear();
    this.errorNodes.clear();
    this.fieldLists.clear();
    this.fieldKeys.clear();
    this.shownRows.clear();
    const sections: HTMLElement[] = [];
    let current: { name: string; list: HTMLElement } | null = null;
    for (const rendered of fields) {
      const ref = definition.findField(rendered.table, rendered.field);
      if (!ref) continue;
      if (!current || current.name !== rendered.table) {
        current = { name: rendered.table, list: h("div", { class: "fields" }) };
        sections.push(this.tableSection(ref, current.list));
      }
      current.list.appendChild(this.fieldSection({ rendered, ref }));
    }
    this.element.replaceChildren(...sections);
    if (focused) document.getElementById(focused)?.focus();
  }

  /** Redraws the condition rows of one field, keeping the focus on the same control. */
  redrawField(field: FieldRef, rendered: RenderedField, focusId = ""): void {
    const list = this.fieldLists.get(field.element);
    if (!list) return;
    const focused = focusId || document.activeElement?.id || "";
    list.replaceChildren(...this.conditionRows({ rendered, ref: field }));
    if (focused) document.getElementById(focused)?.focus();
  }

  showDescriptions(descriptions: { id: number; text: string }[]): void {
    const seen = new Set<number>();
    for (const { id, text } of descriptions) {
      if (seen.has(id)) continue; // the engine describes the first condition with an identity
      seen.add(id);
      const node = this.descriptionNodes.get(id);
      if (node && node.textContent !== text) node.textContent = text;
    }
  }

  showErrors(errors: ConditionError[]): void {
    const byId = new Map<number, ConditionError>();
    for (const error of errors) if (!byId.has(error.conditionId)) byId.set(error.conditionId, error);
    for (const [id, node] of this.errorNodes) {
      const error = byId.get(id);
      const text = error ? error.description : "";
      if (node.dataset.text === text && node.hidden === !error) continue;
      if (node.dataset.text !== text) {
        node.dataset.text = text;
        node.replaceChildren(h("span", { class: "lead" }, "This condition cannot be used: "), h("span", { class: "reason" }, text));
      }
      node.hidden = !error;
      const row = node.closest(".condition");
      row?.classList.toggle("has-error", Boolean(error));
      row?.querySelectorAll("input, select").forEach((control) => {
        if (error) control.setAttribute("aria-invalid", "true");
        else control.removeAttribute("aria-invalid");
      });
    }
  }

  private tableSection(field: FieldRef, list: HTMLElement): HTMLElement {
    const name = readRow(field.table.element, "DBName");
    const description = readRow(field.table.element, "Description");
    const headingId = uid("table");
    return h(
      "section",
      { class: "table", "aria-labelledby": headingId },
      h("h2", { id: headingId }, description || name, description ? h("span", { class: "dbname" }, ` ${name}`) : null),
      list,
    );
  }

  private fieldSection(entry: FieldEntry): HTMLElement {
    const { rendered, ref } = entry;
    const headingId = uid("field");
    const list = h("ol", { class: "conditions", "aria-label": `Conditions on ${rendered.caption}` });
    this.fieldLists.set(ref.element, list);
    list.append(...this.conditionRows(entry));
    const add = h("button", { type: "button", class: "add", id: `${this.fieldKey(ref)}-add` }, "Add condition");
    add.setAttribute("aria-label", `Add a condition on ${rendered.caption}`);
    add.disabled = !this.session().editable || rendered.clauses.length === 0;
    add.addEventListener("click", () => this.addCondition(entry));
    return h(
      "section",
      { class: rendered.visible ? "field" : "field hidden-field", "aria-labelledby": headingId },
      h(
        "div",
        { class: "field-head" },
        h("h3", { id: headingId }, rendered.caption || rendered.field, h("span", { class: "dbname" }, ` ${rendered.field}`)),
        add,
      ),
      this.settings(entry),
      list,
    );
  }

  private fieldKey(ref: FieldRef): string {
    const known = this.fieldKeys.get(ref.element);
    if (known) return known;
    const table = this.session().definition.tables().findIndex((t) => t.element === ref.table.element);
    const field = this.session().definition.fields(ref.table).findIndex((f) => f.element === ref.element);
    const key = `f${table + 1}-${field + 1}`;
    this.fieldKeys.set(ref.element, key);
    return key;
  }

  private settings(entry: FieldEntry): HTMLElement {
    const key = this.fieldKey(entry.ref);
    const element = entry.ref.element;
    const editable = this.session().editable;
    const check = (row: string, label: string) => {
      const id = `${key}-${row}`;
      const input = h("input", { type: "checkbox", id, checked: readRow(element, row) === "True" });
      input.disabled = !editable;
      input.addEventListener("change", () =>
        this.host.edit(() => setRow(element, row, input.checked ? "True" : "False")),
      );
      return h("span", { class: "setting" }, input, h("label", { for: id }, label));
    };
    const number = (row: string, label: string) => {
      const id = `${key}-${row}`;
      const input = h("input", { type: "number", id, value: readRow(element, row), min: 0, max: 32767, step: 1 });
      input.disabled = !editable;
      input.addEventListener("input", () => this.host.edit(() => setRow(element, row, input.value || "0"), id));
      return h("span", { class: "setting" }, h("label", { for: id }, label), input);
    };
    const sortId = `${key}-OrderByOrder`;
    const sort = h(
      "select",
      { id: sortId },
      [
        ["0", "None"],
        ["1", "Ascending"],
        ["-1", "Descending"],
      ].map(([value, text]) => h("option", { value }, text)),
    );
    const order = readRow(element, "OrderByOrder");
    if (!["0", "1", "-1"].includes(order)) sort.append(h("option", { value: order }, order));
    sort.value = order;
    sort.disabled = !editable;
    sort.addEventListener("change", () => this.host.edit(() => setRow(element, "OrderByOrder", sort.value)));
    return h(
      "details",
      { class: "settings" },
      h("summary", {}, "Field settings"),
      h(
        "div",
        { class: "setting-grid" },
        check("IsVisible", "Visible"),
        check("UseInStatement", "Use in statement"),
        h("span", { class: "setting" }, h("label", { for: sortId }, "Sort order"), sort),
        number("OrderByLevel", "Sort level"),
        number("AppearanceOrder", "Appearance order"),
      ),
    );
  }

  // A field with thousands of conditions shows them a few hundred at a time, so that opening it
  // stays quick; the output beside still covers them all.
  private conditionRows(entry: FieldEntry): HTMLElement[] {
    const conditions = this.session().definition.conditions(entry.ref);
    const shown = Math.min(conditions.length, this.shownRows.get(entry.ref.element) ?? kRowsShown);
    const rows = conditions
      .slice(0, shown)
      .map((condition, index) => this.conditionRow(entry, condition, index, conditions.length));
    if (shown < conditions.length) {
      const more = h("button", { type: "button", id: `${this.fieldKey(entry.ref)}-more` }, `Show ${Math.min(kRowsShown, conditions.length - shown)} more of ${conditions.length} conditions`);
      more.addEventListener("click", () => {
        this.shownRows.set(entry.ref.element, shown + kRowsShown);
        this.redrawField(entry.ref, entry.rendered, `${this.fieldKey(entry.ref)}-more`);
      });
      rows.push(h("li", { class: "more" }, more));
    }
    return rows;
  }

  /** Every row of the field is drawn from now on (after an addition at its end). */
  private showAllRows(field: FieldRef): void {
    this.shownRows.set(field.element, Number.MAX_SAFE_INTEGER);
  }

  private conditionRow(entry: FieldEntry, condition: ConditionRef, index: number, count: number): HTMLElement {
    const { rendered, ref } = entry;
    const element = condition.element;
    const id = Number(readRow(element, "ConditionID"));
    const base = `c${id}-${this.fieldKey(ref)}`;
    const editable = this.session().editable && readRow(element, "IsEditable") !== "False";
    const clause = Number(readRow(element, "Clause"));
    const descriptionId = `${base}-description`;
    const errorId = `${base}-error`;
    const described = `${descriptionId} ${errorId}`;

    const description = h("p", { class: "description", id: descriptionId });
    const error = h("p", { class: "error", id: errorId, role: "alert", hidden: true, "data-text": "" });
    this.descriptionNodes.set(id, description);
    this.errorNodes.set(id, error);

    const controls: HTMLElement[] = [];
    if (index > 0) controls.push(this.logicPicker(element, `${base}-logic`, editable, described));
    controls.push(this.clausePicker(entry, condition, `${base}-clause`, editable, described));
    const paramName = readRow(element, "ParamName");
    if (paramName !== "") {
      controls.push(h("span", { class: "param-note" }, `Values from the parameter ${paramName}`));
    } else {
      controls.push(...this.valueInputs(entry, element, clause, base, editable, described));
    }

    const button = (text: string, label: string, action: () => void, disabled: boolean, suffix: string) => {
      const b = h("button", { type: "button", class: "icon", id: `${base}-${suffix}`, title: label }, text);
      b.setAttribute("aria-label", `${label}: condition ${index + 1} on ${rendered.caption}`);
      b.disabled = disabled || !editable;
      b.addEventListener("click", action);
      return b;
    };
    const move = (step: number) => {
      this.host.editRows(() => this.session().definition.moveCondition(ref, condition, step));
      this.redrawField(ref, rendered, `${base}-${step < 0 ? "up" : "down"}`);
    };
    const row = h(
      "li",
      { class: "condition", "data-condition-id": id },
      h(
        "div",
        { class: "condition-controls", role: "group", "aria-label": `Condition ${index + 1} on ${rendered.caption}` },
        controls,
        h(
          "span",
          { class: "row-actions" },
          button("↑", "Move up", () => move(-1), index === 0, "up"),
          button("↓", "Move down", () => move(1), index === count - 1, "down"),
          button("✕", "Remove", () => this.removeCondition(entry, condition, index), false, "remove"),
        ),
      ),
      description,
      error,
    );
    row.addEventListener("keydown", (event) => {
      if (!event.altKey || (event.key !== "ArrowUp" && event.key !== "ArrowDown")) return;
      event.preventDefault();
      move(event.key === "ArrowUp" ? -1 : 1);
    });
    return row;
  }

  private logicPicker(element: Element, id: string, editable: boolean, described: string): HTMLElement {
    const logic = readRow(element, "WhereClauseLogic");
    const select = h(
      "select",
      { id, class: "logic", "aria-label": "Joins the previous condition with", "aria-describedby": described },
      h("option", { value: "1" }, "AND"),
      h("option", { value: "2" }, "OR"),
    );
    if (logic !== "1" && logic !== "2") select.append(h("option", { value: logic }, `(${logic})`));
    select.value = logic;
    select.disabled = !editable;
    select.addEventListener("change", () =>
      this.host.edit(() => setRow(element, "WhereClauseLogic", select.value)),
    );
    return select;
  }

  private clausePicker(
    entry: FieldEntry,
    condition: ConditionRef,
    id: string,
    editable: boolean,
    described: string,
  ): HTMLElement {
    const element = condition.element;
    const current = Number(readRow(element, "Clause"));
    const offered: Clause[] = [...entry.rendered.clauses];
    if (!offered.some((c) => c.number === current)) {
      // A clause the field no longer offers stays visible, so an untouched condition is kept.
      offered.push({ number: current, name: `(${current})` });
    }
    const select = this.clauseOptions(offered);
    select.id = id;
    select.setAttribute("aria-describedby", described);
    select.value = String(current);
    select.disabled = !editable;
    select.addEventListener("change", () => {
      const next = Number(select.value);
      this.host.editRows(() => changeClause(element, current, next));
      this.redrawField(entry.ref, entry.rendered, id);
    });
    return select;
  }

  /** The clause's Romanian text from the engine's catalogue; its identifier where there is none. */
  private clauseText(clause: Clause): string {
    return this.clauseNames.get(clause.number) || clause.description || clause.name;
  }

  // Rows of one field share their option list: a copy of a prepared picker is much cheaper than
  // building thousands of options one by one.
  private clauseOptions(offered: Clause[]): HTMLSelectElement {
    const key = offered.map((c) => c.number).join(",");
    let prototype = this.pickerPrototypes.get(key);
    if (!prototype) {
      prototype = h(
        "select",
        { class: "clause", "aria-label": "Clause" },
        offered.map((c) => h("option", { value: String(c.number) }, this.clauseText(c))),
      );
      this.pickerPrototypes.set(key, prototype);
    }
    return prototype.cloneNode(true) as HTMLSelectElement;
  }

  private valueInputs(
    entry: FieldEntry,
    element: Element,
    clause: number,
    base: string,
    editable: boolean,
    described: string,
  ): HTMLElement[] {
    const field = entry.ref.element;
    const showAs = Number(readRow(field, "ShowAsType"));
    const control = Number(readRow(field, "ControlType"));
    const date = takesDate(showAs, control, clause);
    const input = (row: string, label: string, suffix: string, type: "text" | "date" | "count") => {
      const id = `${base}-${suffix}`;
      const stored = readVariant(element, row) ?? "";
      const asDay = type === "date" ? isoDay(stored) : null;
      // A stored text that is not a plain day stays editable as text.
      const kind = type === "date" && (stored === "" || asDay !== null) ? "date" : type === "count" ? "number" : "text";
      const box = h("input", {
        id,
        type: kind,
        class: `value value-${kind}`,
        value: kind === "date" ? (asDay ?? "") : stored,
        "aria-label": label,
        "aria-describedby": described,
        inputmode: kind === "text" && (showAs === 5 || showAs === 12) ? "decimal" : undefined,
        min: kind === "number" ? 0 : undefined,
      });
      box.disabled = !editable;
      box.addEventListener("input", () => {
        const text = kind === "date" ? dayText(box.value) : box.value;
        this.host.edit(() => setRow(element, row, text), id);
      });
      return box;
    };
    switch (valueKind(clause)) {
      case "none":
        return [];
      case "range":
        return [
          input("Value", "From", "value", date ? "date" : "text"),
          h("span", { class: "between-and", "aria-hidden": "true" }, "and"),
          input("SecondaryValue", "To", "secondary", date ? "date" : "text"),
        ];
      case "count":
        return [input("Value", `Number of ${countUnit(clause)}`, "value", "count"), h("span", { class: "unit" }, countUnit(clause))];
      case "list":
        return [this.listEditor(element, base, editable, described, showAs === 5 || showAs === 12)];
      default:
        return [input("Value", "Value", "value", date ? "date" : "text")];
    }
  }

  private listEditor(element: Element, base: string, editable: boolean, described: string, numeric: boolean): HTMLElement {
    const stored = readVariant(element, "Value") ?? "";
    const items = readList(stored);
    if (items === null) {
      // Not a list the page can split: offered as the text it is.
      const id = `${base}-value`;
      const box = h("input", { id, type: "text", class: "value", value: stored, "aria-label": "List", "aria-describedby": described });
      box.disabled = !editable;
      box.addEventListener("input", () => this.host.edit(() => setRow(element, "Value", box.value), id));
      return box;
    }
    const list = h("span", { class: "list-editor", role: "group", "aria-label": "List items" });
    const boxes: HTMLInputElement[] = [];
    const write = (group: string) =>
      this.host.edit(() => setRow(element, "Value", writeList(boxes.map((b) => b.value), numeric)), group);
    const addBox = (value: string, focus: boolean) => {
      const index = boxes.length;
      const id = `${base}-item${index + 1}`;
      const box = h("input", { id, type: "text", class: "value list-item", value, "aria-label": `Item ${index + 1}`, "aria-describedby": described });
      box.disabled = !editable;
      box.addEventListener("input", () => write(id));
      box.addEventListener("keydown", (event) => {
        if (event.key === "Enter") {
          event.preventDefault();
          addBox("", true);
        }
      });
      boxes.push(box);
      list.insertBefore(box, add);
      if (focus) box.focus();
    };
    const add = h("button", { type: "button", class: "icon", id: `${base}-additem`, title: "Add an item" }, "+");
    add.setAttribute("aria-label", "Add a list item");
    add.disabled = !editable;
    add.addEventListener("click", () => addBox("", true));
    list.append(add);
    for (const item of items) addBox(item, false);
    if (items.length === 0) addBox("", false);
    return list;
  }

  private addCondition(entry: FieldEntry): void {
    const clause = entry.rendered.clauses[0]?.number ?? 3;
    let added: ConditionRef | null = null;
    this.host.editRows(() => {
      added = this.session().definition.addCondition(entry.ref, clause);
    });
    const id = added ? readRow((added as ConditionRef).element, "ConditionID") : "";
    this.showAllRows(entry.ref);
    this.redrawField(entry.ref, entry.rendered, `c${id}-${this.fieldKey(entry.ref)}-clause`);
  }

  private removeCondition(entry: FieldEntry, condition: ConditionRef, index: number): void {
    const definition: Definition = this.session().definition;
    this.host.editRows(() => definition.removeCondition(entry.ref, condition));
    const rest = definition.conditions(entry.ref);
    const next = rest[Math.min(index, rest.length - 1)];
    const focus = next
      ? `c${readRow(next.element, "ConditionID")}-${this.fieldKey(entry.ref)}-remove`
      : `${this.fieldKey(entry.ref)}-add`;
    this.redrawField(entry.ref, entry.rendered, focus);
  }
}

/** A new clause keeps the operands that still fit and empties the rest. */
function changeClause(element: Element, from: number, to: number): void {
  setRow(element, "Clause", String(to));
  const before = valueKind(from);
  const after = valueKind(to);
  const keepFirst = before === after || (before !== "none" && (before === "single" || before === "range") && (after === "single" || after === "range"));
  if (!keepFirst && (readVariant(element, "Value") ?? "") !== "") setRow(element, "Value", "");
  if (after !== "range" && (readVariant(element, "SecondaryValue") ?? "") !== "") setRow(element, "SecondaryValue", "");
}
