// Holds each tracking URL of an ad against what the ad library must send.
//
// An ad's impressions, the first creative's creativeView and its start are due when the ad appears, each creative's start
// when its video begins, the quartiles and complete as it plays. All come once. pause, resume, mute and unmute come as
// often as somebody does that; close when the ad is left before its end. Everything else in a document is never sent. A
// tracking URL is never sent again, whatever the response.

import {Group} from './groups';
import {isDelivered, keyOfURL, addressKey, Req} from './records';
import {Ad, resolve} from './vast';

export type State = 'waiting' | 'received' | 'missing' | 'failed' | 'doubled' | 'disorder' | 'not due' | 'elsewhere';

export interface Beacon {
  section: string;
  event: string;
  url: string;
  state: State;
  note: string;
  requests: Req[];
}

export interface Ledger {
  beacons: Beacon[];
  chain: Ad[];
  start: number | null; // when the ad appeared
}

const moments = ['start', 'firstQuartile', 'midpoint', 'thirdQuartile', 'complete'];
const repeatable = new Set(['pause', 'resume', 'mute', 'unmute']);
const order = ['creativeView', ...moments, 'mute', 'unmute', 'pause', 'resume', 'close'];

const grace = 1500; // ms; requests of one moment come over several connections
const tolerance = 300; // ms; likewise for their order
const slack = 6000; // ms; a device's clock, a stall that nobody reports

/** `now` is the time up to which everything is known; `sessionEnd` as `endOfSession` says. */
export function ledgerOf(group: Group, now: number, sessionEnd: number | null): Ledger {
  const byAddress = new Map<string, Req[]>();
  const documents = new Map<string, Req[]>();
  for (const request of group.requests) {
    const key = addressKey(request.path, request.query);
    byAddress.set(key, [...(byAddress.get(key) ?? []), request]);
    if (request.document && request.path !== '/ad/req' && isDelivered(request))
      documents.set(key, [...(documents.get(key) ?? []), request]);
  }
  const host = originOf(group);
  const received = (url: string): Req[] => byAddress.get(keyOfURL(url)?.key ?? '') ?? [];
  const isElsewhere = (url: string): boolean => {
    const origin = keyOfURL(url)?.origin;
    return origin === undefined || (host !== null && origin !== host);
  };
  const ledger: Ledger = {beacons: [], chain: [], start: null};
  const advertisement = group.requests.find((request) => request.path === '/ad/req' && request.document);
  const items = advertisement ? itemsOf(advertisement.document!) : [];
  const roots = rootsOf(items, documents);
  let isComplete = false;
  for (const root of roots) {
    const shows = documents.get(root)!;
    const show = shows[shows.length - 1];
    const {ad, chain} = resolve(show.document!, (url) => {
      const loaded = documents.get(keyOfURL(url)?.key ?? '');
      return loaded ? loaded[loaded.length - 1].document : null;
    });
    ledger.chain.push(...chain);
    if (!ad)
      continue;
    const judge = new Judge(ad, group, show.begin, shows.length, now, sessionEnd, received, isElsewhere);
    ledger.beacons.push(...judge.beacons());
    ledger.start = ledger.start ?? judge.start;
    isComplete = isComplete || judge.isComplete;
  }
  const isVideo = items.type === 'video';
  items.forEach((item) => ledger.beacons.push(...itemBeacons(item, received, isElsewhere, isVideo, isComplete)));
  return ledger;
}

function originOf(group: Group): string | null {
  for (const request of group.requests)
    if (request.path === '/ad/req' && request.document) {
      const address = /"(https?:\/\/[^/"]+)\/(?:ad|campaigns|vast)\//.exec(request.document);
      if (address)
        return address[1];
    }
  return null;
}

interface Item {
  cid: string;
  impressionUrl?: string;
  clickTracker?: string;
  pollingUrl?: string;
  markupUrl?: string;
}

function itemsOf(document: string): Item[] & {type?: string} {
  try {
    const value = JSON.parse(document);
    const items: Item[] & {type?: string} = Array.isArray(value.ads) ? value.ads.filter((item: unknown) => item) : [];
    items.type = value.type;
    return items;
  } catch {
    return [];
  }
}

/** The documents that an item names; without an advertisement those that no other document names. */
function rootsOf(items: Item[], documents: Map<string, Req[]>): string[] {
  const named = items.map((item) => keyOfURL(String(item.markupUrl ?? ''))?.key ?? '').filter((key) => documents.has(key));
  if (named.length || items.length)
    return [...new Set(named)];
  const wrapped = new Set<string>();
  for (const requests of documents.values())
    for (const ad of resolve(requests[0].document!, () => null).chain)
      if (ad.tag)
        wrapped.add(keyOfURL(ad.tag)?.key ?? '');
  return [...documents.keys()].filter((key) => key.startsWith('/vast/') && !wrapped.has(key));
}

