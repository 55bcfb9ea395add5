// Which inputs a clause asks for, and the text forms the page writes into a condition's operands.

export type ValueKind = "none" | "single" | "range" | "count" | "list";

const kNoValue = new Set([6, 7, 14, 15, 16, 20, 22, 30, 31, 32]);
const kCount = new Set([18, 21, 23, 24, 28, 29]);
const kList = new Set([17, 19]);
const kDateCompare = new Set([1, 3, 4, 5, 8, 9, 11]);

export function valueKind(clause: number): ValueKind {
  if (clause === 1) return "range";
  if (kNoValue.has(clause)) return "none";
  if (kCount.has(clause)) return "count";
  if (kList.has(clause)) return "list";
  return "single";
}

/** The word after the number of a "last/next X" clause, for the input's label. */
export function countUnit(clause: number): string {
  switch (clause) {
    case 21:
      return "months";
    case 23:
      return "year";
    case 24:
      return "years";
    default:
      return "days";
  }
}

const kDateType = 3;
const kDateControl = 2;

/** Date fields offer a date picker for the clauses that compare with a day. */
export function takesDate(showAsType: number, controlType: number, clause: number): boolean {
  return (showAsType === kDateType || controlType === kDateControl) && kDateCompare.has(clause);
}

const kMonths = ["Jan", "Feb", "Mar", "Apr", "May", "Jun", "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"];

/** A picked day (YYYY-MM-DD) in the dd-MMM-yyyy form the saved definitions use. */
export function dayText(iso: string): string {
  const match = /^(\d{4})-(\d{2})-(\d{2})$/.exec(iso);
  if (!match) return iso;
  return `${match[3]}-${kMonths[Number(match[2]) - 1]}-${match[1]}`;
}

/** The picker's YYYY-MM-DD for a stored day, or null when the text is not a plain day. */
export function isoDay(text: string): string | null {
  if (/^\d{4}-\d{2}-\d{2}$/.test(text)) return text;
  const match = /^(\d{1,2})-([A-Za-z]{3})-(\d{4})$/.exec(text);
  if (!match) return null;
  const month = kMonths.findIndex((m) => m.toLowerCase() === match[2].toLowerCase());
  if (month < 0) return null;
  return `${match[3]}-${String(month + 1).padStart(2, "0")}-${match[1].padStart(2, "0")}`;
}

/**
 * Splits a stored IN list, "('Cluj', 'Iasi')" or "(1, 2)", into its items; null when the text is
 * not such a list, so the page offers it as plain text instead of losing it.
 */
export function readList(text: string): string[] | null {
  const items: string[] = [];
  let at = 0;
  const blanks = () => {
    while (at < text.length && /\s/.test(text[at])) ++at;
  };
  blanks();
  if (at === text.length) return [];
  if (text[at++] !== "(") return null;
  for (;;) {
    blanks();
    if (text[at] === "'") {
      let item = "";
      for (++at; ; ++at) {
        if (at >= text.length) return null;
        if (text[at] === "'") {
          if (text[at + 1] !== "'") break;
          ++at;
        }
        item += text[at];
      }
      ++at;
      items.push(item);
    } else {
      const number = /^[+-]?(\d+\.?\d*|\.\d+)([eE][+-]?\d+)?/.exec(text.slice(at));
      if (!number) return null;
      items.push(number[0]);
      at += number[0].length;
    }
    blanks();
    if (text[at] === ",") {
      ++at;
      continue;
    }
    if (text[at] !== ")") return null;
    ++at;
    blanks();
    return at === text.length ? items : null;
  }
}

/** Writes list items back: numbers bare on numeric fields, everything else quoted. */
export function writeList(items: string[], numeric: boolean): string {
  const kept = items.filter((item) => item !== "");
  if (kept.length === 0) return "";
  const written = kept.map((item) =>
    numeric && /^[+-]?(\d+\.?\d*|\.\d+)([eE][+-]?\d+)?$/.test(item)
      ? item
      : `'${item.replace(/'/g, "''")}'`,
  );
  return `(${written.join(", ")})`;
}
