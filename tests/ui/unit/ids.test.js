import assert from 'node:assert/strict';
import test from 'node:test';
import {load} from './pages.js';

const {candidates, hiddenIds, isOpen, toLists, toPlaces} = await load('ids.js');

const ids = (lens, alarm) => Array.from({length: 8}, (_, k) =>
  ({lens: lens[k] || '', alarm: alarm[k] || ''}));

test('a lens ID and the alarm-input ID two channels before share a place', () => {
  const places = toPlaces(ids(['A', 'B', 'x', 'y'], ['x', 'y', 'z', 'w']), 4);
  assert.deepEqual(places, ['A', 'B', 'x', 'y', 'z', 'w']);
});

test('two different IDs in one place stay open until one is chosen', () => {
  const places = toPlaces(ids(['A', 'B', 'C'], ['D', 'E', 'F']), 3);
  assert.deepEqual(places.map(isOpen), [false, false, true, false, false]);
  assert.deepEqual(candidates(places[2]), ['C', 'D']);
});

test('recorders with one, two and eight channels have two places more than channels', () => {
  for (const channels of [1, 2, 8]) {
    const places = toPlaces(ids([], []), channels);
    assert.deepEqual(places, Array(channels + 2).fill(''));
  }
});

test('the lists hold one ID per channel, in order', () => {
  const rows = [
    [['A', '', 'C'], 1, '*A*', '*C*'],
    [['A', 'B', 'C', 'D'], 2, '*A*B*', '*C*D*'],
    [['A', 'B', '', 'D', 'E'], 3, '*A*B**', '**D*E*'],
  ];
  for (const [places, channels, lens, alarm] of rows) {
    assert.deepEqual(toLists(places, channels), {strFD_LensId: lens, strFD_AlarmInId: alarm});
  }
});

test('channels beyond the eighth get empty entries, so that the order stays', () => {
  const places = Array.from({length: 10}, (_, k) => `p${k}`);
  assert.equal(toLists(places, 9).strFD_LensId, '*p0*p1*p2*p3*p4*p5*p6*p7**');
});

test('IDs of channels that the recorder does not have are named', () => {
  const found = hiddenIds(ids(['A', 'B', 'C', 'D', 'E'], []), 4);
  assert.deepEqual(found, [{k: 4, lens: 'E', alarm: ''}]);
});
