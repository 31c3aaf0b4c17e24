// What the page knows, where it comes from, and what it asks the server to do.

import {endOfSession, group, Group} from './groups';
import {Ledger, ledgerOf, totals, Totals} from './ledger';
import {Fault, HostEvent, Line, readLog, Req, toReq} from './records';

export interface Campaign {
  name: string;
  type: string;
  placements: string[];
  isNextAt: string[];
}

export interface View {
  groups: Group[];
  ledgers: Map<string, Ledger>; // by the key of an ad's group
  totals: Totals;
  begin: number;
}

export type Selection = {kind: 'request'; request: Req} | {kind: 'group'; group: string} | null;

/** The key of the rows that tell what the host did. */
export const hostLane = 'host';

const mostHostEvents = 2000;

class Store {
  source: 'live' | 'file' = location.protocol === 'file:' ? 'file' : 'live';
  isConnected = false;
  isHostConnected = false;
  fileName = '';
  message = ''; // what went wrong last, or was done
  origin = '';
  liveView: string | null = null;
  liveCount = 0; // counts the connections to the host
  requests = new Map<number, Req>();
  hostEvents: HostEvent[] = [];
  faults: Fault[] = [];
  campaigns: Campaign[] = [];
  selection: Selection = null;
  ledgerGroup: string | null = null; // null: the newest ad's
  folded = new Set<string>([hostLane]); // the keys of groups
  filter = '';
  tab: 'request' | 'response' | 'vast' = 'request';
  isRaw = false;
  isDiff = false;
  times = 1;
  scroll = {top: 0, height: 600};
  followsEnd = true;
  explanations = new Map<number, Line | string>();

  private listeners: (() => void)[] = [];
  private isScheduled = false;
  private sorted: Req[] | null = null;
  private cachedGroups: Group[] | null = null;
  private cachedLedgers = new Map<string, {stamp: string; ledger: Ledger}>();

  onChange(listener: () => void): void {
    this.listeners.push(listener);
  }

  /** Draws at the next frame; changes in between share it. */
  changed(): void {
    if (this.isScheduled)
      return;
    this.isScheduled = true;
    requestAnimationFrame(() => {
      this.isScheduled = false;
      this.listeners.forEach((listener) => listener());
    });
  }

  // What is shown

  list(): Req[] {
    if (!this.sorted)
      this.sorted = [...this.requests.values()].sort((one, other) => one.begin - other.begin || one.key - other.key);
    return this.sorted;
  }

  now(): number {
    if (this.source === 'live')
      return Date.now();
    const list = this.list();
    // What was under way when the log ended has come; what was still to come by then still waits.
    return list.reduce((last, request) => Math.max(last, request.end ?? request.begin), 0) + 2000;
  }

  view(): View {
    this.cachedGroups = this.cachedGroups ?? group(this.list());
    const groups = this.cachedGroups;
    const now = this.now();
    const ledgers = new Map<string, Ledger>();
    for (const ad of groups)
      if (ad.kind === 'ad')
        ledgers.set(ad.key, this.ledger(ad, now));
    return {groups, ledgers, totals: totals([...ledgers.values()]), begin: this.list()[0]?.begin ?? now};
  }

  private ledger(ad: Group, now: number): Ledger {
    const end = endOfSession(ad.session, this.list(), ad.requests[0].begin);
    const running = ad.requests.filter((request) => request.end === null).length;
    const last = ad.requests[ad.requests.length - 1].begin;
    // Time changes a state only while beacons may still come.
    const isSettled = this.source === 'file' || now - last > 120_000;
    const stamp = [ad.requests.length, running, end, isSettled ? '' : Math.floor(now / 500)].join(' ');
    const cached = this.cachedLedgers.get(ad.key);
    if (cached?.stamp === stamp)
      return cached.ledger;
    const ledger = ledgerOf(ad, now, end);
    this.cachedLedgers.set(ad.key, {stamp, ledger});
    return ledger;
  }

  private touched(): void {
    this.sorted = null;
    this.cachedGroups = null;
    this.changed();
  }

  // The server

  async connect(): Promise<void> {
    if (this.source === 'file')
      return this.changed();
    const events = new EventSource('/events');
    const put = (event: Event): void => {
      if (this.source !== 'live')
        return;
      this.put(JSON.parse((event as MessageEvent).data));
    };
    events.addEventListener('began', put);
    events.addEventListener('ended', put);
    events.addEventListener('cleared', () => this.clear());
    events.addEventListener('faults', () => void this.loadFaults());
    events.addEventListener('reload', () => void this.load());
    events.onopen = () => {
      this.isConnected = true;
      void this.load();
    };
    events.onerror = () => {
      this.isConnected = false;
      this.changed();
    };
    const configuration = await this.get('/configuration');
    this.origin = configuration?.origin ?? '';
    this.liveView = configuration?.liveView ?? null;
    if (this.liveView)
      this.connectHost(this.liveView);
    setInterval(() => this.isBusy() && this.changed(), 500);
  }

  private connectHost(address: string): void {
    const events = new EventSource(`${address}/events`);
    events.onopen = () => {
      this.isHostConnected = true;
      this.liveCount += 1;
      this.hostEvents = []; // the host sends its last ones again
      this.changed();
    };
    events.onerror = () => {
      this.isHostConnected = false;
      // A browser gives up on a host that is not there yet.
      if (events.readyState === EventSource.CLOSED)
        setTimeout(() => this.connectHost(address), 1000);
      this.changed();
    };
    events.onmessage = (event) => {
      const line = JSON.parse(event.data);
      this.hostEvents.push({...line, time: Date.parse(line.time)});
      if (this.hostEvents.length > mostHostEvents)
        this.hostEvents.splice(0, mostHostEvents / 2);
      this.changed();
    };
  }

