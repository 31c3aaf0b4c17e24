import {h} from 'preact';
import {Group} from './groups';
import {Ledger, totals} from './ledger';
import {HostEvent, Req} from './records';
import {hostLane, store, View} from './store';

export const rowHeight = 24;

export interface Row {
  key: string;
  group: Group | null; // null: the host's lane
  request: Req | null;
  event: HostEvent | null;
}


function matches(request: Req, words: string[]): boolean {
  const text = `${request.method} ${request.status} ${request.path}?${request.query} ${request.transaction ?? ''}`.toLowerCase();
  return words.every((word) => text.includes(word));
}

/** The rows that are unfolded and fit the filter. */
export function rowsOf(view: View): Row[] {
  const words = store.filter.toLowerCase().split(/\s+/).filter((word) => word);
  const rows: Row[] = [];
  const events = store.source === 'live' ? store.hostEvents : [];
  if (events.length && !words.length) {
    rows.push({key: hostLane, group: null, request: null, event: null});
    if (!store.folded.has(hostLane))
      events.forEach((event, index) => rows.push({key: `h${index}`, group: null, request: null, event}));
  }
  for (const group of view.groups) {
    const fitting = words.length ? group.requests.filter((request) => matches(request, words)) : group.requests;
    if (!fitting.length)
      continue;
    rows.push({key: group.key, group, request: null, event: null});
    if (!store.folded.has(group.key) || words.length)
      for (const request of fitting)
        rows.push({key: `r${request.key}`, group, request, event: null});
  }
  return rows;
}

export function isSelected(row: Row): boolean {
  return row.request ? store.selection?.kind === 'request' && store.selection.request.key === row.request.key
    : store.selection?.kind === 'group' && store.selection.group === row.key;
}

export function choose(row: Row): void {
  if (row.group?.kind === 'ad')
    store.ledgerGroup = row.group.key;
  if (row.request) {
    void store.select(row.request);
  } else if (!row.event) {
    store.selection = {kind: 'group', group: row.key};
    store.changed();
  }
}

function fold(row: Row, isFolded?: boolean): void {
  const key = row.group?.key ?? hostLane;
  const folds = isFolded ?? !store.folded.has(key);
  store.folded[folds ? 'add' : 'delete'](key);
  store.changed();
}

function onKey(event: KeyboardEvent, rows: Row[]): void {
  const at = rows.findIndex(isSelected);
  const go = (index: number): void => {
    const row = rows[Math.max(0, Math.min(rows.length - 1, index))];
    if (!row)
      return;
    choose(row);
    const top = rows.indexOf(row) * rowHeight;
    const list = event.currentTarget as HTMLElement;
    if (top < list.scrollTop)
      list.scrollTop = top;
    else if (top + rowHeight > list.scrollTop + list.clientHeight)
      list.scrollTop = top + rowHeight - list.clientHeight;
  };
  const page = Math.floor(store.scroll.height / rowHeight) - 1;
  const moves: Record<string, () => void> = {
    ArrowDown: () => go(at + 1),
    ArrowUp: () => go(at - 1),
    PageDown: () => go(at + page),
    PageUp: () => go(at - page),
    Home: () => go(0),
    End: () => go(rows.length - 1),
    ArrowLeft: () => rows[at] && fold(rows[at], true),
    ArrowRight: () => rows[at] && fold(rows[at], false),
    Enter: () => rows[at] && !rows[at].request && fold(rows[at]),
  };
  const move = moves[event.key];
  if (!move)
    return;
  event.preventDefault();
  move();
}

/** A group's time from its first request to its last, as the width of the bars' column. */
function spanOf(group: Group | null): [number, number] {
  const now = store.source === 'live' ? Date.now() : 0;
  if (!group) {
    const events = store.hostEvents;
    const length = Math.max(events[events.length - 1].time - events[0].time, 1000);
    return [events[0].time, events[0].time + length * 1.03];
  }
  const begin = group.requests[0].begin;
  const end = group.requests.reduce((last, request) => Math.max(last, request.end ?? now), begin);
  const length = Math.max(end - begin, 1000);
  return [begin, begin + length * 1.03]; // so that the last one is seen
}

function statusText(request: Req): string {
  return request.end === null ? '…' : request.status === 0 ? '—' : String(request.status);
}

export function statusClass(request: Req): string {
  if (request.end === null)
    return 'running';
  return request.status >= 200 && request.status < 400 ? 'good' : 'bad';
}

/** What tells requests apart comes first: a tracking URL's event, an ad request's placement. */
function shortPath(request: Req): string {
  if (request.path.startsWith('/ping/')) {
    const parts = request.path.split('/');
    return `${parts[parts.length - 1]} ${parts.slice(2, -1).join('/')}`;
  }
  const path = request.transaction ? request.path.replace(request.transaction, '…') : request.path;
  const placement = request.path === '/ad/req' ? ` ${new URLSearchParams(request.query).get('placement') ?? ''}` : '';
  return path + placement;
}

function duration(milliseconds: number): string {
  return milliseconds < 1000 ? `${Math.round(milliseconds)} ms` : `${(milliseconds / 1000).toFixed(1)} s`;
}

function Bar({begin, end, span, state}: {begin: number; end: number; span: [number, number]; state: string}): JSX.Element {
  const scale = 100 / (span[1] - span[0]);
  const style = `left:${(begin - span[0]) * scale}%;width:max(4px,${(end - begin) * scale}%)`;
  return <span class={`bar ${state}`} style={style} />;
}

