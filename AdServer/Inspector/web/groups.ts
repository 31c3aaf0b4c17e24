// Which requests belong together: one group for each ad that was asked for, one for each session of the host.

import {Req} from './records';

export interface Group {
  key: string;
  kind: 'ad' | 'session';
  title: string;
  transaction: string | null;
  session: string | null;
  requests: Req[]; // by begin
}

export function placementOf(request: Req): string {
  return new URLSearchParams(request.query).get('placement') ?? '';
}

/** `requests` by begin. Groups come in the order of their first request. */
export function group(requests: Req[]): Group[] {
  const groups: Group[] = [];
  const ofTransaction = new Map<string, Group>();
  const ofSession = new Map<string, Group>();
  let current: Group | null = null; // the session's that is the newest
  const add = (made: Group): Group => (groups.push(made), made);
  const forTransaction = (request: Req, transaction: string): Group => {
    // A transaction is asked for once; one that comes again is a replay, or a campaign that names its own.
    const isRequest = request.path === '/ad/req';
    const known = ofTransaction.get(transaction);
    if (known && !isRequest)
      return known;
    const name = isRequest ? placementOf(request) || 'Ad' : 'Ad';
    const made = add({
      key: `${transaction}#${request.key}`, kind: 'ad', title: `${name} ${transaction.slice(0, 4)}…`, transaction,
      session: request.session, requests: [],
    });
    ofTransaction.set(transaction, made);
    return made;
  };
  const forSession = (request: Req): Group => {
    const known = request.session ? ofSession.get(request.session) : undefined;
    if (known)
      return known;
    const isStart = request.method === 'POST' && request.path.startsWith('/app/sess/');
    const isTaken = current !== null && (current.session !== null || current.requests.some(isSessionStart));
    if (!current || (isStart && isTaken) || (request.session && current.session))
      current = add({
        key: `session#${request.key}`, kind: 'session', title: 'Session', transaction: null, session: null, requests: [],
      });
    if (request.session) {
      current.session = request.session;
      current.title = `Session ${request.session.slice(0, 4)}…`;
      ofSession.set(request.session, current);
    }
    return current;
  };
  for (const request of requests)
    (request.transaction ? forTransaction(request, request.transaction) : forSession(request)).requests.push(request);
  return groups;
}

function isSessionStart(request: Req): boolean {
  return request.method === 'POST' && request.path.startsWith('/app/sess/');
}

/** When the host's session that asked for this ad ended, by its own word or by the start of another one. */
export function endOfSession(session: string | null, requests: Req[], after: number): number | null {
  for (const request of requests)
    if (request.begin >= after &&
        ((session && request.method === 'DELETE' && request.session === session && request.path.startsWith('/app/sess')) ||
         isSessionStart(request)))
      return request.begin;
  return null;
}
