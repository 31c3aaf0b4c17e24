// The requests as the server tells them, and a saved log read back.

export interface Fault {
  path: string;
  number?: number;
  method?: string;
  delay?: number;
  neverResponds?: boolean;
  drop?: boolean;
  status?: number;
  cutBodyAfter?: number;
  stallBodyAfter?: number;
  bytesPerSecond?: number;
  times?: number;
}

export interface Details {
  headers: Record<string, string>;
  body: unknown;
  responseHeaders: Record<string, string>;
  responseBody: string | null;
}

/** One request. `key` is unique also where a log holds several runs of a server. */
export interface Req {
  key: number;
  method: string;
  path: string; // percent-decoded
  query: string; // as sent
  session: string | null;
  transaction: string | null;
  connection: number;
  begin: number; // ms
  end: number | null; // ms; null while it runs
  status: number; // 0 without a response
  bytes: number;
  type: string;
  fault: Fault | null;
  document: string | null; // an advertisement's or a VAST document's text
  details: Details | null; // null until fetched
}

/** What the host did: a line of its log, a focus move, a key. */
export interface HostEvent {
  time: number;
  kind: 'log' | 'focus' | 'key';
  text: string;
}

export type Line = Record<string, any>;

export function isDocument(path: string, type: string): boolean {
  return path === '/ad/req' || path.startsWith('/ad/more/') || type.includes('xml');
}

export function toReq(line: Line, key: number): Req {
  const type = String(line.type ?? line.responseHeaders?.['content-type'] ?? '');
  const path = String(line.path ?? '');
  return {
    key,
    method: String(line.method ?? ''),
    path,
    query: String(line.query ?? ''),
    session: line.session ?? null,
    transaction: line.transaction ?? null,
    connection: line.connection ?? 0,
    begin: Date.parse(line.time),
    end: line.end ? Date.parse(line.end) : null,
    status: line.status ?? 0,
    bytes: line.bytes ?? 0,
    type,
    fault: line.fault ?? null,
    document: isDocument(path, type) ? line.responseBody ?? null : null,
    details: line.responseHeaders
      ? {headers: line.headers ?? {}, body: line.body, responseHeaders: line.responseHeaders,
         responseBody: line.responseBody ?? null}
      : null,
  };
}

/** The requests of a log file in the order of their beginnings. Throws an Error that names the wrong line. */
export function readLog(text: string): Req[] {
  const requests: Req[] = [];
  text.split('\n').forEach((line, index) => {
    if (!line.trim())
      return;
    let value: Line;
    try {
      value = JSON.parse(line);
    } catch {
      throw new Error(`Line ${index + 1} is no JSON.`);
    }
    if (typeof value?.path !== 'string' || Number.isNaN(Date.parse(value.time)))
      throw new Error(`Line ${index + 1} is no request of an ad server's log.`);
    requests.push(toReq({end: value.time, ...value}, index + 1));
  });
  return requests.sort((one, other) => one.begin - other.begin || one.key - other.key);
}

/** Whether the client got what it asked for: a report of 200 to 399 counts as delivered. */
export function isDelivered(request: Req): boolean {
  return request.end !== null && request.status >= 200 && request.status <= 399;
}

/** How a tracking URL and the request of it are compared: the path decoded, the query as it is. */
export function addressKey(path: string, query: string): string {
  return query ? `${path}?${query}` : path;
}

export function keyOfURL(url: string): {origin: string; key: string} | null {
  const match = /^(https?:\/\/[^/?#]+)([^?#]*)(?:\?([^#]*))?/i.exec(url);
  if (!match)
    return null;
  let path = match[2] || '/';
  try {
    path = decodeURIComponent(path);
  } catch {
    // An address with a stray percent sign is compared as it is.
  }
  return {origin: match[1], key: addressKey(path, match[3] ?? '')};
}
