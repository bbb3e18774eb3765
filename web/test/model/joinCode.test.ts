import assert from 'node:assert/strict';
import test from 'node:test';
import {drawingOf, joinText} from '../../src/model/joinCode';

test('signs that have a meaning in the code are marked as what they are', () => {
  const rows: [string, string, string][] = [
    ['bus 12', 'platform9', 'WIFI:T:WPA;S:bus 12;P:platform9;;'],
    ['a;b', 'c,d', 'WIFI:T:WPA;S:a\\;b;P:c\\,d;;'],
    ['a:b', '"c"', 'WIFI:T:WPA;S:a\\:b;P:\\"c\\";;'],
    ['\\;', '$&', 'WIFI:T:WPA;S:\\\\\\;;P:$&;;'],
    ['open', '', 'WIFI:T:nopass;S:open;;'],
  ];
  for (const [name, password, text] of rows) assert.equal(joinText(name, password), text);
});

test('the drawing covers the dark squares and no other', () => {
  const rows = ['##.#', '....', '.##.', '####'];
  const path = drawingOf({size: 4, get: (x, y) => (rows[y] || '')[x] === '#'});
  assert.equal(path, 'M0 0h2v1h-2zM3 0h1v1h-1zM1 2h2v1h-2zM0 3h4v1h-4z');
});
