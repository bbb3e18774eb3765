import assert from 'node:assert/strict';
import {spawnSync} from 'node:child_process';
import test from 'node:test';


import {encodeGbk, percentEncode, storedLength, toEntities, unstorable, wireLength}
  from '../../src/recorder/gbk';

function iconv(from: string, to: string, bytes: Buffer) {
  const done = spawnSync('iconv', ['-f', from, '-t', to], {input: bytes});
  assert.equal(done.status, 0, done.stderr.toString());
  return done.stdout;
}

// Characters of code page 936 above ASCII, from the C library's own table.
function codePage() {
  const chars = [];
  for (let code = 0x80; code <= 0xffff; code++) chars.push(String.fromCharCode(code));
  const known = spawnSync('iconv', ['-c', '-f', 'UTF-16LE', '-t', 'CP936'],
      {input: Buffer.from(chars.join('\n'), 'utf16le'), maxBuffer: 1 << 24}).stdout;
  const text = iconv('CP936', 'UTF-8', known).toString();
  return new Set([...text].filter((char) => char > '\x80'));
}

test('every character of the code page is encoded as iconv does, and no other', () => {
  const known = codePage();
  known.delete('€');  // one byte there; the recorder has no such code
  assert.equal(known.size, 21791);
  const all = [...known].join('');
  assert.deepEqual(Buffer.from(encodeGbk(all)), iconv('UTF-8', 'CP936', Buffer.from(all)));
  let accepted = 0;
  for (let code = 0x80; code <= 0xffff; code++) {
    const char = String.fromCharCode(code);
    if (unstorable(char) === null) accepted += 1;
    else assert.ok(!known.has(char), char);
  }
  assert.equal(accepted, 21791);
});

test('what the recorder cannot store is found', () => {
  const rows: [string, string | null][] = [
    ['abc 车队 "<&', null], ['', null], ['a\nb', '\n'], ['\x7f', '\x7f'], ['ñ', 'ñ'], ['€', '€'],
    ['车😀', '😀'], ['\ufffd', '\ufffd'], ['\ue000', '\ue000'],
  ];
  for (const [text, found] of rows) assert.equal(unstorable(text), found, text);
});

test('lengths are counted in bytes, stored and on the way', () => {
  const rows: [string, number, number][] = [['', 0, 0], ['abc', 3, 3], ['车队', 4, 4], ['a&b', 3, 7], ['"', 1, 6], ['<', 1, 4]];
  for (const [text, stored, wire] of rows) {
    assert.equal(storedLength(text), stored, text);
    assert.equal(wireLength(text), wire, text);
  }
});

test('quotes, brackets and ampersands become entities', () => {
  assert.equal(toEntities('a"b<c&d>\'%+#'), 'a&quot;b&lt;c&amp;d>\'%+#');
});

test('everything but letters and digits is escaped, so that no value names a style sheet', () => {
  assert.equal(percentEncode(encodeGbk('车a+ %&page.css')), '%B3%B5a%2B%20%25%26page%2Ecss');
});