function itemBeacons(item: Item, received: (url: string) => Req[], isElsewhere: (url: string) => boolean, isVideo: boolean,
                     isComplete: boolean): Beacon[] {
  const made = (event: string, url: unknown): Beacon[] => {
    if (typeof url !== 'string' || !url)
      return [];
    const requests = received(url).filter((request) => request.method === 'POST');
    const delivered = requests.filter(isDelivered).length;
    const beacon: Beacon = {section: item.cid || 'item', event, url, state: 'received', note: '', requests};
    const isReward = event === 'click' && isVideo && Boolean(item.pollingUrl);
    if (isElsewhere(url))
      return [{...beacon, state: 'elsewhere', note: 'of another server'}];
    if (delivered > 1 && event === 'impression')
      return [{...beacon, state: 'doubled', note: `${delivered} times`}];
    if (delivered > 0)
      return [beacon];
    if (requests.some((request) => request.end !== null))
      return [{...beacon, state: 'failed', note: statusNote(requests)}];
    if (event === 'impression' && isVideo)
      return [{...beacon, state: 'not due', note: 'a video reports its document’s impressions'}];
    if (event === 'click')
      return [{...beacon, state: isReward && isComplete ? 'waiting' : 'not due',
               note: isReward ? 'with complete, for the reward' : 'when the button is chosen'}];
    const isClicked = item.clickTracker ? received(item.clickTracker).length > 0 : false;
    return [{...beacon, state: isClicked ? 'missing' : 'waiting', note: isClicked ? 'clicked without an impression' : ''}];
  };
  return [...made('impression', item.impressionUrl), ...made('click', item.clickTracker)];
}

function statusNote(requests: Req[]): string {
  const last = requests[requests.length - 1];
  return last.end === null ? 'no response yet' : last.status === 0 ? 'no response' : `status ${last.status}`;
}

/** One document's ad as it was shown last. */
class Judge {
  readonly start: number | null;
  readonly isComplete: boolean;
  private readonly first: Map<string, number>[]; // by creative: when an event came first
  private readonly anything: number[]; // when anything came

  constructor(private ad: Ad, private group: Group, private since: number, private shows: number, private now: number,
              private sessionEnd: number | null, private received: (url: string) => Req[],
              private isElsewhere: (url: string) => boolean) {
    const times = (urls: Iterable<string>): number[] =>
      [...urls].flatMap((url) => this.requests(url)).map((request) => request.begin);
    this.first = ad.creatives.map((creative) => {
      const firsts = new Map<string, number>();
      for (const [event, urls] of creative.tracking ?? []) {
        const came = times(urls);
        if (came.length)
          firsts.set(event, Math.min(...came));
      }
      return firsts;
    });
    this.anything = [...times(ad.impressions), ...this.first.flatMap((firsts) => [...firsts.values()])];
    this.start = this.anything.length ? Math.min(...this.anything) : null;
    this.isComplete = this.first.some((firsts) => firsts.has('complete'));
  }

  beacons(): Beacon[] {
    const counts = new Map<string, number>();
    for (const url of this.ad.impressions)
      counts.set(url, (counts.get(url) ?? 0) + 1);
    const impressions = [...counts].map(([url, count]) => this.beacon('impressions', 'impression', url, count, -1));
    const tracked = this.ad.creatives.flatMap((creative, index) => {
      const name = creative.id || `creative ${index + 1}`;
      const rank = (event: string): number => (order.indexOf(event) + 1 || order.length + 1);
      return [...(creative.tracking ?? [])].sort(([one], [other]) => rank(one) - rank(other)).flatMap(
        ([event, urls]) => [...urls].map((url) => this.beacon(name, event, url, 1, index)));
    });
    return [...impressions, ...tracked];
  }

  private requests(url: string): Req[] {
    return this.received(url).filter((request) => request.begin >= this.since);
  }

  private beacon(section: string, event: string, url: string, count: number, index: number): Beacon {
    const requests = this.received(url);
    const [state, note] = this.judge(event, url, requests, count, index);
    return {section, event, url, state, note, requests};
  }

  private judge(event: string, url: string, requests: Req[], count: number, index: number): [State, string] {
    if (this.isElsewhere(url))
      return ['elsewhere', 'of another server'];
    const isNeverSent = index >= 0 && (!order.includes(event) || (event === 'creativeView' && index > 0));
    if (requests.length === 0)
      return this.judgeAbsent(event, index, isNeverSent);
    const last = requests[requests.length - 1];
    if (last.end === null && requests.length === 1)
      return ['waiting', 'being sent'];
    if (!repeatable.has(event) && requests.length > count * this.shows)
      return ['doubled', `${requests.length} times`];
    if (!requests.some(isDelivered))
      return ['failed', statusNote(requests)];
    if (isNeverSent)
      return ['disorder', 'not to be sent'];
    const disorder = index >= 0 && requests[requests.length - 1].begin >= this.since ? this.disorder(event, index) : '';
    return disorder ? ['disorder', disorder] : ['received', ''];
  }

