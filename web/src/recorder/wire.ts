// The only module that talks to the recorder's service. Each request has a time-out, because some
// get no answer. It knows no page.
import {Fault, kindOf} from './fault';
import {encodeGbk, percentEncode} from './gbk';
import {Queue} from './queue';
import {decodeReply, readReply, type Query, type Reply} from './replies';

// A silent recorder costs the service 5 s per exchange, an accepted set 2 s more, and somebody
// else's request may come first.
const kWaitMs = 12000;
const kLongWaitMs = 20000;  // two exchanges, or the whole configuration
const kTwoExchanges = /^(?:get_LockOfPassword|get_WifiInfo|[gs]et_GB28181Info|\w+_CfgFile)/;
const kClockFile = 'favicon.svg';

export interface Timed extends Reply { ms: number }
type Form = Record<string, string>;

// Called at the end of every request; the recorder's health follows from that alone.
export interface Witness {
  heard(reply: Timed): void;
  failed(kind: Fault['kind']): void;
}

let witness: Witness = {heard() {}, failed() {}};
export const setWitness = (next: Witness) => { witness = next; };

export const queue = new Queue();

interface Got { reply: Response; bytes: Uint8Array }

export async function request(url: string, options: RequestInit, waitMs: number): Promise<Got> {
  const control = new AbortController();
  const timer = setTimeout(() => control.abort(), waitMs);
  try {
    const reply = await fetch(url, {cache: 'no-store', signal: control.signal, ...options});
    return {reply, bytes: new Uint8Array(await reply.arrayBuffer())};
  } catch {
    throw new Fault(control.signal.aborted ? 'serviceSilent' : 'lost');
  } finally {
    clearTimeout(timer);
  }
}

async function exchange(endpoint: string, options: RequestInit): Promise<Timed> {
  const begin = Date.now();
  const {bytes} = await request(`/${endpoint}`, options,
      kTwoExchanges.test(endpoint) ? kLongWaitMs : kWaitMs);
  const reply = readReply(endpoint.replace(/\?.*/, ''), decodeReply(bytes));
  if (!reply) throw new Fault('unreadable');
  return {...reply, ms: Date.now() - begin};
}

// A configuration that is too long for the service gets no answer, although nothing is wrong with
// the service.
async function explain(endpoint: string, kind: Fault['kind']): Promise<Fault['kind']> {
  if (endpoint !== 'export_CfgFile' || kind !== 'serviceSilent') return kind;
  return readClock().then(() => 'unreadable' as const, () => kind);
}

async function ask(endpoint: string, options: RequestInit): Promise<Timed> {
  try {
    const reply = await exchange(endpoint, options);
    witness.heard(reply);
    return reply;
  } catch (caught) {
    const kind = await explain(endpoint, kindOf(caught));
    witness.failed(kind);
    throw new Fault(kind);
  }
}

export interface Turn { group?: string; urgent?: boolean }

// Reads a section.
export const query = (endpoint: Query, {group, urgent}: Turn = {}) =>
  queue.add(() => ask(endpoint, {}), group, urgent);

type Encode = (text: string) => Uint8Array;

function formOptions(values: Form, encode: Encode): RequestInit {
  return {
    method: 'POST',
    headers: {'Content-Type': 'application/x-www-form-urlencoded'},
    body: Object.keys(values)
        .map((key) => `${key}=${percentEncode(encode(values[key] || ''))}`).join('&'),
  };
}

// Sends form values in the recorder's character set. Only an accepted set takes the time of a
// restart.
export const send = (endpoint: string, values: Form, encode: Encode = encodeGbk) =>
  queue.add(() => ask(endpoint, formOptions(values, encode)), 'send', true);

// A configuration is sent as UTF-8; the service converts it.
export const sendConfig = (xml: string) =>
  send('import_CfgFile', {strFD_CfgPara: xml}, (text) => new TextEncoder().encode(text));

// The service creates a session for requests that name the login page; some browsers omit the
// Referer.
export const login = (password: string) =>
  send('cmp_UserSecurity?from=login.html', {strUserName: 'admin', strFD_AdminPasswd: password});

// The service's clock in seconds, from the header of a small file.
export async function readClock(): Promise<number> {
  const {reply} = await request(kClockFile, {}, kWaitMs);
  return Math.floor(Date.parse(reply.headers.get('Date') || '') / 1000);
}
export const serviceTime = () => queue.add(readClock, 'send', true);

// A file of the deployment's own beside the pages; null where there is none.
export async function readFile(name: string): Promise<Uint8Array | null> {
  const {reply, bytes} = await request(name, {}, kWaitMs);
  return reply.ok ? bytes : null;
}

// Whether anything answers at another address of the recorder.
export async function answers(origin: string): Promise<boolean> {
  try {
    await request(`${origin}/${kClockFile}?${Date.now()}`, {mode: 'no-cors'}, 3000);
    return true;
  } catch {
    return false;
  }
}
