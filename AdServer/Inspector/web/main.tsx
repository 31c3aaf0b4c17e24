import {h, render} from 'preact';

render(<p>The page of this server shows its log under /records and its events under /events.</p>, document.getElementById('page')!);
