// A small element builder: the page builds its DOM directly, without a framework.

type Attributes = Record<string, string | number | boolean | EventListener | undefined>;
type Child = Node | string | null | undefined | false;

export function h<K extends keyof HTMLElementTagNameMap>(
  tag: K,
  attributes: Attributes = {},
  ...children: (Child | Child[])[]
): HTMLElementTagNameMap[K] {
  const element = document.createElement(tag);
  for (const [name, value] of Object.entries(attributes)) {
    if (value === undefined || value === false) continue;
    if (typeof value === "function") {
      element.addEventListener(name.slice(2).toLowerCase(), value);
    } else if (name === "class") {
      element.className = String(value);
    } else if (name === "value" && "value" in element) {
      (element as HTMLInputElement).value = String(value);
    } else if (name === "checked" && "checked" in element) {
      (element as HTMLInputElement).checked = Boolean(value);
    } else {
      element.setAttribute(name, value === true ? "" : String(value));
    }
  }
  append(element, children);
  return element;
}

function append(parent: Element, children: (Child | Child[])[]): void {
  for (const child of children) {
    if (Array.isArray(child)) append(parent, child);
    else if (child instanceof Node) parent.appendChild(child);
    else if (child !== null && child !== undefined && child !== false) {
      parent.appendChild(document.createTextNode(child));
    }
  }
}

let nextId = 0;

/** A fresh id for tying a label or description to its control. */
export function uid(prefix: string): string {
  return `${prefix}-${++nextId}`;
}

/** Announces a short status text to screen readers (and shows it in the status line). */
export function announce(text: string): void {
  const status = document.getElementById("status");
  if (status) status.textContent = text;
}
