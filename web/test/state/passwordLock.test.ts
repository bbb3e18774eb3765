import {answers, bodies, cookie, moves, signedInTo} from './page';
import assert from 'node:assert/strict';
import test, {beforeEach} from 'node:test';
import {loadLock, resetLock} from '../../src/state/passwordLock';
import {follow} from '../../src/state/route';
import {get, resetStore} from '../../src/state/store';

let count = 5;

beforeEach(async () => {
  resetStore();
  count = 5;
  signedInTo({
    get_LockOfPassword: () => `{ "ucFD_ErrorCount": "${count}", "time": "10" , "result": 1 }`,
    set_LockOfPassword: () => {
      count = 0;
      return '{"result": 1 }';
    },
  });
  await loadLock();
});

test('a reset takes the count to 0 and reads it back', async () => {
  assert.deepEqual(get().lock.lock, {known: true, count: 5, left: 3590});
  await resetLock();
  assert.deepEqual(bodies.map((body) => body.split('&')[0]), ['ucFD_ErrorCount=0']);
  assert.deepEqual(get().lock.lock, {known: true, count: 0, left: 0});
  assert.deepEqual(get().lock.end, {end: 'applied', known: 'read'});
  assert.equal(get().lock.busy, false);
});

test('nothing is reset once the session has ended', async () => {
  cookie.value = '';
  await resetLock();
  assert.deepEqual(bodies, []);
  assert.match(moves.join(), /^login\.html/);
  assert.equal(get().lock.busy, false);
});

test('a recorder that does not answer leaves the lock as it was known', async () => {
  answers.get_LockOfPassword = '{ "ucFD_ErrorCount": "0", "time": "0" , "result": 0 }';
  const known = get().lock.lock;
  await loadLock();
  assert.deepEqual(get().lock.loading, {state: 'failed', why: 'deviceSilent'});
  assert.deepEqual(get().lock.lock, known);
});

test('a reset that nobody confirmed does not claim that the lock was read again', async () => {
  answers.set_LockOfPassword = '{"result": 0 }';
  answers.get_LockOfPassword = '{ "ucFD_ErrorCount": "0", "time": "0" , "result": 0 }';
  await resetLock();
  assert.deepEqual(get().lock.end, {end: 'deviceSilent', known: 'unknown'});
});

test('a reset that could not be sent is not said to have been read again', async () => {
  delete answers['page.css'];
  await resetLock();
  assert.deepEqual(bodies, []);
  assert.deepEqual(get().lock.end, {end: 'lost', known: 'unsent'});
});

test('what a reset came to is told until the page is left', async () => {
  await resetLock();
  location.hash = '#/security';
  follow();
  assert.equal(get().page, 'security');
  assert.equal(get().lock.end, null);
});