  private isBusy(): boolean {
    const last = this.list()[this.list().length - 1];
    return this.source === 'live' && last !== undefined && Date.now() - last.begin < 120_000;
  }

  private put(line: Line): void {
    const known = this.requests.get(line.id);
    if (known?.end)
      return; // a beginning that the list had already overtaken
    const request = toReq(line, line.id);
    if (!known && request.path === '/ad/req')
      this.ledgerGroup = null; // the new ad is what its developer waits for
    if (known)
      Object.assign(known, request);
    else
      this.requests.set(line.id, request);
    if (request.path === '/ad/req' && request.end && this.campaigns.some((campaign) => campaign.isNextAt.length))
      void this.loadCampaigns(); // one that was to be next has been served
    if (known && known.transaction === request.transaction && this.cachedGroups && line.path !== '/ad/req')
      this.changed();
    else
      this.touched();
  }

  private clear(): void {
    if (this.source !== 'live')
      return;
    this.requests.clear();
    this.cachedLedgers.clear();
    this.selection = null;
    this.ledgerGroup = null;
    this.touched();
  }

  private async load(): Promise<void> {
    const lines = await this.get('/records');
    if (this.source === 'live')
      for (const line of lines ?? [])
        this.put(line);
    this.touched();
    await Promise.all([this.loadFaults(), this.loadCampaigns()]);
  }

  private async loadFaults(): Promise<void> {
    this.faults = (await this.get('/control/faults')) ?? [];
    this.changed();
  }

  private async loadCampaigns(): Promise<void> {
    this.campaigns = (await this.get('/control/campaigns')) ?? [];
    this.changed();
  }

  private async get(path: string): Promise<any> {
    try {
      const response = await fetch(path);
      return response.ok ? await response.json() : null;
    } catch {
      return null;
    }
  }

  private async send(method: string, url: string, body?: object): Promise<boolean> {
    try {
      const response = await fetch(url, {method, body: body && JSON.stringify(body)});
      if (!response.ok) {
        const reason = await response.json().then((value) => value.reason ?? value.error).catch(() => response.status);
        this.say(`The server refused that: ${reason}`);
      }
      return response.ok;
    } catch {
      this.say('There was no response.');
      return false;
    }
  }

  say(message: string): void {
    this.message = message;
    this.changed();
  }

  // What a user does

  async select(request: Req): Promise<void> {
    this.selection = {kind: 'request', request};
    if (this.tab === 'vast' && !isVAST(request))
      this.tab = 'response';
    this.changed();
    await this.fetchDetails(request);
    if (this.tab === 'vast')
      await this.explain(request);
  }

  async fetchDetails(request: Req): Promise<void> {
    if (request.details || request.end === null || this.source === 'file')
      return;
    const line = await this.get(`/records/${request.key}`);
    if (line)
      request.details = toReq(line, request.key).details;
    this.changed();
  }

  async explain(request: Req): Promise<void> {
    if (this.explanations.has(request.key) || !isVAST(request))
      return;
    if (this.source === 'file') {
      this.explanations.set(request.key, 'The explanation needs the server: open the log there by --replay.');
    } else {
      const report = await this.get(`/records/${request.key}/vast`);
      this.explanations.set(request.key, report ?? 'vast-inspect is not beside ad-server, or it failed.');
    }
    this.changed();
  }

  async addFault(fault: Fault): Promise<void> {
    if (await this.send('POST', '/control/faults', fault))
      this.say(`Set on ${fault.path}.`);
  }

  removeFault(number: number): void {
    void this.send('DELETE', `/control/faults/${number}`);
  }

  clearFaults(): void {
    void this.send('DELETE', '/control/faults');
  }

  async serveNext(placement: string, campaign: string): Promise<void> {
    if (await this.send('POST', '/control/next', {placement, campaign}))
      this.say(campaign ? `${campaign} is next at ${placement}.` : 'The usual campaign is next.');
    await this.loadCampaigns();
  }

  async ask(placement: string): Promise<void> {
    if (this.liveView && !(await this.send('POST', `${this.liveView}/ask`, {placement})))
      this.say('This host cannot be asked from here: see "virloAdRequester" in the ad server’s README.');
  }

  press(key: string, down?: boolean, repeat = false): void {
    if (this.liveView)
      void this.send('POST', `${this.liveView}/key`, down === undefined ? {key} : {key, down, repeat});
  }

  reset(): void {
    void this.send('POST', '/control/reset');
  }

  openLog(name: string, text: string): void {
    try {
      const requests = readLog(text);
      this.source = 'file';
      this.fileName = name;
      this.requests = new Map(requests.map((request) => [request.key, request]));
      this.selection = null;
      this.ledgerGroup = null;
      this.explanations.clear();
      this.cachedLedgers.clear();
      this.message = `${requests.length} requests of ${name}.`;
      this.touched();
    } catch (error) {
      this.say((error as Error).message);
    }
  }

  /** Every request with its headers and bodies. */
  async everything(): Promise<{lines: Line[]; requests: Req[]}> {
    if (this.source === 'file')
      return {lines: [], requests: this.list()};
    const lines: Line[] = (await this.get('/records/all')) ?? [];
    return {lines, requests: lines.map((line) => toReq(line, line.id))};
  }

  address(request: Req): string {
    const host = request.details?.headers.host;
    const origin = host ? `${this.origin.split(':')[0] || 'https'}://${host}` : this.origin;
    const path = request.path.split('/').map(encodeURIComponent).join('/');
    return `${origin}${path}${request.query ? `?${request.query}` : ''}`;
  }
}

export function isVAST(request: Req): boolean {
  return request.document !== null && request.type.includes('xml');
}

export const store = new Store();
