import './page';
import assert from 'node:assert/strict';
import test, {beforeEach} from 'node:test';
import {watchHistory} from '../../src/state/history';
import {get, kEmptySection, patchSection, resetStore, set, type Health} from '../../src/state/store';

let steady = 0;
performance.now = () => steady;

const poll = (values = {}) => set({status: {at: Date.now(), values}});
const health = (state: Health['state']) =>
  set({health: {state, since: 0, retryAt: 0} as Health});
const kinds = () => get().history.map((entry) =>
  'values' in entry ? 'reading' : entry.silent ? 'silence' : 'end');

beforeEach(() => {
  resetStore();
  steady = 1000;
  watchHistory();
});

test('each reading is remembered, once, whatever else changes', () => {
  poll({uiFD_GNetSignal: '24'});
  set({theme: 'dark'});
  steady += 5000;
  poll({uiFD_GNetSignal: '25'});
  assert.deepEqual(get().history.map(({at}) => at), [1000, 6000]);
  const [, last] = get().history;
  assert.equal(last && 'values' in last && last.values.uiFD_GNetSignal, '25');
});

test('a clock that is set meanwhile moves nothing', () => {
  const {now} = Date;
  try {
    for (const hour of [0, -5, 30, 2]) {
      Date.now = () => now() + hour * 3600000;
      poll();
      steady += 5000;
    }
  } finally {
    Date.now = now;
  }
  assert.deepEqual(get().history.map(({at}) => at), [1000, 6000, 11000, 16000]);
});

test('a silence is remembered from its beginning to its end', () => {
  poll();
  for (const state of ['deviceSilent', 'deviceSilent', 'serviceSilent', 'answers', 'restarting',
    'answers'] as const) {
    steady += 10000;
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
  set({lock: {...get().lock, end: 'applied'}});
  set({transfer: {...get().transfer, end: {end: 'partly', rows: [], known: 'read'}}});
  assert.deepEqual(get().ends.map(({title, end}) => `${title} ${end}`), ['section.wifi refused',
    'section.wifi applied', 'section.lock applied', 'section.import partly']);
  for (let i = 0; i < 30; i++) note('refused');
  assert.equal(get().ends.length, 20);
  assert.ok(get().ends.every(({end}) => end === 'refused'));
});
