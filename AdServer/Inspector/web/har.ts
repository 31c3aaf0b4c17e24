// HTTP Archive 1.2, as browsers' network panels open it.

import {Req} from './records';

export type Address = (request: Req) => string;

interface Pair {
  name: string;
  value: string;
}

function pairs(values: Record<string, string>): Pair[] {
  return Object.entries(values).map(([name, value]) => ({name, value}));
}

function queryPairs(query: string): Pair[] {
  return [...new URLSearchParams(query)].map(([name, value]) => ({name, value}));
}

export function bodyText(body: unknown): string {
  return body === null || body === undefined ? '' : typeof body === 'string' ? body : JSON.stringify(body);
}

/** The requests' details have been fetched; those that still run are left out. */
export function toHAR(requests: Req[], address: Address): object {
  const entries = requests.filter((request) => request.end !== null && request.details).map((request) => {
    const details = request.details!;
    const sent = bodyText(details.body);
    const time = request.end! - request.begin;
    const length = Number(details.responseHeaders['content-length']);
    const size = Number.isFinite(length) ? length : (details.responseBody ?? '').length;
    return {
      startedDateTime: new Date(request.begin).toISOString(),
      time,
      request: {
        method: request.method,
        url: address(request),
        httpVersion: 'HTTP/1.1',
        cookies: [],
        headers: pairs(details.headers),
        queryString: queryPairs(request.query),
        ...(sent ? {postData: {mimeType: details.headers['content-type'] ?? '', text: sent}} : {}),
        headersSize: -1,
        bodySize: sent.length,
      },
      response: {
        status: request.status,
        statusText: '',
        httpVersion: 'HTTP/1.1',
        cookies: [],
        headers: pairs(details.responseHeaders),
        content: {
          size,
          mimeType: details.responseHeaders['content-type'] ?? 'x-unknown',
          ...(details.responseBody ? {text: details.responseBody} : {}),
        },
        redirectURL: details.responseHeaders.location ?? '',
        headersSize: -1,
        bodySize: size,
      },
      cache: {},
      timings: {send: 0, wait: time, receive: 0},
      connection: String(request.connection),
      ...(request.fault ? {comment: `fault: ${JSON.stringify(request.fault)}`} : {}),
    };
  });
  return {log: {version: '1.2', creator: {name: 'ad-server inspector', version: '1'}, entries}};
}
