import {h} from 'preact';
import {Beacon, State} from './ledger';
import {Req} from './records';
import {choose} from './timeline';
import {store, View} from './store';

const marks: Record<State, string> = {
  waiting: '…', received: '✔', missing: '✖', failed: '✖', doubled: '⚠', disorder: '⚠', 'not due': '·', elsewhere: '·',
};

const words: Record<State, string> = {
  waiting: 'waiting', received: 'received', missing: 'missing', failed: 'failed', doubled: 'doubled',
  disorder: 'out of order', 'not due': 'not due', elsewhere: 'elsewhere',
};

const classes: Record<State, string> = {
  waiting: '', received: 'good', missing: 'bad', failed: 'bad', doubled: 'warn', disorder: 'warn', 'not due': 'quiet',
  elsewhere: 'quiet',
};

function timeOf(beacon: Beacon, start: number | null): string {
  const first = beacon.requests[0];
  return first && start !== null ? `${first.begin >= start ? '+' : '−'}${(Math.abs(first.begin - start) / 1000).toFixed(2)} s` : '';
}

function sectionsOf(beacons: Beacon[]): [string, Beacon[]][] {
  const sections = new Map<string, Beacon[]>();
  for (const beacon of beacons)
    sections.set(beacon.section, [...(sections.get(beacon.section) ?? []), beacon]);
  return [...sections];
}

/** Where several documents track one event: whose URL it is, as its path tells. */
function sourceOf(beacon: Beacon, beacons: Beacon[]): string {
  const isShared = beacons.some((other) => other !== beacon && other.event === beacon.event);
  return isShared ? beacon.url.replace(/[?#].*$/, '').split('/').slice(-3, -1).join('/') : '';
}

interface RowValues {
  key?: string;
  beacon: Beacon;
  source: string;
  start: number | null;
  onChoose: (request: Req) => void;
}

function BeaconRow({beacon, source, start, onChoose}: RowValues): JSX.Element {
  const request = beacon.requests[0];
  return (
    <tr class={classes[beacon.state]} title={`${beacon.url}\n${beacon.note}`} onClick={() => request && onChoose(request)}>
      <td>{request ? <button class="link">{beacon.event}</button> : beacon.event}</td>
      <td class="state"><span aria-hidden="true">{marks[beacon.state]}</span> {words[beacon.state]}
        {beacon.note || source ? <span class="quiet"> {beacon.note || source}</span> : null}</td>
      <td class="when">{timeOf(beacon, start)}</td>
    </tr>
  );
}

/** In one row: a document tracks far more than one showing brings. */
function NotDue({beacons}: {beacons: Beacon[]; key?: string}): JSX.Element {
  const reasons = [...new Set(beacons.filter((beacon) => /^the /.test(beacon.note)).map((beacon) => beacon.note))];
  return (
    <tr class="quiet" hidden={!beacons.length}>
      <td colSpan={3} title={beacons.map((beacon) => `${beacon.event}: ${beacon.note}`).join('\n')}>
        <span aria-hidden="true">·</span> not due: {[...new Set(beacons.map((beacon) => beacon.event))].join(', ')}
        {reasons.length ? ` (${reasons.join(', ')})` : ''}</td>
    </tr>
  );
}

export function LedgerPanel({view}: {view: View}): JSX.Element {
  const ads = view.groups.filter((group) => group.kind === 'ad');
  const shown = ads.find((group) => group.key === store.ledgerGroup) ?? ads[ads.length - 1];
  const ledger = shown && view.ledgers.get(shown.key);
  return (
    <section class="panel ledger">
      <h2>Beacons{shown ? <span> of <select aria-label="Ad" value={shown.key} onChange={(event: Event) => {
        store.ledgerGroup = (event.target as HTMLSelectElement).value;
        store.changed();
      }}>{[...ads].reverse().map((group) => <option key={group.key} value={group.key}>{group.title}</option>)}</select></span> : null}</h2>
      {ledger && ledger.chain.length > 1
        ? <p class="chain" title="Wrapper chain">{ledger.chain.map((ad) => ad.isWrapper ? ad.id || 'wrapper' : `${ad.id} (inline)`).join(' → ')}</p> : null}
      <div class="content" tabIndex={0}>
        {!ledger || !ledger.beacons.length ? <p class="empty">{shown ? 'This ad has no tracking URL.' : 'No ad yet.'}</p> : (
          <table>
            <thead class="unseen"><tr><th>Beacon</th><th>State</th><th>When</th></tr></thead>
            <tbody>
              {sectionsOf(ledger.beacons).map(([section, beacons]) => [
                <tr key={`s ${section}`} class="section"><th colSpan={3} scope="rowgroup">{section}</th></tr>,
                ...beacons.filter((beacon) => beacon.state !== 'not due').map((beacon) => (
                  <BeaconRow key={`${section} ${beacon.event} ${beacon.url}`} beacon={beacon} source={sourceOf(beacon, beacons)} start={ledger.start}
                             onChoose={(request) => choose({key: '', group: shown, request, event: null})} />
                )),
                <NotDue key={`n ${section}`} beacons={beacons.filter((beacon) => beacon.state === 'not due')} />,
              ])}
            </tbody>
          </table>
        )}
      </div>
    </section>
  );
}
