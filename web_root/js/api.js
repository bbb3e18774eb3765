// The only script that talks to the recorder: one request at a time, as the service serves them,
// each with a limit, as some get no answer. Replies are texts by key (reply.js).
import {encodeGbk, percentEncode} from './gbk.js';
import {decodeReply, readReply} from './reply.js';
import {sessionId} from './store.js';

// kind: 'noservice' no answer in time, 'lost' no connection, 'unreadable' no answer of the
// service's, 'refused' no valid session.
export class Fault extends Error {
  constructor(kind) {
    super(kind);
    this.kind = kind;
  }
}

// A silent recorder costs the service 5 s an exchange, an accepted set 2 s more, and somebody
// else's request may come first.
const kWaitMs = 12000;
const kLongWaitMs = 20000;  // two exchanges, or the whole configuration
const kGraceMs = 1500;  // a style sheet may come that much later than a file asked for after it
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

// Sends form values in the recorder's character set. Adds the duration: only an accepted set takes
// the time of a restart.
export const send = (endpoint, values, encode = encodeGbk) => inTurn(async () => {
  const begin = performance.now();
  const reply = await ask(endpoint, form(values, encode));
  return {...reply, ms: performance.now() - begin};
});

// The configuration travels as UTF-8; the service converts it.
export const sendConfig = (xml) =>
  send('import_CfgFile', {strFD_CfgPara: xml}, (text) => new TextEncoder().encode(text));

// The service makes a session for requests that name the login page; some browsers withhold the
// Referer.
export const login = (password) =>
  send('cmp_UserSecurity?from=login.html', {strUserName: 'admin', strFD_AdminPasswd: password});

// The service's clock in seconds, from the header of a small file.
async function readClock() {
  const {reply} = await request('favicon.svg', {}, kWaitMs);
  return Math.floor(Date.parse(reply.headers.get('Date')) / 1000);
}
export const serviceTime = () => inTurn(readClock);

export const sheetUrl = (name) => `${name}?time=${Date.now()}&SessionID=${sessionId()}`;

// begin() asks for guarded style sheets and gives their promises. A refused one is never answered:
// it counts as refused when a file asked for after it has long arrived.
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
