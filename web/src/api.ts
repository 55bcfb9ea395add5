// The calls the page makes to `brixq serve`, typed after the answers it gives.

export interface EngineError {
  number: number;
  hex?: string;
  source: string;
  description: string;
}

export interface ConditionError extends EngineError {
  conditionId: number;
}

export interface Clause {
  number: number;
  name: string;
  description?: string;
}

export interface RenderedField {
  table: string;
  field: string;
  caption: string;
  dataType: number;
  controlType: number;
  uiOrder: number;
  visible: boolean;
  clauses: Clause[];
}

export interface Parameter {
  placeholder?: string;
  type: string;
  value: unknown;
}

export interface Statement {
  sql: string;
  parameters: Parameter[];
}

export interface Rendered {
  sql: string;
  where: string;
  fullText: string;
  descriptions: { id: number; text: string }[];
  fields: RenderedField[];
  statements?: { sqlite?: Statement; postgresql?: Statement };
  problems?: { path?: string; conditionId?: number; message: string }[];
}

export interface RenderRequest {
  definition: string;
  date?: string;
  params?: { name: string; values: string[] }[];
  top?: number;
  /** Only these members of the answer are rendered (all when absent). */
  parts?: string[];
}

export type QueryRecord = Record<string, string | number | boolean>;

export interface ListItem {
  ID: string;
  Name: string;
  Category: string;
  Description: string;
  ModificatData: number;
  ModificatOra: string;
  IsEditable: boolean;
}

export interface ListPage {
  total: number;
  offset: number;
  limit: number;
  items: ListItem[];
}

/** An answer other than success: its HTTP status and the error the server wrote. */
export class ApiError extends Error {
  constructor(
    readonly status: number,
    readonly error: EngineError,
    readonly body: Record<string, unknown>,
  ) {
    super(error.description);
  }

  get conditionErrors(): ConditionError[] {
    const list = this.body["conditionErrors"];
    return Array.isArray(list) ? (list as ConditionError[]) : [];
  }
}

// A server started with a token takes writes only with it; the page asks once and keeps it for
// the browser tab.
const kTokenKey = "brixq-token";
let askToken: (() => Promise<string | null>) | null = null;

export function setTokenPrompt(prompt: () => Promise<string | null>): void {
  askToken = prompt;
}

async function send(path: string, init: RequestInit): Promise<Response> {
  const token = sessionStorage.getItem(kTokenKey);
  const headers = new Headers(init.headers);
  if (token) headers.set("Authorization", `Bearer ${token}`);
  try {
    return await fetch(path, { ...init, headers });
  } catch (e) {
    if (e instanceof DOMException && e.name === "AbortError") throw e;
    throw new ApiError(0, noNumber("The server cannot be reached."), {});
  }
}

async function call<T>(path: string, init: RequestInit = {}): Promise<{ body: T; etag: string | null }> {
  let response = await send(path, init);
  if (response.status === 401 && askToken) {
    const token = await askToken();
    if (token) {
      sessionStorage.setItem(kTokenKey, token);
      response = await send(path, init);
    }
  }
  const etag = response.headers.get("ETag");
  if (response.status === 204) return { body: undefined as T, etag };
  let body: unknown = null;
  try {
    body = await response.json();
  } catch {
    body = null;
  }
  if (!response.ok) {
    const record = (body ?? {}) as Record<string, unknown>;
    const error = (record["error"] as EngineError | undefined) ??
      noNumber(`The server answered ${response.status} ${response.statusText}.`);
    throw new ApiError(response.status, error, record);
  }
  return { body: body as T, etag };
}

function noNumber(description: string): EngineError {
  return { number: 0, source: "brixq web", description };
}

const json = { "Content-Type": "application/json" };

export function render(request: RenderRequest, signal?: AbortSignal): Promise<Rendered> {
  return call<Rendered>("/api/render", {
    method: "POST",
    headers: json,
    body: JSON.stringify(request),
    signal,
  }).then((r) => r.body);
}

export async function listQueries(search: string, offset: number, limit: number): Promise<ListPage> {
  const query = new URLSearchParams({ search, offset: String(offset), limit: String(limit) });
  return (await call<ListPage>(`/api/queries?${query}`)).body;
}

export async function getQuery(id: string): Promise<{ record: QueryRecord; etag: string }> {
  const { body, etag } = await call<QueryRecord>(`/api/queries/${encodeURIComponent(id)}`);
  return { record: body, etag: etag ?? "" };
}

/** Stores a record: replaces the version `etag` names, or creates it when `etag` is null. */
export async function putQuery(
  record: QueryRecord,
  etag: string | null,
): Promise<{ record: QueryRecord; etag: string }> {
  const headers: Record<string, string> = { ...json };
  if (etag === null) headers["If-None-Match"] = "*";
  else headers["If-Match"] = etag;
  const id = encodeURIComponent(String(record["ID"]));
  const { body, etag: stored } = await call<QueryRecord>(`/api/queries/${id}`, {
    method: "PUT",
    headers,
    body: JSON.stringify(record),
  });
  return { record: body, etag: stored ?? "" };
}

export async function deleteQuery(id: string): Promise<void> {
  await call<void>(`/api/queries/${encodeURIComponent(id)}`, { method: "DELETE" });
}

export async function clauseCatalogue(): Promise<Clause[]> {
  return (await call<{ clauses: Clause[] }>("/api/catalogue/clauses")).body.clauses;
}

export async function samples(): Promise<{ name: string; definition: string }[]> {
  return (await call<{ samples: { name: string; definition: string }[] }>("/api/samples")).body
    .samples;
}
