import {holdClock} from '../clock';
import {answers} from './page';
import assert from 'node:assert/strict';
import test, {beforeEach} from 'node:test';
import {failed, heard, retryNow, watchHealth, whenRecovered} from '../../src/state/health';
import {queue} from '../../src/recorder/wire';
import {get, resetStore} from '../../src/state/store';

holdClock();
watchHealth();

const kAnswer = {result: true, values: {}, ms: 10};
const kSilence = {result: false, values: {}, ms: 5010};
let recovered = 0;
whenRecovered(() => { recovered++; });

beforeEach(() => {
  heard(kAnswer);
  resetStore();
  recovered = 0;
});

test('a section that the recorder lacks is no silence', () => {
  heard({result: false, values: {}, ms: 30});
  assert.equal(get().health.state, 'answers');
});

test('the first silence marks everything, and what waits is given up', async () => {
  const running = queue.add(() => Promise.resolve(), 'page');
  const waiting = queue.add(() => Promise.resolve(), 'page');
  heard(kSilence);
  assert.equal(get().health.state, 'deviceSilent');
  await assert.rejects(waiting, {kind: 'dropped'});
  await running;
});

test('each silence in a row waits longer, and the count begins with the first', () => {
  const start = Date.now();
  const pauses = [];
  for (let i = 0; i < 6; i++) {
    heard(kSilence);
    const {health} = get();
    assert.ok(health.state === 'deviceSilent' && health.since === start);
    pauses.push(health.retryAt - Date.now());
  }
  assert.deepEqual(pauses, [5000, 5000, 10000, 15000, 30000, 30000]);
});

test('any answer ends it, once', () => {
  failed('lost');
  assert.equal(get().health.state, 'serviceSilent');
  heard(kAnswer);
  heard(kAnswer);
  assert.deepEqual([get().health.state, recovered], ['answers', 1]);
});

test('a service that answers for a silent recorder is not silent itself', () => {
  failed('serviceSilent');
  heard(kSilence);
  assert.equal(get().health.state, 'deviceSilent');
});

test('asking again finds the recorder', async () => {
  Object.assign(answers, {'favicon.svg': '', get_LangInfo: '{ "strLanguage": "CN", "result": 1 }'});
  failed('lost');
  await retryNow();
  assert.deepEqual([get().health.state, recovered], ['answers', 1]);
});

test('what is unreadable or dropped says nothing about the health', () => {
  for (const kind of ['unreadable', 'dropped', 'refused'] as const) failed(kind);
  assert.equal(get().health.state, 'answers');
});