function GroupRow({row, ledger}: {row: Row; ledger: Ledger | undefined}): JSX.Element {
  const group = row.group;
  const isFolded = store.folded.has(group?.key ?? hostLane);
  const counts = ledger ? totals([ledger]) : null;
  const faults = counts ? counts.missing + counts.doubled + counts.disorder : 0;
  const ticks = group ? store.hostEvents.filter((event) => event.kind !== 'log') : [];
  const span = spanOf(group);
  return (
    <span class="cells head">
      <span class="label">
        <button class="fold" tabIndex={-1} aria-label={isFolded ? 'unfold' : 'fold'}
                onClick={(event: Event) => (event.stopPropagation(), fold(row))}>{isFolded ? '▸' : '▾'}</button>
        <b>{group ? group.title : 'Host'}</b>
        <span class="quiet"> {group ? `${group.requests.length} req` : `${store.hostEvents.length} events`}</span>
        {counts ? <span class={faults ? 'bad' : 'good'}> {faults ? `✖${faults}` : counts.received ? '✔' : ''}</span> : null}
      </span>
      <span class="bars">
        {ticks.filter((tick) => tick.time >= span[0] && tick.time <= span[1]).slice(-100).map((tick, index) => (
          <span key={String(index)} class={`tick ${tick.kind}`} title={`${tick.kind} ${tick.text}`}
                style={`left:${(tick.time - span[0]) * 100 / (span[1] - span[0])}%`} />
        ))}
      </span>
    </span>
  );
}

function RequestRow({row, state}: {row: Row; state: string}): JSX.Element {
  const request = row.request!;
  const end = request.end ?? Date.now();
  const time = request.end === null ? 'running' : duration(request.end - request.begin);
  return (
    <span class="cells" title={`${request.method} ${request.path} · ${time} · ${request.bytes} bytes`}>
      <span class="label">
        <span class="method">{request.method}</span>
        <span class={`status ${statusClass(request)}`}>{statusText(request)}</span>
        {request.fault ? <span class="faulty" title={JSON.stringify(request.fault)}>⚡</span> : null}
        <span class="path">{shortPath(request)}</span>
      </span>
      <span class="bars"><Bar begin={request.begin} end={end} span={spanOf(row.group)} state={state} /></span>
    </span>
  );
}

function EventRow({event}: {event: HostEvent}): JSX.Element {
  return (
    <span class="cells host" title={event.text}>
      <span class="label"><span class="method">{event.kind}</span>
        <span class="path">{event.text.replace(/^[\d-]+ [\d:.]+ /, '')}</span></span>
      <span class="bars"><Bar begin={event.time} end={event.time} span={spanOf(null)} state={event.kind} /></span>
    </span>
  );
}

/** What became of a request's beacon, for the colour of its bar. */
function statesOf(view: View): Map<number, string> {
  const states = new Map<number, string>();
  for (const ledger of view.ledgers.values())
    for (const beacon of ledger.beacons)
      for (const request of beacon.requests)
        if (beacon.state !== 'received' && beacon.state !== 'waiting')
          states.set(request.key, 'bad');
  return states;
}

export function Timeline({view}: {view: View}): JSX.Element {
  const rows = rowsOf(view);
  const states = statesOf(view);
  const first = Math.max(0, Math.floor(store.scroll.top / rowHeight) - 8);
  const last = Math.min(rows.length, first + Math.ceil(store.scroll.height / rowHeight) + 16);
  const active = rows.find(isSelected);
  const take = (list?: Element): void => {
    if (!list)
      return;
    const element = list as HTMLElement;
    if (store.followsEnd && element.scrollHeight > element.clientHeight)
      element.scrollTop = element.scrollHeight;
    store.scroll = {top: element.scrollTop, height: element.clientHeight};
  };
  return (
    <section class="timeline panel">
      <h2>Transactions</h2>
      <div class="rows" role="tree" tabIndex={0} aria-label="Requests by transaction" ref={take}
           aria-activedescendant={active ? `row-${active.key}` : undefined}
           onKeyDown={(event: KeyboardEvent) => onKey(event, rows)}
           onScroll={(event: Event) => {
             const list = event.currentTarget as HTMLElement;
             store.followsEnd = list.scrollTop + list.clientHeight >= list.scrollHeight - rowHeight;
             store.scroll = {top: list.scrollTop, height: list.clientHeight};
             store.changed();
           }}>
        {rows.length ? null : <p class="empty">{store.source === 'file' ? 'Open a log to see its requests.'
          : store.filter ? 'No request fits the filter.' : 'No request yet: start the host.'}</p>}
        <div class="all" style={`height:${rows.length * rowHeight}px`}>
          {rows.slice(first, last).map((row, index) => (
            <div key={row.key} id={`row-${row.key}`} class={`row${isSelected(row) ? ' selected' : ''}`} role="treeitem"
                 aria-level={row.request || row.event ? 2 : 1} aria-selected={isSelected(row) ? 'true' : 'false'}
                 aria-posinset={first + index + 1} aria-setsize={rows.length}
                 aria-expanded={row.request || row.event ? undefined : String(!store.folded.has(row.group?.key ?? hostLane))}
                 style={`top:${(first + index) * rowHeight}px`} onClick={() => choose(row)}>
              {row.event ? <EventRow event={row.event} />
                : row.request ? <RequestRow row={row} state={states.get(row.request.key) ?? statusClass(row.request)} />
                : <GroupRow row={row} ledger={row.group ? view.ledgers.get(row.group.key) : undefined} />}
            </div>
          ))}
        </div>
      </div>
    </section>
  );
}
