// One open saved query: its record, the version it was read at, the edited definition, the undo
// history and whether there is anything unsaved.

import { QueryRecord } from "./api";
import { Definition } from "./definition";

const kUndoDepth = 100;
const kTypingPause = 1200;

export class Session {
  definition: Definition;
  private undoStack: string[] = [];
  private lastGroup = "";
  private lastEditAt = 0;
  private savedText = "";
  dirty = false;

  constructor(
    public record: QueryRecord,
    public etag: string,
  ) {
    this.definition = new Definition(String(record["QueryDef"] ?? ""));
    this.savedText = this.definition.text(); // as the page writes it, so undo can compare
  }

  get id(): string {
    return String(this.record["ID"]);
  }

  get editable(): boolean {
    return this.record["IsEditable"] !== false;
  }

  /**
   * Call before changing the definition. Keystrokes in one input within a short pause share one
   * undo step, so undo takes back a typed word rather than a letter.
   */
  beforeEdit(group = ""): void {
    const now = performance.now();
    const sameTyping = group !== "" && group === this.lastGroup && now - this.lastEditAt < kTypingPause;
    if (!sameTyping) {
      this.undoStack.push(this.definition.text());
      if (this.undoStack.length > kUndoDepth) this.undoStack.shift();
    }
    this.lastGroup = group;
    this.lastEditAt = now;
    this.dirty = true;
  }

  canUndo(): boolean {
    return this.undoStack.length > 0;
  }

  undo(): boolean {
    const text = this.undoStack.pop();
    if (text === undefined) return false;
    this.definition = new Definition(text);
    this.lastGroup = "";
    this.dirty = text !== this.savedText;
    return true;
  }

  /** Takes the stored record as the new starting point (after a save or a reload). */
  stored(record: QueryRecord, etag: string): void {
    this.record = record;
    this.etag = etag;
    this.definition = new Definition(String(record["QueryDef"] ?? ""));
    this.savedText = this.definition.text();
    this.undoStack = [];
    this.lastGroup = "";
    this.dirty = false;
  }

  /** The record to store: the one read, with the edited definition. */
  recordToSave(): QueryRecord {
    return { ...this.record, QueryDef: this.definition.text() };
  }
}
