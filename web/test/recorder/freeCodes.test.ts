import assert from 'node:assert/strict';
import test from 'node:test';
import {encodeGbk, unstorable} from '../../src/recorder/gbk';

// What a browser's decoder knows and the recorder's code page does not; node's does not either.
const kRanges: readonly (readonly [number, number])[] = [
  [0xa2e3, 0xa2e3], [0xa3a0, 0xa3a0], [0xa6d9, 0xa6df], [0xa6ec, 0xa6ed], [0xa6f3, 0xa6f3],
  [0xa8bc, 0xa8bc], [0xa8bf, 0xa8bf], [0xa989, 0xa995], [0xfe50, 0xfea0],
];
const kFirstLetter = 0x13a0;  // of a script that no code page of China has
const letters = new Map<number, string>();
for (const [first, last] of kRanges)
  for (let code = first; code <= last; code++)
    if ((code & 0xff) !== 0x7f) letters.set(code, String.fromCharCode(kFirstLetter + letters.size));

class BrowserDecoder extends TextDecoder {
  override decode(bytes: Uint8Array): string {
    const chars = super.decode(bytes).split('\n');
    return chars.map((char, k) =>
      letters.get(((bytes[3 * k] || 0) << 8) | (bytes[3 * k + 1] || 0)) || char).join('\n');
  }
}

test('characters of codes that the recorder leaves free are not storable', () => {
  Object.assign(globalThis, {TextDecoder: BrowserDecoder});
  for (const [code, letter] of letters) assert.equal(unstorable(letter), letter, code.toString(16));
  assert.deepEqual([...encodeGbk('车')], [0xb3, 0xb5]);
});
