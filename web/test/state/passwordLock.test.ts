import {answers, bodies, cookie, moves, signedInTo} from './page';
import assert from 'node:assert/strict';
import test, {beforeEach} from 'node:test';
import {loadLock, resetLock} from '../../src/state/passwordLock';
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
  assert.equal(get().lock.end, 'applied');
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
