import {h} from 'preact';
import {diff} from './diff';
import {bodyText} from './har';
import {Line, Req} from './records';
import {isVAST, store} from './store';
import {JSONTree, XMLTree} from './tree';

function quoted(text: string): string {
  return `'${text.replace(/'/g, `'\\''`)}'`;
}

function curl(request: Req): string {
  const details = request.details!;
  const skipped = new Set(['host', 'content-length', 'connection']);
  const headers = Object.entries(details.headers).filter(([name]) => !skipped.has(name));
  const body = bodyText(details.body);
  return ['curl --cacert authority.pem', request.method === 'GET' ? '' : `-X ${request.method}`,
          ...headers.map(([name, value]) => `-H ${quoted(`${name}: ${value}`)}`),
          body ? `--data-raw ${quoted(body)}` : '', quoted(store.address(request))].filter((part) => part).join(' ');
}

async function copy(text: string): Promise<void> {
  try {
    await navigator.clipboard.writeText(text);
    store.say('Copied.');
  } catch {
    store.say(text);
  }
}

/** Requests of one kind differ by transaction and identifiers only. */
function kindOf(request: Req): string {
  const path = request.transaction ? request.path.replace(request.transaction, '') : request.path;
  return `${request.method} ${path}`;
}

function previousOf(request: Req): Req | null {
  const list = store.list();
  const at = list.indexOf(request);
  for (let index = at - 1; index >= 0; --index)
    if (kindOf(list[index]) === kindOf(request))
      return list[index];
  return null;
}

function pretty(text: string): string {
  try {
    return JSON.stringify(JSON.parse(text), null, 2);
  } catch {
    return text;
  }
}

/** The pair's half that is shown, as text. */
function textOf(request: Req, half: 'request' | 'response'): string {
  const details = request.details;
  if (!details)
    return '';
  const headers = Object.entries(half === 'request' ? details.headers : details.responseHeaders)
    .map(([name, value]) => `${name}: ${value}`).join('\n');
  const body = half === 'request' ? bodyText(details.body) : details.responseBody ?? '';
  const first = half === 'request' ? `${request.method} ${request.path}${request.query ? `?${request.query}` : ''}`
    : `${request.status}`;
  return `${first}\n${headers}\n\n${pretty(body)}`;
}

function Headers({values}: {values: Record<string, string>}): JSX.Element {
  return (
    <dl class="headers">
      {Object.entries(values).map(([name, value]) => <div key={name}><dt>{name}</dt><dd>{value}</dd></div>)}
    </dl>
  );
}

function Body({text, type}: {text: string; type: string}): JSX.Element {
  if (!text)
    return <p class="empty">{type.startsWith('image/') || type.startsWith('video/') ? `${type}: not kept` : 'No body'}</p>;
  if (type.includes('xml'))
    return <div class="tree"><XMLTree document={text} /></div>;
  try {
    return <div class="tree"><JSONTree value={JSON.parse(text)} /></div>;
  } catch {
    return <pre>{text}</pre>;
  }
}

function Half({request, half}: {request: Req; half: 'request' | 'response'}): JSX.Element {
  const details = request.details;
  if (request.end === null && half === 'response')
    return <p class="empty">The response is still being sent.</p>;
  if (!details)
    return <p class="empty">…</p>;
  if (store.isDiff) {
    const previous = previousOf(request);
    if (!previous)
      return <p class="empty">There is no earlier request of this kind.</p>;
    if (!previous.details) {
      void store.fetchDetails(previous);
      return <p class="empty">…</p>;
    }
    return (
      <pre class="diff" aria-label="Difference to the previous request of this kind">
        {diff(textOf(previous, half), textOf(request, half)).map((line, index) => (
          <div key={String(index)} class={line.mark === '+' ? 'added' : line.mark === '-' ? 'removed' : ''}>{line.mark} {line.text}</div>
        ))}
      </pre>
    );
  }
  if (store.isRaw)
    return <pre>{textOf(request, half)}</pre>;
  return (
    <div>
      <Headers values={half === 'request' ? details.headers : details.responseHeaders} />
      {half === 'request'
        ? <Body text={bodyText(details.body)} type={details.headers['content-type'] ?? ''} />
        : <Body text={details.responseBody ?? ''} type={request.type} />}
    </div>
  );
}

function Explanation({request}: {request: Req}): JSX.Element {
  const report = store.explanations.get(request.key);
  if (report === undefined)
    return <p class="empty">…</p>;
  if (typeof report === 'string')
    return <p class="problem">{report}</p>;
  const ads: Line[] = report.ads ?? [];
  const documents: Line[] = report.documents ?? [];
  const list = (notes: Line[] | undefined): JSX.Element[] =>
    (notes ?? []).map((note, index) => <li key={String(index)}><code>{note.path}</code> {note.reason}</li>);
  return (
    <div class="explanation">
      {report.error ? <p class="problem">{report.error.userInfo?.Reason ?? JSON.stringify(report.error)}</p> : null}
      <p>{ads.length ? `${ads.length} ad${ads.length > 1 ? 's' : ''}, wrappers merged:` : 'No ad: nothing can be shown.'}</p>
      {ads.map((ad, index) => (
        <p key={String(index)}>{ad.type} <b>{ad.identifier}</b>: {(ad.creatives ?? []).length} creatives,{' '}
          {(ad.impressions ?? []).length} impressions</p>
      ))}
      {documents.map((document, index) => (
        <div key={String(index)}>
          <h3>{document.url.replace(/^https?:\/\/[^/]+|\?.*$/g, '')}</h3>
          <ul>{list(document.passedOver)}{list(document.dropped)}</ul>
          {document.passedOver?.length || document.dropped?.length ? null : <p class="quiet">Nothing was ignored.</p>}
        </div>
      ))}
    </div>
  );
}

const faultKinds: {label: string; title: string; fault: (request: Req) => object}[] = [
  {label: '500', title: 'status 500', fault: () => ({status: 500})},
  {label: 'delay', title: 'three seconds late', fault: () => ({delay: 3})},
  {label: 'drop', title: 'the connection closes before the response', fault: () => ({drop: true})},
  {label: 'cut', title: 'the connection closes within the body',
   fault: (request) => ({cutBodyAfter: Math.max(1, Math.floor(request.bytes / 3))})},
  {label: 'slow', title: 'the response takes about ten seconds',
   fault: (request) => ({bytesPerSecond: Math.max(100, Math.ceil(request.bytes / 10))})},
];

function FaultButtons({request}: {request: Req}): JSX.Element {
  const path = request.path;
  return (
    <section class="panel faultSet" role="group" aria-label={`Fault on ${path}`}>
      <h2><span>Fault on <code>{path}</code></span></h2>
      <span class="choices">
        {[[1, 'once'], [3, '3×'], [0, 'always']].map(([times, label]) => (
          <label key={String(label)}><input type="radio" name="times" checked={store.times === times}
                 onChange={() => (store.times = times as number, store.changed())} />{label}</label>
        ))}
      </span>
      <span class="buttons">
        {faultKinds.map((kind) => (
          <button key={kind.label} title={kind.title} disabled={store.source === 'file'}
                  onClick={() => void store.addFault({path, ...kind.fault(request), ...(store.times ? {times: store.times} : {})})}>
            {kind.label}</button>
        ))}
      </span>
    </section>
  );
}

function ActiveFaults(): JSX.Element {
  return (
    <section class="panel faults">
      <h2>Active faults <button disabled={!store.faults.length} onClick={() => store.clearFaults()}>clear all</button></h2>
      <ul>
        {store.faults.length ? null : <li class="empty">None</li>}
        {store.faults.map((fault) => {
          const {path, number, times, ...rest} = fault;
          const what = Object.entries(rest).map(([name, value]) => value === true ? name : `${name} ${value}`).join(', ');
          return (
            <li key={String(number)}>
              <code>{path}</code> <span>{what}{times ? ` ×${times}` : ''}</span>
              <button aria-label={`Remove the fault on ${path}`} onClick={() => store.removeFault(number!)}>×</button>
            </li>
          );
        })}
      </ul>
    </section>
  );
}

export function Detail(): JSX.Element {
  const request = store.selection?.kind === 'request' ? store.selection.request : null;
  const tabs: ['request' | 'response' | 'vast', string][] = [['request', 'Request'], ['response', 'Response']];
  if (request && isVAST(request))
    tabs.push(['vast', 'VAST']);
  return (
    <div class="right">
      <section class="panel detail">
        <h2>Request</h2>
        {request === null ? <p class="empty">Choose a request.</p> : (
          <div class="pair">
            <div role="tablist" class="tabs">
              {tabs.map(([tab, label]) => (
                <button key={tab} role="tab" aria-selected={store.tab === tab ? 'true' : 'false'} onClick={() => {
                  store.tab = tab;
                  if (tab === 'vast')
                    void store.explain(request);
                  store.changed();
                }}>{label}</button>
              ))}
              <span class="gap" />
              <button aria-pressed={String(store.isRaw)} onClick={() => (store.isRaw = !store.isRaw, store.changed())}>raw</button>
              <button aria-pressed={String(store.isDiff)} onClick={() => (store.isDiff = !store.isDiff, store.changed())}
                      title="Difference to the previous request of this kind">diff</button>
              <button disabled={!request.details} title="Copy as a curl command" onClick={() => void copy(curl(request))}>curl</button>
            </div>
            <p class="address"><b>{request.method}</b> {request.path}{request.query ? <span class="quiet">?{request.query}</span> : null}</p>
            <div class="content" role="tabpanel" tabIndex={0}>
              {store.tab === 'vast' ? <Explanation request={request} /> : <Half request={request} half={store.tab} />}
            </div>
          </div>
        )}
      </section>
      {request && store.source === 'live' ? <FaultButtons request={request} /> : null}
      {store.source === 'live' ? <ActiveFaults /> : null}
    </div>
  );
}
