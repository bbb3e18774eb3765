import './page';
import assert from 'node:assert/strict';
import test, {beforeEach} from 'node:test';
import {stopsOf} from '../../src/model/history';
import {steadyNow, watchHistory} from '../../src/state/history';
import {get, kEmptySection, patchSection, resetStore, set, type Health} from '../../src/state/store';

// Both clocks of a browser; the steady one stands still while the computer sleeps.
let steady = 1000;
let date = Date.now();
performance.now = () => steady;
Date.now = () => date;
const pass = (ms: number) => { steady += ms; date += ms; };
const sleep = (ms: number) => { date += ms; };

const poll = (values = {}) => set({status: {at: Date.now(), values}});
const health = (state: Health['state']) =>
  set({health: {state, since: 0, retryAt: 0} as Health});
const kinds = () => get().history.map((entry) =>
  'values' in entry ? 'reading' : entry.silent ? 'silence' : 'end');

beforeEach(() => {
  resetStore();
  watchHistory();
});

// The ages of the readings, as a plot shows them now.
const ages = () => {
  const now = steadyNow();
  return get().history.map(({at}) => now - at);
};

test('each reading is remembered, once, whatever else changes', () => {
  poll({uiFD_GNetSignal: '24'});
  set({theme: 'dark'});
  pass(5000);
  poll({uiFD_GNetSignal: '25'});
  assert.deepEqual(ages(), [5000, 0]);
  const [, last] = get().history;
  assert.equal(last && 'values' in last && last.values.uiFD_GNetSignal, '25');
});

test('a clock that is set back or corrected meanwhile moves nothing', () => {
  for (const ms of [0, -5 * 3600000, 15000, -100]) {
    date += ms;
    poll();
    pass(5000);
  }
  assert.deepEqual(ages(), [20000, 15000, 10000, 5000]);
});

test('the time in which the computer slept has passed, also before anything is heard', () => {
  poll();
  pass(5000);
  poll();
  sleep(10 * 60000);
  assert.deepEqual(ages(), [605000, 600000]);
  pass(5000);
  poll();
  assert.deepEqual(ages(), [610000, 605000, 0]);
  assert.deepEqual(stopsOf(get().history, steadyNow()).map(({kind}) => kind),
      ['reading', 'reading', 'unread', 'reading']);
});

test('nothing of yesterday is among the last 30 minutes', () => {
  poll();
  sleep(14 * 3600000);
  assert.deepEqual(stopsOf(get().history, steadyNow()).map(({kind}) => kind), ['unread']);
  poll();
  assert.equal(stopsOf(get().history, steadyNow()).filter(({kind}) => kind === 'reading').length, 1);
});

test('a silence is remembered from its beginning to its end', () => {
  poll();
  for (const state of ['deviceSilent', 'deviceSilent', 'serviceSilent', 'answers', 'restarting',
    'answers'] as const) {
    pass(10000);
    health(state);
  }
  assert.deepEqual(kinds(), ['reading', 'silence', 'end']);
});

test('the ends of saves are remembered, the latest twenty', () => {
  const note = (end: 'applied' | 'refused') =>
    patchSection('wifi', {note: {kind: 'end', end, rows: [], known: 'read'}});
  note('refused');
  patchSection('wifi', {step: {name: 'sending', since: 0}});
  note('applied');
  patchSection('mobile', {...kEmptySection, note: {kind: 'draft'}});
  set({lock: {...get().lock, end: {end: 'applied', known: 'read'}}});
  set({transfer: {...get().transfer, end: {end: 'partly', rows: [], known: 'read'}}});
  assert.deepEqual(get().ends.map(({title, end}) => `${title} ${end}`), ['section.wifi refused',
    'section.wifi applied', 'section.lock applied', 'section.import partly']);
  for (let i = 0; i < 30; i++) note('refused');
  assert.equal(get().ends.length, 20);
  assert.ok(get().ends.every(({end}) => end === 'refused'));
});
