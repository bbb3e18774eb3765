// The sign-in: a separate document, because its name is part of the service's interface.
import {render} from 'preact';
import {useEffect} from 'preact/hooks';
import {sessionId} from './recorder/gate';
import {draftsWait} from './state/memory';
import {loadPreferences} from './state/preferences';
import {look, patch, whenChanged} from './state/signIn';
import {get} from './state/store';
import {addWords, t} from './words';
import {login as en} from './words/en-login';
import {login as zh} from './words/zh-login';
import {Login} from './views/Login';
import {useChanges, useStore} from './views/parts/hooks';

const kMoved = 'moved';
const kOpen = 'open';  // from the bare address: whoever has a session goes on
const asked = location.hash.replace(/^#\/?/, '');
const script = document.currentScript;
const app = (script && script.getAttribute('data-app')) || '';

// The page that was requested.
const go = () => location.replace(`app.html#/${[kMoved, kOpen].includes(asked) ? '' : asked}`);

let fetched = false;

// The application loads while the password is typed.
function prefetch() {
  if (fetched) return;
  fetched = true;
  const link = document.createElement('link');
  link.rel = 'prefetch';
  link.href = app;
  document.head.appendChild(link);
}

function App() {
  useStore();
  useChanges(whenChanged);
  const {language} = get();
  useEffect(() => { document.title = `${t('login.title')} · ${t('brand')}`; }, [language]);
  return <Login go={go} prefetch={prefetch} />;
}

function start() {
  if (asked === kOpen && sessionId()) return go();
  const root = document.getElementById('app')!;
  addWords('en', en);
  addWords('zh', zh);
  loadPreferences();
  root.textContent = '';
  if (asked === kMoved) patch({note: {kind: 'moved'}});
  else if (draftsWait()) patch({note: {kind: 'kept'}});
  render(<App />, root);
  return void look();
}

start();
