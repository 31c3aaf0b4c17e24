import {h} from 'preact';
import {placementOf} from './groups';
import {store} from './store';

/** The keyboard's keys and what they are on a remote. Menu is Escape, as on the device. */
const keys: Record<string, string> = {
  ArrowUp: 'Up', ArrowDown: 'Down', ArrowLeft: 'Left', ArrowRight: 'Right', Enter: 'Return', ' ': 'Return',
  Escape: 'Escape', Backspace: 'Escape', p: 'MediaTogglePlayPause', m: 'VolumeMute',
};

const remote: [string, string, string][] = [
  ['◀', 'Left', 'Left'], ['▲', 'Up', 'Up'], ['▼', 'Down', 'Down'], ['▶', 'Right', 'Right'], ['OK', 'Return', 'Select'],
  ['Menu', 'Escape', 'Menu'], ['Play', 'MediaTogglePlayPause', 'Play or pause'], ['Mute', 'VolumeMute', 'Mute'],
];

function onKey(event: KeyboardEvent, down: boolean): void {
  const key = keys[event.key];
  if (!key || event.ctrlKey || event.altKey || event.metaKey)
    return;
  event.preventDefault();
  store.press(key, down, event.repeat);
}

let placement = '';

function placements(): string[] {
  const asked = store.list().filter((request) => request.path === '/ad/req').map(placementOf);
  const known = store.campaigns.flatMap((one) => one.placements).filter((name) => name !== '*');
  return [...new Set([...asked, ...known])].filter((name) => name).sort();
}

export function TV(): JSX.Element {
  const names = placements();
  const at = placement || names[0] || '*';
  const next = store.campaigns.filter((one) => one.isNextAt.length);
  const campaign = next.find((one) => one.isNextAt.includes(at))?.name ?? '';
  return (
    <section class="panel tv">
      <h2>TV {store.isHostConnected ? null : <span class="quiet">{store.liveView ? 'no host' : 'no live view'}</span>}</h2>
      <div class="screen" tabIndex={0} role="application" aria-label="The TV: arrows, Return, Escape for Menu, p and m"
           onKeyDown={(event: KeyboardEvent) => onKey(event, true)} onKeyUp={(event: KeyboardEvent) => onKey(event, false)}>
        {store.isHostConnected
          ? <img alt="The host's screen" src={`${store.liveView}/live?width=640&count=${store.liveCount}`} />
          : <p class="empty">{store.liveView ? 'The host is not running.'
            : 'Start ad-server with --live-view and the host with -plugin virlostream.'}</p>}
      </div>
      <div class="remote" role="group" aria-label="Remote">
        {remote.map(([label, key, name]) => (
          <button key={key} aria-label={name} title={name} disabled={!store.isHostConnected}
                  onClick={() => store.press(key)}>{label}</button>
        ))}
      </div>
      <div class="next">
        <label>Next at <select value={at} aria-label="Placement" onChange={(event: Event) => {
          placement = (event.target as HTMLSelectElement).value;
          store.changed();
        }}>{['*', ...names].map((name) => <option key={name} value={name}>{name === '*' ? 'any placement' : name}</option>)}</select></label>
        <label>is <select value={campaign} aria-label="Campaign" onChange={(event: Event) => {
          void store.serveNext(at, (event.target as HTMLSelectElement).value);
        }}>
          <option value="">the usual one</option>
          {store.campaigns.map((one) => <option key={one.name} value={one.name}>{one.name.replace(/\.json$/, '')}</option>)}
        </select></label>
        <button disabled={!store.isHostConnected || at === '*'} onClick={() => void store.ask(at)}>Ask</button>
      </div>
      {next.map((one) => <p key={one.name} class="quiet">{one.name} is next at {one.isNextAt.join(', ')}.</p>)}
    </section>
  );
}
