import {h, render} from 'preact';
import {Detail} from './detail';
import {toHAR} from './har';
import {LedgerPanel} from './ledgerpanel';
import {store, View} from './store';
import {Timeline} from './timeline';
import {TV} from './tv';

function save(name: string, type: string, text: string): void {
  const link = document.createElement('a');
  link.href = URL.createObjectURL(new Blob([text], {type}));
  link.download = name;
  link.click();
  setTimeout(() => URL.revokeObjectURL(link.href), 10_000);
}

async function saveHAR(): Promise<void> {
  const {requests} = await store.everything();
  save('requests.har', 'application/json', JSON.stringify(toHAR(requests, (request) => store.address(request)), null, 1));
}

async function saveLog(): Promise<void> {
  const {lines} = await store.everything();
  save('requests.jsonl', 'application/x-ndjson', lines.map((line) => `${JSON.stringify(line)}\n`).join(''));
}

function Header({view}: {view: View}): JSX.Element {
  const session = [...view.groups].reverse().find((group) => group.kind === 'session' && group.session);
  const {received, missing, doubled, disorder} = view.totals;
  const isFile = store.source === 'file';
  return (
    <header>
      <span class={`connection ${isFile || store.isConnected ? 'good' : 'bad'}`}>
        ● {isFile ? store.fileName || 'no log' : store.isConnected ? 'live' : 'no server'}</span>
      {session ? <span class="quiet">session {session.session!.slice(0, 4)}…</span> : null}
      <span class="totals" role="status" aria-live="polite">
        <span class="good">✔ {received} received</span>
        <span class={missing ? 'bad' : 'quiet'}>✖ {missing} missing</span>
        <span class={doubled ? 'warn' : 'quiet'}>⚠ {doubled} doubled</span>
        <span class={disorder ? 'warn' : 'quiet'}>⇅ {disorder} out of order</span>
      </span>
      <input type="search" placeholder="filter: words of path, method, status" aria-label="Filter requests" value={store.filter}
             onInput={(event: Event) => (store.filter = (event.target as HTMLInputElement).value, store.changed())} />
      <button onClick={() => void saveHAR()} title="Save all requests as an HTTP archive">HAR</button>
      <button onClick={() => void saveLog()} disabled={isFile} title="Save the log: ad-server --replay serves it again">Log</button>
      <label class="button" tabIndex={0} title="Open a saved log; no server is needed"
             onKeyDown={(event: KeyboardEvent) => event.key === 'Enter' && (event.currentTarget as HTMLElement).click()}>Open
        <input type="file" accept=".jsonl,.json,.log" class="unseen" tabIndex={-1} onChange={async (event: Event) => {
          const input = event.target as HTMLInputElement;
          const file = input.files?.[0];
          if (file)
            store.openLog(file.name, await file.text());
          input.value = '';
        }} /></label>
      {isFile && location.protocol !== 'file:' ? <button onClick={() => location.reload()}>Live</button>
        : <button onClick={() => store.reset()} disabled={isFile}
                  title="Sessions, transactions, faults and requests as after the server's start">Reset</button>}
    </header>
  );
}

function Page(): JSX.Element {
  const view = store.view();
  return (
    <main class={store.source}>
      <Header view={view} />
      <div class="left">
        {store.source === 'live' ? <TV /> : null}
        <LedgerPanel view={view} />
      </div>
      <Timeline view={view} />
      <Detail />
      <p class="message" role="status">{store.message}</p>
    </main>
  );
}

const root = document.getElementById('page')!;
const draw = (): void => void render(<Page />, root, root.firstElementChild ?? undefined);
store.onChange(draw);
addEventListener('resize', () => store.changed());
draw();
void store.connect();
