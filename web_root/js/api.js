// The only script that talks to the recorder. One request at a time, because the service serves one
// at a time; a limit on each, because it leaves some without an answer. Replies come back as texts
// by key (see reply.js); failures as a Fault.
import {encodeGbk, percentEncode} from './gbk.js';
import {decodeReply, readReply} from './reply.js';
import {sessionId} from './store.js';

// How a request can fail: 'noservice' no answer in time, 'lost' no connection, 'unreadable' an
// answer that is none of the service's, 'refused' no valid session.
export class Fault extends Error {
  constructor(kind) {
    super(kind);
    this.kind = kind;
  }
}

// Milliseconds that a request may take. A silent recorder costs the service 5 s an exchange, an
// accepted set another 2 s, and somebody else's request may be served first.
const kWaitMs = 12000;
const kLongWaitMs = 20000;  // two exchanges, or the whole configuration
const kGraceMs = 1500;      // how much longer a style sheet may take than a file asked for later
const kTwoExchanges = new Set([
  'get_LockOfPassword', 'get_WifiInfo', 'get_GB28181Info', 'set_WifiInfo', 'set_GB28181Info',
  'import_CfgFile',
]);
const waitFor = (endpoint) => kTwoExchanges.has(endpoint) ? kLongWaitMs : kWaitMs;

let tail = Promise.resolve();

function inTurn(work) {
  const turn = tail.then(work);
  tail = turn.catch(() => {});
  return turn;
}

async function request(url, options, waitMs) {
  const control = new AbortController();
  const timer = setTimeout(() => control.abort(), waitMs);
  try {
    const reply = await fetch(url, {cache: 'no-store', signal: control.signal, ...options});
    return {reply, bytes: new Uint8Array(await reply.arrayBuffer())};
  } catch {
    throw new Fault(control.signal.aborted ? 'noservice' : 'lost');
  } finally {
    clearTimeout(timer);
  }
}

async function ask(endpoint, options) {
  const {bytes} = await request('/' + endpoint, options, waitFor(endpoint));
  const reply = readReply(endpoint.replace(/\?.*/, ''), decodeReply(bytes));
  if (!reply) throw new Fault('unreadable');
  return reply;
}

const form = (values, encode) => ({
  method: 'POST',
  headers: {'Content-Type': 'application/x-www-form-urlencoded'},
  body: Object.entries(values).map(([k, v]) => `${k}=${percentEncode(encode(v))}`).join('&'),
});

// Reads a section. The reply's result is false when the recorder did not answer the service.
export const query = (endpoint) => inTurn(() => ask(endpoint));

// Sends form values (texts, already with entities where wanted) in the recorder's character set.
// Adds the duration, which tells an accepted set (the service restarts) from a refused one.
export const send = (endpoint, values, encode = encodeGbk) => inTurn(async () => {
  const begin = performance.now();
  const reply = await ask(endpoint, form(values, encode));
  return {...reply, ms: performance.now() - begin};
});

// The configuration travels as UTF-8; the service converts it.
export const sendConfig = (xml) =>
  send('import_CfgFile', {strFD_CfgPara: xml}, (text) => new TextEncoder().encode(text));

// Checks the password. The service makes a session for requests that come from the login page, so
// the page is named where a browser withholds the Referer too.
export const login = (password) =>
  send('cmp_UserSecurity?from=login.html', {strUserName: 'admin', strFD_AdminPasswd: password});

// Compares a password without making a session.
export const comparePassword = (password) =>
  send('cmp_UserSecurity', {strUserName: 'admin', strFD_AdminPasswd: password});

// The service's clock in seconds, taken from the header of a small file.
async function readClock() {
  const {reply} = await request('favicon.svg', {}, kWaitMs);
  return Math.floor(Date.parse(reply.headers.get('Date')) / 1000);
}
export const serviceTime = () => inTurn(readClock);

export const sheetUrl = (name) => `${name}?time=${Date.now()}&SessionID=${sessionId()}`;

// Asks for guarded style sheets with `begin`, which gives their promises. A refused one is never
// answered: it counts as refused when a file that was asked for after it has long arrived.
export async function passGate(begin) {
  if (!sessionId()) throw new Fault('refused');
  const arrival = Promise.all(begin());
  const refusal = readClock().then(() => new Promise((_, fail) => {
    setTimeout(() => fail(new Fault('refused')), kGraceMs);
  }));
  refusal.catch(() => {});
  await Promise.race([arrival, refusal]);
}

// Renews the session; a Fault 'refused' says that it has ended.
export const renewSession = () => inTurn(async () => {
  const control = new AbortController();
  const options = {cache: 'no-store', signal: control.signal};
  const arrival = () => fetch(sheetUrl('page.css'), options).catch(() => {
    throw new Fault('lost');
  });
  try {
    await passGate(() => [arrival()]);
  } finally {
    control.abort();
  }
});

// Whether anything answers at another address of the recorder.
export async function answers(origin) {
  try {
    await request(`${origin}/favicon.svg?${Date.now()}`, {mode: 'no-cors'}, 3000);
    return true;
  } catch {
    return false;
  }
}
