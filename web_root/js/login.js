// The login page: asks for the password, counts wrong entries, shows how long the login is locked.
import {login, query} from './api.js';
import {el, icon} from './dom.js';
import {unstorable, wireLength} from './gbk.js';
import {loadLanguage, preferredLanguage, rememberRecorderLanguage, t} from './i18n.js';
import {languageSwitch} from './language.js';
import {kWrongEntries, readLock, timeText, writeLock} from './lock.js';
import {Notice} from './notice.js';
import {sessionId, startSession} from './store.js';

const kSilenceMs = 4500;  // the service has waited for a recorder that says nothing
const kPasswordBytes = 127;
const kPages = /^(status|device|video|network|platforms|security|maintenance)$/;

const app = document.getElementById('app');
const ui = {};
let lockTimer = 0;

const say = (tone, text) => ui.notice.say(tone, text);

function setBusy(busy) {
  ui.button.disabled = busy;
  ui.input.readOnly = busy;
}

function showLocked(left) {
  const until = Date.now() + left * 1000;
  clearInterval(lockTimer);
  setBusy(true);
  say('bad', t('login.locked'));
  const tick = () => {
    const seconds = Math.ceil((until - Date.now()) / 1000);
    ui.left.hidden = seconds <= 0;
    ui.left.textContent = t('login.left', {time: timeText(Math.max(0, seconds))});
    if (seconds > 0) return;
    clearInterval(lockTimer);
    setBusy(false);
    say('info', t('login.open'));
  };
  tick();
  lockTimer = setInterval(tick, 1000);
}

async function countWrong(lock) {
  const count = lock.count + 1;
  say('busy', t('login.counting'));
  await writeLock(count);
  if (count >= kWrongEntries) return showLocked((await readLock()).left);
  setBusy(false);
  say('bad', t('login.wrong', {left: kWrongEntries - count}));
  ui.input.select();
  return null;
}

async function enter(lock, id) {
  startSession(id);
  if (!sessionId()) return say('bad', t('login.cookies'));
  if (lock.count > 0) await writeLock(0).catch(() => {});
  const page = location.hash.slice(1);
  return location.replace(`${kPages.test(page) ? page : 'status'}.html`);
}

// The service compares with an empty password when the recorder is silent: the lock comes first.
async function tryPassword(password) {
  const lock = await readLock();
  if (!lock.known) return say('bad', t('login.silent'));
  if (lock.left > 0) return showLocked(lock.left);
  const reply = await login(password);
  if (reply.result && reply.jsession) return enter(lock, reply.jsession);
  if (reply.ms >= kSilenceMs) return say('bad', t('login.silent'));
  return countWrong(lock);
}

async function submit(event) {
  event.preventDefault();
  if (ui.button.disabled) return;
  const password = ui.input.value;
  if (unstorable(password) || wireLength(password) > kPasswordBytes)
    return say('bad', t('login.impossible'));
  setBusy(true);
  say('busy', t('login.checking'));
  try {
    await tryPassword(password);
  } catch (fault) {
    if (!fault.kind) throw fault;
    say('bad', t(`load.${fault.kind}`));
  }
  if (ui.left.hidden) setBusy(false);
  return null;
}

function build() {
  document.title = `${t('login.title')} · ${t('brand')}`;
  const typed = ui.input ? ui.input.value : '';
  ui.input = el('input', {id: 'password', type: 'password', autocomplete: 'current-password'});
  ui.input.value = typed;
  ui.button = el('button', {type: 'submit', class: 'main'}, t('login.go'));
  ui.notice = new Notice();
  ui.left = el('p', {class: 'left', hidden: true});
  app.replaceChildren(el('main', {class: 'login'},
      el('div', {class: 'brand'}, icon('recorder'), el('span', {}, t('brand'))),
      el('h1', {}, t('login.title')),
      el('form', {novalidate: true, onsubmit: submit},
          el('input', {type: 'text', autocomplete: 'username', value: 'admin', hidden: true}),
          el('div', {class: 'field'}, el('label', {for: 'password', class: 'label'},
              t('password')), ui.input),
          ui.button, ui.notice.node, ui.left),
      languageSwitch()));
  app.hidden = false;
  if (location.hash === '#moved') say('info', t('login.moved'));
}

async function followRecorderLanguage() {
  const {result, strLanguage} = await query('get_LangInfo');
  if (!result) return;
  const before = preferredLanguage();
  rememberRecorderLanguage(strLanguage);
  if (preferredLanguage() === before || ui.button.disabled) return;
  await loadLanguage(['']);
  build();
  ui.input.focus();
}

async function start() {
  await loadLanguage(['']);
  build();
  ui.input.focus();
  try {
    await followRecorderLanguage();
    const lock = await readLock();
    if (lock.left > 0) showLocked(lock.left);
  } catch {
    // An unreachable recorder is told when somebody logs in.
  }
}

start();
