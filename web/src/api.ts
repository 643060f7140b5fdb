// The web API under /api/v1: every write carries the session's CSRF token, every refusal becomes an
// ApiError with the server's own text and, when it names one, the field.
export interface Session {
  user: string;
  role: 'clerk' | 'admin';
  login_required: boolean;
  csrf_token: string;
}

export class ApiError extends Error {
  constructor(
    readonly status: number,
    message: string,
    readonly field?: string,
    readonly body?: unknown,
  ) {
    super(message);
  }
}

const BASE = '/api/v1';
let csrf = '';

export function setCsrfToken(token: string): void {
  csrf = token;
}

export type Query = Record<string, string | number | undefined>;

export function withQuery(path: string, query: Query = {}): string {
  const params = new URLSearchParams();
  for (const [key, value] of Object.entries(query)) {
    if (value !== undefined && value !== '') params.append(key, String(value));
  }
  const text = params.toString();
  return `${BASE}${path}${text ? `?${text}` : ''}`;
}

async function send(method: string, path: string, query: Query, body?: BodyInit, type?: string): Promise<Response> {
  const headers: Record<string, string> = { Accept: 'application/json' };
  if (method !== 'GET') headers['X-CSRF-Token'] = csrf;
  if (type) headers['Content-Type'] = type;
  const response = await fetch(withQuery(path, query), { method, headers, body, credentials: 'same-origin' });
  if (!response.ok) throw await errorOf(response);
  return response;
}

async function errorOf(response: Response): Promise<ApiError> {
  const text = await response.text();
  try {
    const body = JSON.parse(text) as { error?: string; field?: string };
    return new ApiError(response.status, body.error ?? `HTTP ${response.status}`, fieldName(body.field), body);
  } catch {
    return new ApiError(response.status, text.trim() || `HTTP ${response.status}`);
  }
}

async function json<T>(response: Response): Promise<T> {
  const text = await response.text();
  return (text ? JSON.parse(text) : null) as T;
}

export const api = {
  get: async <T>(path: string, query: Query = {}) => json<T>(await send('GET', path, query)),
  post: async <T>(path: string, body: unknown, query: Query = {}) =>
    json<T>(await send('POST', path, query, JSON.stringify(body), 'application/json')),
  put: async <T>(path: string, body: unknown, query: Query = {}) =>
    json<T>(await send('PUT', path, query, JSON.stringify(body), 'application/json')),
  del: async <T>(path: string, query: Query = {}) => json<T>(await send('DELETE', path, query)),
  upload: async <T>(path: string, bytes: ArrayBuffer, query: Query = {}) =>
    json<T>(await send('POST', path, query, bytes, 'application/octet-stream')),
  // A PDF made from a body that is not stored (the settings' preview).
  postForBlob: async (path: string, body: unknown) =>
    (await send('POST', path, {}, JSON.stringify(body), 'application/json')).blob(),
  getText: async (path: string, query: Query = {}) => (await send('GET', path, query)).text(),
};

export async function loadSession(): Promise<Session> {
  const session = await api.get<Session>('/session');
  setCsrfToken(session.csrf_token);
  return session;
}

// The list an answer carries: the answer itself when it is one, else the array under one of `keys`,
// else its only array (the API wraps lists as {"status": 0, "clients": [...]}).
export function listIn<T = Record<string, unknown>>(value: unknown, ...keys: string[]): T[] {
  if (Array.isArray(value)) return value as T[];
  if (!value || typeof value !== 'object') return [];
  const o = value as Record<string, unknown>;
  for (const key of keys) if (Array.isArray(o[key])) return o[key] as T[];
  const arrays = Object.values(o).filter(Array.isArray);
  return arrays.length === 1 ? (arrays[0] as T[]) : [];
}

// A field as the pages name it: the API names places ("/produtos/0/Escalao", "/header/cb_Obs").
export function fieldName(place: string | undefined): string | undefined {
  if (!place) return undefined;
  return place.split('/').filter(Boolean).pop();
}
