// The definition document as the page edits it: an XML DOM of the saved query, changed in place
// and sent back whole. Only the elements the user touches change; the server re-saves the rest.

export type Logic = number;

export interface ConditionRef {
  element: Element;
}

export interface FieldRef {
  element: Element;
  table: TableRef;
}

export interface TableRef {
  element: Element;
}

const kConditionRows = [
  "ConditionID",
  "ParamName",
  "Clause",
  "WhereClauseLogic",
  "Value",
  "SecondaryValue",
  "IsEditable",
  "Tag",
];

export class DefinitionError extends Error {}

function childElements(parent: Element, tag: string): Element[] {
  const found: Element[] = [];
  for (let child = parent.firstElementChild; child; child = child.nextElementSibling) {
    if (child.tagName === tag) found.push(child);
  }
  return found;
}

function firstChild(parent: Element, tag: string): Element | null {
  for (let child = parent.firstElementChild; child; child = child.nextElementSibling) {
    if (child.tagName === tag) return child;
  }
  return null;
}

// Nested objects carry their position in the name attribute ("Condition3"); the reader orders
// them by that number, so the page does too.
function byNumber(prefix: string): (a: Element, b: Element) => number {
  const number = (e: Element) => Number((e.getAttribute("name") ?? "").slice(prefix.length)) || 0;
  return (a, b) => number(a) - number(b);
}

export function readRow(parent: Element, tag: string): string {
  const row = firstChild(parent, tag);
  return row ? (row.textContent ?? "") : "";
}

/** The text of a row, or null when it holds no text (an Empty or Null variant). */
export function readVariant(parent: Element, tag: string): string | null {
  const row = firstChild(parent, tag);
  if (!row) return null;
  const kind = (row.getAttribute("vartype") ?? "").toUpperCase();
  if (kind === "EMPTY" || kind === "NULL" || kind === "NOTHING") return null;
  return row.textContent ?? "";
}

export class Definition {
  readonly doc: XMLDocument;
  readonly query: Element;

  constructor(text: string) {
    const doc = new DOMParser().parseFromString(text, "application/xml");
    if (doc.getElementsByTagName("parsererror").length > 0) {
      throw new DefinitionError("The definition is not well-formed XML.");
    }
    const root = doc.documentElement;
    const query = root && root.tagName === "PropertyBag" ? firstChild(root, "xqb_Query") : null;
    if (!query) throw new DefinitionError("The document holds no saved query.");
    this.doc = doc;
    this.query = query;
  }

  text(): string {
    return new XMLSerializer().serializeToString(this.doc);
  }

  tables(): TableRef[] {
    return childElements(this.query, "xqb_Table")
      .sort(byNumber("Table"))
      .map((element) => ({ element }));
  }

  fields(table: TableRef): FieldRef[] {
    return childElements(table.element, "xqb_Field")
      .sort(byNumber("Field"))
      .map((element) => ({ element, table }));
  }

  conditions(field: FieldRef): ConditionRef[] {
    return childElements(field.element, "xqb_Condition")
      .sort(byNumber("Condition"))
      .map((element) => ({ element }));
  }

  /** Finds a field by its table's and its own database name (names compare without letter case). */
  findField(tableName: string, fieldName: string): FieldRef | null {
    const table = this.tables().find((t) => sameName(readRow(t.element, "DBName"), tableName));
    if (!table) return null;
    return this.fields(table).find((f) => sameName(readRow(f.element, "DBName"), fieldName)) ?? null;
  }

  allConditionIds(): Set<number> {
    const ids = new Set<number>();
    for (const element of Array.from(this.query.getElementsByTagName("xqb_Condition"))) {
      ids.add(Number(readRow(element, "ConditionID")));
    }
    return ids;
  }

  /** Adds a condition at the end of the field's list; its identity is free across the query. */
  addCondition(field: FieldRef, clause: number): ConditionRef {
    const element = this.doc.createElement("xqb_Condition");
    for (const tag of kConditionRows) element.appendChild(this.doc.createElement(tag));
    setRow(element, "ConditionID", String(freeConditionId(this.allConditionIds())));
    setRow(element, "Clause", String(clause));
    setRow(element, "WhereClauseLogic", "1");
    setRow(element, "IsEditable", "True");
    field.element.appendChild(element);
    this.renumber(field);
    return { element };
  }

  removeCondition(field: FieldRef, condition: ConditionRef): void {
    condition.element.remove();
    this.renumber(field);
  }

  /** Moves a condition by `step` places within its field (clamped to the list). */
  moveCondition(field: FieldRef, condition: ConditionRef, step: number): boolean {
    const list = this.conditions(field);
    const from = list.findIndex((c) => c.element === condition.element);
    const to = Math.min(list.length - 1, Math.max(0, from + step));
    if (from < 0 || to === from) return false;
    const anchor = list[to].element;
    if (to > from) anchor.after(condition.element);
    else anchor.before(condition.element);
    this.renumber(field);
    return true;
  }

  /** The definition without its conditions: what the fields and their clause lists need. */
  withoutConditions(): string {
    const copy = new Definition(this.text());
    for (const table of copy.tables()) {
      for (const field of copy.fields(table)) {
        for (const condition of copy.conditions(field)) condition.element.remove();
        setRow(field.element, "ConditionsCount", "0");
      }
    }
    return copy.text();
  }

  /** The names of the parameter conditions, each once, in tree order. */
  parameterNames(): string[] {
    const names: string[] = [];
    for (const element of Array.from(this.query.getElementsByTagName("xqb_Condition"))) {
      const name = readRow(element, "ParamName");
      if (name !== "" && !names.includes(name)) names.push(name);
    }
    return names;
  }

  // Names follow document order after an edit, and the count row follows the children.
  private renumber(field: FieldRef): void {
    const list = childElements(field.element, "xqb_Condition");
    list.forEach((element, index) => element.setAttribute("name", `Condition${index + 1}`));
    setRow(field.element, "ConditionsCount", String(list.length));
  }
}

export function sameName(a: string, b: string): boolean {
  return a.toLowerCase() === b.toLowerCase();
}

export function freeConditionId(used: Set<number>): number {
  // Identities are drawn as the library draws them (0..10000); once those run short, the next
  // number above the largest keeps them unique.
  for (let tries = 0; tries < 64; ++tries) {
    const id = 1 + Math.floor(Math.random() * 10000);
    if (!used.has(id)) return id;
  }
  return Math.max(10000, ...used) + 1;
}

/** Writes a row's text; an Empty or Null marker goes, since the row now holds a string. */
export function setRow(parent: Element, tag: string, text: string): void {
  let row = firstChild(parent, tag);
  if (!row) {
    row = parent.ownerDocument.createElement(tag);
    parent.appendChild(row);
  }
  row.removeAttribute("vartype");
  row.textContent = text;
}
