// The session gate. It checks only requests for the two guarded style sheets and never answers
// refused ones: a request counts as refused if it has no answer when later ones have been answered.
import {Fault} from './fault';
import {readClock, request} from './wire';

// A sheet may come this much later than a file requested after it; on a slow link even later.
const kGraceMs = 1500;
const kGraceTimes = 3;
const kWaitMs = 12000;

// A cookie that ends with the browser and that its tabs share.
export function sessionId(): string | null {
  const match = /(?:^|;\s*)jsession=([0-9a-f]{32})(?:;|$)/.exec(document.cookie);
  return match ? match[1] || null : null;
}
export const startSession = (id: string) => {
  document.cookie = `jsession=${id}; path=/; SameSite=Strict`;
};
export const endSession = () => {
  document.cookie = 'jsession=; path=/; SameSite=Strict; max-age=0';
};

export const sheetUrl = (name: string) => `${name}?time=${Date.now()}&SessionID=${sessionId()}`;

// Something that is asked for behind a sheet, and comes when the service answers at all.
export type Witness = () => Promise<unknown>;

// Waits for what was asked for, or throws 'refused' when what was asked for behind it came alone.
export async function passGate<T>(arrival: Promise<T>, witness: Witness = readClock): Promise<T> {
  const begin = Date.now();
  const refusal = witness().then(() => new Promise<never>((_, fail) => {
    const grace = Math.max(kGraceMs, kGraceTimes * (Date.now() - begin));
    setTimeout(() => fail(new Fault('refused')), grace);
  }));
  refusal.catch(() => {});  // the arrival reports a connection lost here
  arrival.catch(() => {});
  return Promise.race([arrival, refusal]);
}

// Renews the session. Returns the guarded sheet's text, or throws 'refused'.
export async function renewSession(witness?: Witness): Promise<string> {
  if (!sessionId()) throw new Fault('refused');
  const sheet = request(sheetUrl('page.css'), {}, kWaitMs)
      .then(({bytes}) => new TextDecoder().decode(bytes));
  return passGate(sheet, witness);
}
