import {answers, asked, cookie, local, session} from './page';
import assert from 'node:assert/strict';
import test, {beforeEach} from 'node:test';
import {holdClock, tick} from '../clock';
import {look, patch, signIn, submitPassword} from '../../src/state/signIn';

let wrong = 0;
let entered = 0;
const lockReply = (count: number, result: number) =>
  `{ "ucFD_ErrorCount": "${count}", "time": "10" , "result": ${result} }`;

holdClock();
beforeEach(() => {
  patch({busy: false, note: null, deviceNo: '', reached: 'asking'});
  asked.length = 0;
  wrong = 0;
  entered = 0;
  cookie.value = '';
  Object.assign(answers, {
    'favicon.svg': '', get_LockOfPassword: () => lockReply(wrong, 1),
    set_LockOfPassword: '{"result": 1 }',
    cmp_UserSecurity: `{ "jsession": "${'b'.repeat(32)}", "result": 0 }`,
  });
});

const enter = (password: string) => submitPassword(password, () => { entered++; });

test('a wrong password is counted and the attempts left are told', async () => {
  wrong = 2;
  await enter('nope');
  assert.ok(asked.includes('set_LockOfPassword'));
  assert.deepEqual([signIn().note, entered], [{kind: 'wrong', left: 2}, 0]);
});

test('a recorder that is silent is no wrong password and is not counted', async () => {
  answers.get_LockOfPassword = lockReply(0, 0);
  await enter('admin123');
  assert.deepEqual(asked, ['get_LockOfPassword']);
  assert.deepEqual(signIn().note, {kind: 'fault', why: 'deviceSilent'});
});

test('while the lock holds no password is tried', async () => {
  wrong = 5;
  await enter('admin123');
  await enter('admin123');
  assert.deepEqual(asked, ['get_LockOfPassword']);
  assert.equal(signIn().note?.kind, 'locked');
});

test('the right password opens the pages and sets the count back', async () => {
  wrong = 1;
  answers.cmp_UserSecurity = `{ "jsession": "${'b'.repeat(32)}", "result": 1 }`;
  await enter('admin123');
  assert.deepEqual([entered, cookie.value.slice(0, 41)], [1, `jsession=${'b'.repeat(32)}`]);
  assert.ok(asked.includes('set_LockOfPassword'));
  assert.ok(!(local.text() + session.text()).includes('admin123'));
});

test('what no recorder can hold is not asked', async () => {
  for (const password of ['😀', 'x'.repeat(128)]) {
    await enter(password);
    assert.deepEqual([asked, signIn().note], [[], {kind: 'impossible'}]);
  }
});

test('a double press asks once', async () => {
  await Promise.all([enter('nope'), enter('nope')]);
  assert.equal(asked.filter((name) => name === 'cmp_UserSecurity').length, 1);
});

test('an empty field is no wrong password and is not counted, but may be the right one', async () => {
  await enter('');
  assert.deepEqual(asked, ['get_LockOfPassword', 'cmp_UserSecurity']);
  assert.deepEqual([signIn().note, entered], [{kind: 'empty'}, 0]);
  answers.cmp_UserSecurity = `{ "jsession": "${'b'.repeat(32)}", "result": 1 }`;
  await enter('');
  assert.equal(entered, 1);
});

const passed = () => new Promise((resume) => { setImmediate(resume); });

test('the page tells which recorder it is, or that it is silent', async () => {
  Object.assign(answers, {get_LangInfo: '{ "strLanguage": "EN", "result": 1 }',
    get_BaseInfo: '{ "strFD_DeviceNo": "80012345", "ucFD_TimeZone": "8" , "ucFD_GpsSTFlag": "1"' +
        ', "strFD_CurTime": "", "result": 1 }'});
  await look();
  assert.deepEqual([signIn().reached, signIn().deviceNo], ['answers', '80012345']);
  answers.get_LangInfo = '{ "strLanguage": "EN", "result": 0 }';
  await look();
  assert.equal(signIn().reached, 'silent');
});

test('a recorder that was silent is found again without being asked for', async () => {
  answers.get_LangInfo = '{ "strLanguage": "EN", "result": 0 }';
  await look();
  patch({note: {kind: 'fault', why: 'deviceSilent'}});
  answers.get_LangInfo = '{ "strLanguage": "EN", "result": 1 }';
  tick(10000);
  await passed();
  assert.deepEqual([signIn().reached, signIn().note], ['answers', null]);
});