  private judgeAbsent(event: string, index: number, isNeverSent: boolean): [State, string] {
    if (isNeverSent)
      return ['not due', 'never sent'];
    if (repeatable.has(event) || event === 'close')
      return ['not due', `on ${event}`];
    if (this.start === null)
      return this.sessionEnd === null ? ['waiting', ''] : ['not due', 'the session has ended'];
    const why = this.passed(event, index);
    if (why)
      return ['missing', why];
    const closed = this.first.some((firsts) => firsts.has('close'));
    if (this.hasFailed(index))
      return ['not due', 'the video failed'];
    if (closed)
      return ['not due', 'the ad was closed'];
    return this.sessionEnd !== null && this.sessionEnd > this.start ? ['not due', 'the session has ended'] : ['waiting', ''];
  }

  /** Why the event should have come by now; empty where it may still come. */
  private passed(event: string, index: number): string {
    const isOld = (time: number | undefined): boolean => time !== undefined && this.now - time > grace;
    if (index < 0 || event === 'creativeView' || (event === 'start' && index === 0))
      return this.anything.some(isOld) ? 'the ad is shown' : '';
    const own = this.first[index];
    const step = moments.indexOf(event);
    if (event !== 'start' && this.hasFailed(index))
      return '';
    const later = moments.slice(step + 1).find((moment) => isOld(own.get(moment)));
    if (later)
      return `${later} has come`;
    if (this.first.slice(index + 1).some((firsts) => isOld(firsts.get('start'))))
      return 'the next video has begun';
    if (this.first.some((firsts) => firsts.has('close')))
      return '';
    if (event === 'start')
      return isOld(this.first[index - 1].get('complete')) && this.sessionEnd === null ? 'the video before has ended' : '';
    return this.isLate(step, index) ? 'its time has passed' : '';
  }

  /** Whether the last moment that came is too long ago. A video that waits for the network or is paused is not late. */
  private isLate(step: number, index: number): boolean {
    const own = this.first[index];
    const duration = this.ad.creatives[index].duration;
    const reached = moments.slice(0, step).reverse().find((moment) => own.has(moment));
    if (!reached || duration === 0 || this.sessionEnd !== null || this.isPaused(index) || this.isLoading(index))
      return false;
    const distance = (step - moments.indexOf(reached)) * 0.25 * duration * 1000;
    return this.now - own.get(reached)! > distance + slack;
  }

  private isPaused(index: number): boolean {
    const count = (event: string): number =>
      [...(this.ad.creatives[index].tracking?.get(event) ?? [])].slice(0, 1).flatMap((url) => this.requests(url)).length;
    return count('pause') > count('resume');
  }

  /** No video plays whose file was not asked for, and one whose file still comes may wait for it. */
  private isLoading(index: number): boolean {
    const loads = this.loads(index);
    return loads.length === 0 || loads.some((load) => load.end === null);
  }

  private loads(index: number): Req[] {
    const media = new Set(this.ad.creatives[index].media.map((url) => keyOfURL(url)?.key));
    return this.group.requests.filter((request) => media.has(addressKey(request.path, request.query)));
  }

  /** A video that cannot be played counts as complete, without the moments between. */
  private hasFailed(index: number): boolean {
    if (index < 0)
      return false;
    const own = this.first[index];
    if (!own.has('complete') || moments.slice(1, 4).some((moment) => own.has(moment)))
      return false;
    return this.loads(index).every((load) => !isDelivered(load) || load.fault !== null);
  }

  /** What is wrong with the time of an event that came; empty where nothing is. */
  private disorder(event: string, index: number): string {
    const own = this.first[index];
    const time = own.get(event)!;
    const start = own.get('start');
    const step = moments.indexOf(event);
    if (step < 0)
      return start !== undefined && time < start - tolerance && event !== 'creativeView' ? 'before start' : '';
    const before = moments.slice(step + 1).find((moment) => (own.get(moment) ?? Infinity) < time - tolerance);
    if (before)
      return `after ${before}`;
    if (step === 0 || start === undefined || this.hasFailed(index))
      return '';
    // The library drops fractions of the moment's second and looks once a second.
    const due = Math.trunc(this.ad.creatives[index].duration * 0.25 * step) * 1000;
    const least = event === 'complete' ? due - 1000 : due - 750;
    return time - start < least ? `${((start + due - time) / 1000).toFixed(1)} s early` : '';
  }
}

export interface Totals {
  received: number;
  missing: number;
  doubled: number;
  disorder: number;
}

export function totals(ledgers: Ledger[]): Totals {
  const count = (...states: State[]): number =>
    ledgers.reduce((sum, ledger) => sum + ledger.beacons.filter((beacon) => states.includes(beacon.state)).length, 0);
  return {received: count('received'), missing: count('missing', 'failed'), doubled: count('doubled'), disorder: count('disorder')};
}
