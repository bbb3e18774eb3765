import assert from 'node:assert/strict';
import test from 'node:test';
import {lockOf, timeText} from '../../src/recorder/lock';

test('five wrong entries within an hour lock for the rest of it', () => {
  const rows: [number, number, number, number][] = [  // count, elapsed; counted, left
    [0, 0, 0, 0], [4, 10, 4, 0], [5, 0, 5, 3600], [5, 10, 5, 3590], [9, 3599, 9, 1],
    [5, 3600, 0, 0], [4, 3600, 0, 0],
    [5, -100, 0, 0],  // a lock ahead of the clock locks nobody out
    [5, 4294967196, 0, 0],
  ];
  for (const [count, elapsed, counted, left] of rows)
    assert.deepEqual(lockOf(count, elapsed), {count: counted, left}, `${count} ${elapsed}`);
});

test('time left is minutes and seconds', () => {
  assert.deepEqual([0, 9, 10, 60, 3599].map(timeText), ['0:00', '0:09', '0:10', '1:00', '59:59']);
});
