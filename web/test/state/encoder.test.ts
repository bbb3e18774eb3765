import assert from 'node:assert/strict';
import test from 'node:test';
import '../../src/later/qr';
import {squaresOf} from '../../src/state/encoder';

test('what no code can hold gives none', () => {
  assert.equal(squaresOf('x'.repeat(3000)), null);
  const squares = squaresOf('WIFI:T:nopass;S:open;;');
  assert.ok(squares && squares.get(0, 0));
});
