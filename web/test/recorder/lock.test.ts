// The lock after wrong passwords, from the count and the seconds that the service tells.
import assert from 'node:assert/strict';
import test from 'node:test';
import {lockOf, timeText} from '../../src/recorder/lock';

test('five wrong entries lock for an hour; older ones, and ones ahead of the clock, count nothing',
    () => {
      const rows: [number, number, number, number][] = [  // count, elapsed, counted, seconds left
        [0, 0, 0, 0], [4, 0, 4, 0], [5, 0, 5, 3600], [5, 3599, 5, 1], [5, 3600, 0, 0],
        [9, 10, 9, 3590], [4, 3600, 0, 0], [4, -1, 0, 0], [5, -86400, 0, 0],
        [5, -2147483648, 0, 0], [5, 1700000000, 0, 0],
      ];
      for (const [count, time, counted, left] of rows)
        assert.deepEqual(lockOf(count, time), {count: counted, left}, `${count} ${time}`);
    });

test('the time left is minutes and two digits of seconds', () => {
  for (const [seconds, text] of [[3600, '60:00'], [59, '0:59'], [61, '1:01'], [0, '0:00']] as const)
    assert.equal(timeText(seconds), text);
});
