// The application behind the sign-in: one document, a page for each address behind "#/".
import {render} from 'preact';
import {useEffect, useLayoutEffect} from 'preact/hooks';
import {Fault, kindOf} from './recorder/fault';
import {passGate, sessionId, sheetUrl} from './recorder/gate';
import type {PageId} from './model/sections';
import {waiting} from './state/editing';
import {watchHealth, whenRecovered} from './state/health';
import {loadLabels} from './state/labels';
import {watchHistory} from './state/history';
import {loadPreferences} from './state/preferences';
import {read, readAgain, startRoute} from './state/route';
import {setScripts} from './state/scripts';
import {expire, setBuild, takeNewPages} from './state/session';
import {watchVisibility} from './state/status';
import {get} from './state/store';
import {addWords, t} from './words';
import {en} from './words/en';
import {login as enLogin} from './words/en-login';
import {zh} from './words/zh';
import {login as zhLogin} from './words/zh-login';
import {Device} from './views/Device';
import {Network} from './views/Network';
import {Dialogs} from './views/Dialogs';
import {Platforms} from './views/Platforms';
import {Later} from './views/Later';
import {Security} from './views/Security';
import {Shell} from './views/Shell';
import {Status} from './views/Status';
import {Video} from './views/Video';
import {useStore} from './views/parts/hooks';
import {keepFocus, noteFocus} from './views/parts/keepFocus';
import {saveHere} from './views/parts/saveHere';

const kViews: Record<PageId, () => preact.JSX.Element> = {
  status: Status, device: Device, video: Video, network: Network, platforms: Platforms,
  security: Security, maintenance: Later, settings: Later, fleet: Later,
};

function App() {
  useStore();
  const {page, language} = get();
  useEffect(() => {
    document.title = `${t(`page.${page}`)} · ${t('brand')}`;
  }, [page, language]);
  useLayoutEffect(keepFocus);
  const View = kViews[page];
  return <><Shell><View key={page} /></Shell><Dialogs /></>;
}

// The guarded sheets come with the first view; a refusal leads to the sign-in.
function sheet(name: string): Promise<void> {
  return new Promise((arrived, failed) => {
    const link = document.createElement('link');
    link.rel = 'stylesheet';
    link.href = sheetUrl(name);
    link.onload = () => arrived();
    link.onerror = () => failed(new Fault('lost'));
    document.head.appendChild(link);
  });
}

function askBeforeLeaving(event: BeforeUnloadEvent) {
  const {expired, transfer, fleet} = get();
  const busy = transfer.step && !transfer.moving;
  if (expired || !(busy || fleet.unkept || Object.keys(waiting()).length)) return;
  event.preventDefault();
  event.returnValue = '';
}

// A browser may restore the page as it was left, after a sign-out.
function leaveIfSignedOut(event: PageTransitionEvent) {
  if (event.persisted && !sessionId()) location.replace('login.html');
}

function openApp(root: HTMLElement) {
  watchHealth();
  watchHistory();
  whenRecovered(readAgain);
  watchVisibility();
  window.addEventListener('beforeunload', askBeforeLeaving);
  window.addEventListener('pageshow', leaveIfSignedOut);
  window.addEventListener('keydown', saveHere);
  window.addEventListener('focusin', noteFocus);
  root.textContent = '';
  render(<App />, root);
  read();
  void loadLabels();
}

async function start() {
  const root = document.getElementById('app')!;
  const own = document.currentScript ? document.currentScript.dataset : {};
  setBuild(own.build || '');
  setScripts(own);
  addWords('en', {...enLogin, ...en});
  addWords('zh', {...zhLogin, ...zh});
  loadPreferences();
  startRoute();
  if (!sessionId()) return expire();
  try {
    await passGate(Promise.all([sheet('page.css'), sheet('sets.css')]));
    const served = getComputedStyle(document.documentElement).getPropertyValue('--build').trim();
    if (await takeNewPages(served)) return;
  } catch (caught) {
    if (kindOf(caught) === 'refused') return expire();
  }
  openApp(root);
}

void start();
