// The layers of the pages: what each may import, how long a file may be, what is forbidden
// everywhere.
import assert from 'node:assert/strict';
import {readFileSync, readdirSync} from 'node:fs';
import {join, posix} from 'node:path';
import test from 'node:test';

declare const PROJECT: string;

const kSources = join(PROJECT, 'web/src');
const kMostLines = 300;
// What a layer may import besides itself. The words' types are allowed everywhere.
const kMay: Record<string, string[]> = {
  recorder: [], words: [], model: ['recorder'], state: ['recorder', 'model', 'words'],
  later: ['state', 'words', 'views', 'lean-qr'],
  views: ['recorder', 'model', 'state', 'words', 'preact'],
  '': ['recorder', 'model', 'state', 'words', 'views', 'preact'],
};
// The only modules that use the network, and the only one besides the views that knows the page.
const kWire = ['recorder/wire.ts'];

function find(folder: string): string[] {
  return readdirSync(join(kSources, folder), {withFileTypes: true}).flatMap((entry) => {
    const path = posix.join(folder, entry.name);
    return entry.isDirectory() ? find(path) : [path];
  });
}

const files = find('').map((path) => ({path,
  text: readFileSync(join(kSources, path), 'utf8').replace(/^ *\/\/.*$/gm, '')}));
const layerOf = (path: string) => path.includes('/') ? path.split('/')[0] || '' : '';

function imports(path: string, text: string): string[] {
  const all = [...text.matchAll(/^import (?!type )[^']*?'([^']+)';/gms)].map(([, from = '']) => from);
  return all.map((from) => from.startsWith('.')
    ? layerOf(posix.join(posix.dirname(path), from) + '/') : from.split('/')[0] || '');
}

test('a layer imports only the layers that it may', () => {
  let seen = 0;
  for (const {path, text} of files) {
    const layer = layerOf(path);
    for (const target of imports(path, text)) {
      seen++;
      assert.ok(target === layer || kMay[layer]?.includes(target), `${path} imports ${target}`);
    }
  }
  assert.ok(files.length > 50 && seen > 150, `${files.length} files, ${seen} imports`);
});

test('no file is long', () => {
  for (const {path, text} of files)
    assert.ok(text.split('\n').length <= kMostLines, path);
});

test('one module talks to the network, and nothing inserts markup', () => {
  for (const {path, text} of files) {
    if (!kWire.includes(path)) assert.ok(!/\bfetch\(|XMLHttpRequest|sendBeacon/.test(text), path);
    assert.ok(!/innerHTML|outerHTML|insertAdjacent|document\.write|\beval\(/.test(text), path);
    assert.ok(!/: any\b|as any\b|<any>/.test(text), path);
  }
});

test('nothing is used that a browser of 2019 lacks', () => {
  const missing = new RegExp('\\.replaceAll\\(|\\.at\\(|structuredClone|AbortSignal\\.timeout|' +
      'allSettled|fromEntries|matchAll|\\bimport\\(|ResizeObserver|\\.flat\\(|\\.flatMap\\(|' +
      'crypto\\.randomUUID|\\.hasOwn\\(|globalThis|showModal');
  for (const {path, text} of files) assert.doesNotMatch(text, missing, path);
  for (const name of ['base', 'page', 'sets']) {
    const css = readFileSync(join(PROJECT, `web/styles/${name}.css`), 'utf8')
        .replace(/\/\*[^]*?\*\//g, '');
    const young = new RegExp('[^-]gap:|:is\\(|:where\\(|:has\\(|inset:|aspect-ratio|clamp\\(|' +
        '[ :(]min\\(|[ :(]max\\(|@layer|[^-]translate:|[^-]rotate:');
    assert.doesNotMatch(css, young, name);
  }
});
