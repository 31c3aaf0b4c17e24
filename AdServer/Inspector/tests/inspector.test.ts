// The ledger, the grouping and the archive on logs of real runs: an ad of two videos that plays to its end (queue), an ad
// behind three wrappers that is shown twice and closed the second time (wrapped), an image ad (image).

import assert from 'node:assert/strict';
import {readFileSync} from 'node:fs';
import test from 'node:test';
import {endOfSession, group, Group} from '../web/groups';
import {toHAR} from '../web/har';
import {Beacon, ledgerOf, State} from '../web/ledger';
import {readLog, Req} from '../web/records';

function log(name: string): Req[] {
  return readLog(readFileSync(new URL(`${name}.jsonl`, process.env.INSPECTOR_LOGS), 'utf8'));
}

function ads(requests: Req[]): Group[] {
  return group(requests).filter((one) => one.kind === 'ad' && one.requests.some((request) => request.path.startsWith('/vast/')));
}

function judged(requests: Req[], ad = ads(requests)[0], now = Infinity): Beacon[] {
  return ledgerOf(ad, now, endOfSession(ad.session, requests, ad.requests[0].begin)).beacons;
}

/** "SECTION EVENT" of the beacons in that state. */
function inState(beacons: Beacon[], ...states: State[]): string[] {
  return beacons.filter((beacon) => states.includes(beacon.state)).map((beacon) => `${beacon.section} ${beacon.event}`);
}

const faults: State[] = ['missing', 'failed', 'doubled', 'disorder'];
const ping = (request: Req, event: string): boolean => request.path.endsWith(`/helion-reach-8s/${event}`);

test('an ad that plays to its end has every beacon once', () => {
  const beacons = judged(log('queue'));
  assert.deepEqual(inState(beacons, ...faults, 'waiting'), []);
  assert.deepEqual(inState(beacons, 'received').sort(), [
    'impressions impression', ...['creativeView', 'start', 'firstQuartile', 'midpoint', 'thirdQuartile', 'complete', 'mute', 'unmute']
      .map((event) => `helion-reach-8s ${event}`),
    ...['start', 'firstQuartile', 'midpoint', 'thirdQuartile', 'complete'].map((event) => `wildgrove-4s ${event}`),
  ].sort());
});

const changes: [string, (requests: Req[]) => Req[], State, string[]][] = [
  ['a beacon that did not come is missing', (all) => all.filter((one) => !ping(one, 'midpoint')), 'missing', ['helion-reach-8s midpoint']],
  ['an impression that did not come is missing', (all) => all.filter((one) => !one.path.endsWith('/impression')), 'missing',
   ['impressions impression']],
  ['a second start is missed although its video’s quartiles came', (all) => all.filter((one) => !one.path.endsWith('wildgrove-4s/start')),
   'missing', ['wildgrove-4s start']],
  ['a beacon that came twice is doubled', (all) => all.flatMap((one) => ping(one, 'start') ? [one, {...one, key: 1000}] : [one]),
   'doubled', ['helion-reach-8s start']],
  ['muting twice is not doubled', (all) => all.flatMap((one) => ping(one, 'mute') ? [one, {...one, key: 1000}] : [one]), 'doubled', []],
  ['a beacon that was refused has failed', (all) => all.map((one) => ping(one, 'complete') ? {...one, status: 500} : one), 'failed',
   ['helion-reach-8s complete']],
  ['a midpoint with the first quartile is early', (all) => {
    const quartile = all.find((one) => ping(one, 'firstQuartile'))!;
    return all.map((one) => ping(one, 'midpoint') ? {...one, begin: quartile.begin + 5, end: quartile.end} : one);
  }, 'disorder', ['helion-reach-8s midpoint']],
  ['what is never sent is out of order', (all) => all.map((one) => ping(one, 'mute') ? {...one, path: one.path.replace(/mute$/, 'skip')} : one),
   'disorder', ['helion-reach-8s skip']],
];
for (const [name, change, state, expected] of changes)
  test(name, () => assert.deepEqual(inState(judged(change(log('queue'))), state), expected));

test('during playback what is still to come waits, also while the video stalls', () => {
  const all = log('queue');
  const midpoint = all.find((one) => ping(one, 'midpoint'))!.begin;
  const until = (time: number): Req[] => all.filter((one) => one.begin <= time);
  const now = judged(until(midpoint), undefined, midpoint + 3000);
  assert.deepEqual(inState(now, ...faults), []);
  assert.deepEqual(inState(now, 'waiting').slice(0, 2), ['helion-reach-8s thirdQuartile', 'helion-reach-8s complete']);
  // Nothing loads, nobody has paused: after that long it will not come.
  assert.ok(inState(judged(until(midpoint), undefined, midpoint + 12_000), 'missing').includes('helion-reach-8s complete'));
  const stalled = until(midpoint).map((one) => one.type.startsWith('video/') ? {...one, end: null} : one);
  assert.deepEqual(inState(judged(stalled, undefined, midpoint + 60_000), ...faults), []);
  const paused = [...until(midpoint), {...all.find((one) => ping(one, 'midpoint'))!, key: 1000,
                                       path: all.find((one) => ping(one, 'midpoint'))!.path.replace('midpoint', 'pause')}];
  assert.deepEqual(inState(judged(paused, undefined, midpoint + 60_000), ...faults), []);
});

