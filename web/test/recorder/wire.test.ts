import {holdClock, tick} from '../clock';
import {answers, asked, bodies, cookie, signedIn} from '../state/page';
import assert from 'node:assert/strict';
import test, {beforeEach} from 'node:test';
import {passGate, renewSession, sessionId} from '../../src/recorder/gate';
import {login, query, send, sendConfig, setWitness} from '../../src/recorder/wire';

holdClock();

const never = () => new Promise<string>(() => {});
const settle = () => new Promise((resume) => { setImmediate(resume); });
// Lets time pass in steps, so that requests that begin meanwhile get their own time-outs.
async function pass(seconds: number) {
  for (let i = 0; i < seconds; i++) {
    await settle();
    tick(1000);
  }
  await settle();
}

const heard: string[] = [];
setWitness({heard: ({result}) => heard.push(String(result)), failed: (kind) => heard.push(kind)});

beforeEach(() => {
  for (const name of Object.keys(answers)) delete answers[name];
  answers['favicon.svg'] = '';
  for (const list of [asked, bodies, heard]) list.length = 0;
  signedIn();
});

test('a form travels in the recorder’s characters, a configuration in UTF-8', async () => {
  answers.set_LangInfo = answers.import_CfgFile = '{"result": 1 }';
  await send('set_LangInfo', {a: '车&page.css', b: ''});
  await sendConfig('车');
  assert.deepEqual(bodies, ['a=%B3%B5%26page%2Ecss&b=', 'strFD_CfgPara=%E8%BD%A6']);
});

test('a sign-in names the login page in its address', async () => {
  let url = '';
  const before = globalThis.fetch;
  globalThis.fetch = ((to: string, options: RequestInit) => {
    url = to;
    return before(to, options);
  }) as typeof fetch;
  answers.cmp_UserSecurity = '{ "jsession": "x", "result": 1 }';
  await login('geheim');
  globalThis.fetch = before;
  assert.match(url, /login\.html/);
});

test('how a request ended is heard', async () => {
  answers.get_NetWModeInfo = '{ "ucFD_NetWType": "1", "result": 0 }';
  await query('get_NetWModeInfo');
  answers.get_NetWModeInfo = 'Not Found';
  await assert.rejects(query('get_NetWModeInfo'), {kind: 'unreadable'});
  delete answers.get_NetWModeInfo;
  await assert.rejects(query('get_NetWModeInfo'), {kind: 'lost'});
  assert.deepEqual(heard, ['false', 'unreadable', 'lost']);
});

test('a request without an answer ends, a long one later', async () => {
  answers.get_NetWModeInfo = never;
  const short = assert.rejects(query('get_NetWModeInfo'), {kind: 'serviceSilent'});
  await pass(13);
  await short;
  answers.get_WifiInfo = never;
  let ended = false;
  const long = query('get_WifiInfo').catch(() => { ended = true; });
  await pass(13);
  assert.equal(ended, false);
  await pass(8);
  await long;
  assert.equal(ended, true);
});

test('an export without an answer does not mean that the service is silent', async () => {
  answers.export_CfgFile = never;
  const done = assert.rejects(query('export_CfgFile'), {kind: 'unreadable'});
  await pass(21);
  await done;
  delete answers['favicon.svg'];
  const dead = assert.rejects(query('export_CfgFile'), {kind: 'serviceSilent'});
  await pass(21);
  await dead;
});

test('a sheet that comes passes the gate', async () => {
  answers['page.css'] = ':root{--build:abc}';
  assert.equal(await renewSession(), ':root{--build:abc}');
});

test('a sheet that is still missing when a later file has come was refused', async () => {
  answers['page.css'] = never;
  const refused = assert.rejects(renewSession(), {kind: 'refused'});
  await pass(2);
  await refused;
});

test('a service that answers neither has refused nothing', async () => {
  answers['page.css'] = answers['favicon.svg'] = never;
  const silent = assert.rejects(renewSession(), {kind: 'serviceSilent'});
  await pass(13);
  await silent;
});

test('on a slow link a sheet may come later', async () => {
  let arrive: (text: string) => void = () => {};
  answers['favicon.svg'] = () => new Promise((resolve) => { setTimeout(() => resolve(''), 2000); });
  const sheet = new Promise<string>((resolve) => { arrive = resolve; });
  const passed = passGate(sheet);
  await pass(5);
  arrive('late');
  assert.equal(await passed, 'late');
});

test('without a session number nothing is asked', async () => {
  for (const value of ['', 'jsession=', 'jsession=XYZ', `other=${'a'.repeat(32)}`]) {
    cookie.value = value;
    assert.equal(sessionId(), null, value);
    await assert.rejects(renewSession(), {kind: 'refused'});
  }
  assert.deepEqual(asked, []);
});
