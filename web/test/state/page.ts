// Replaces what a browser provides for the state modules: storage, an address, a recorder that
// answers.

class Memory {
  private kept = new Map<string, string>();
  getItem(key: string) { return this.kept.get(key) || null; }
  setItem(key: string, value: string) {
    this.kept.set(key, value);
    Object.defineProperty(this, key, {value, enumerable: true, configurable: true});
  }
  removeItem(key: string) {
    this.kept.delete(key);
    Reflect.deleteProperty(this, key);
  }
  text() { return [...this.kept.values()].join('\n'); }
}

export const local = new Memory();
export const session = new Memory();
export const asked: string[] = [];
export const moves: string[] = [];

// Answers by endpoint; for a missing one the service does not answer.
export const answers: Record<string, string | (() => string | Promise<string>)> = {};
export const bodies: string[] = [];
export const cookie = {value: ''};

// A missing answer ends with the request's own time-out.
const cut = (answer: string | Promise<string>, {signal}: RequestInit) => Promise.race([answer,
  new Promise<never>((_, fail) => {
    signal?.addEventListener('abort', () => fail(new TypeError('aborted')));
  })]);

const reply = async (url: string, options: RequestInit) => {
  const name = url.replace(/^\//, '').replace(/\?.*/, '');
  asked.push(name);
  if (typeof options.body === 'string') bodies.push(options.body);
  const answer = answers[name];
  if (answer === undefined) throw new TypeError('no connection');
  return new Response(await cut(typeof answer === 'function' ? answer() : answer, options),
      {headers: {Date: 'Thu, 01 Jan 2026 00:00:00 GMT'}});
};

Object.assign(globalThis, {
  localStorage: local, sessionStorage: session,
  document: {hidden: false, get cookie() { return cookie.value; },
    set cookie(text: string) { cookie.value = text; }, documentElement: {lang: ''},
    addEventListener() {}},
  location: {hostname: '192.168.1.88', origin: 'http://192.168.1.88', hash: '',
    replace: (to: string) => moves.push(to), assign: (to: string) => moves.push(to)},
  scrollTo() {},
  fetch: (url: string, options: RequestInit) => reply(url, options),
});

Object.defineProperty(globalThis, 'navigator', {value: {language: 'en-GB'}, configurable: true});

export const signedIn = () => { cookie.value = `jsession=${'a'.repeat(32)}`; };

// Where most tests begin: signed in, nothing asked yet, and a recorder with these answers and the
// files that every page needs.
export function signedInTo(recorder: typeof answers) {
  signedIn();
  for (const list of [asked, bodies, moves]) list.length = 0;
  Object.assign(answers, {'page.css': '', 'favicon.svg': ''}, recorder);
}