test('a video that cannot be played owes no moment between start and complete', () => {
  const failed = log('queue').filter((one) => !/(helion-reach-8s|wildgrove-4s)\/(first|mid|third)/.test(one.path))
    .map((one) => one.path.endsWith('.mp4') ? {...one, status: 404} : one);
  assert.deepEqual(inState(judged(failed), ...faults), []);
});

test('a wrapper chain is followed and each ad of the same document is judged by itself', () => {
  const all = log('wrapped');
  const both = ads(all);
  assert.equal(both.length, 2);
  const [first, second] = both.map((ad) => judged(all, ad));
  assert.deepEqual(inState(first, ...faults, 'waiting'), []);
  assert.equal(inState(first, 'received').filter((name) => name === 'helion-reach-8s start').length, 4);
  assert.equal(inState(first, 'received').filter((name) => name.startsWith('impressions')).length, 5);
  assert.deepEqual(inState(second, ...faults, 'waiting'), []);
  assert.equal(inState(second, 'received').filter((name) => name === 'helion-reach-8s close').length, 4);
  assert.ok(inState(second, 'not due').includes('helion-reach-8s complete'));
});

test('two ads at once do not take each other’s beacons', () => {
  const all = log('wrapped');
  const [first, second] = ads(all);
  const shift = second.requests[0].begin - first.requests[0].begin - 500;
  const mixed = all.map((one) => one.transaction === second.transaction
    ? {...one, begin: one.begin - shift, end: one.end! - shift} : one).sort((one, other) => one.begin - other.begin);
  const lost = mixed.filter((one) => !(one.transaction === first.transaction && one.path.endsWith('northbeam-7741/impression')));
  assert.deepEqual(ads(mixed).map((ad) => inState(judged(mixed, ad), ...faults)), [[], []]);
  assert.deepEqual(ads(lost).map((ad) => inState(judged(lost, ad), ...faults)), [['impressions impression'], []]);
});

test('a log over a restart of the server has its runs apart', () => {
  const text = ['queue', 'image', 'queue'].map((name) => readFileSync(new URL(`${name}.jsonl`, process.env.INSPECTOR_LOGS), 'utf8'));
  const runs = text.map((run, index) => run.replace(/"(time|end)":"2026-11-\d\d/g, `"$1":"2026-12-0${index + 1}`));
  const all = readLog(runs.join(''));
  const groups = group(all);
  assert.equal(new Set(all.map((one) => one.key)).size, all.length);
  assert.deepEqual(groups.filter((one) => one.kind === 'session').length, 3);
  // The same transaction twice, as in a replay: each run's ad has its own beacons.
  assert.deepEqual(ads(all).map((ad) => inState(judged(all, ad), ...faults)), [[], []]);
});

test('an image ad’s impression is received, and one after a click is missed', () => {
  const all = log('image');
  const ad = group(all).find((one) => one.requests.some((request) => request.path.startsWith('/ad/imp/')))!;
  assert.deepEqual(inState(judged(all, ad), 'received').map((name) => name.split(' ')[1]), ['impression']);
  const click = all.map((one) => one.path.startsWith('/ad/imp/') ? {...one, path: one.path.replace('/imp/', '/click/')} : one);
  const clicked = group(click).find((one) => one.requests.some((request) => request.path.startsWith('/ad/click/')))!;
  assert.deepEqual(inState(judged(click, clicked), 'missing').map((name) => name.split(' ')[1]), ['impression']);
});

test('a wrong line of a log is named', () => {
  assert.throws(() => readLog('{"path":"/a","time":"2026-11-22T00:00:00Z"}\n{"path":1}\n'), /Line 2/);
  assert.throws(() => readLog('nonsense'), /Line 1/);
});

test('an archive has what the format requires of each request', () => {
  const all = log('queue');
  const har = JSON.parse(JSON.stringify(toHAR([...all, {...all[0], end: null}], (one) => `https://localhost:8443${one.path}?${one.query}`)));
  assert.equal(har.log.version, '1.2');
  assert.equal(har.log.entries.length, all.length);
  for (const entry of har.log.entries) {
    assert.ok(entry.time >= 0 && !Number.isNaN(Date.parse(entry.startedDateTime)));
    assert.equal(entry.time, entry.timings.send + entry.timings.wait + entry.timings.receive);
    assert.ok(new URL(entry.request.url) && Array.isArray(entry.request.headers) && Array.isArray(entry.response.cookies));
    assert.equal(typeof entry.response.content.mimeType, 'string');
  }
  const ad = har.log.entries.find((entry: any) => entry.request.url.includes('/ad/req'));
  assert.deepEqual(ad.request.queryString.find((pair: any) => pair.name === 'placement')?.value, 'VideoQueue');
  assert.ok(JSON.parse(ad.response.content.text).txid);
});
