// Scripts that come when they are needed: once, and again after a failure.
import './page';
import assert from 'node:assert/strict';
import test from 'node:test';
import {kindOf} from '../../src/recorder/fault';
import {bring, setScripts} from '../../src/state/scripts';
import {get} from '../../src/state/store';

interface Script { src: string; onload(): void; onerror(): void; remove(): void }
const asked: Script[] = [];
Object.assign(document, {createElement: () => ({src: '', onload() {}, onerror() {}, remove() {}}),
  head: {appendChild: (script: Script) => asked.push(script)}});

test('a script that did not come is asked for again, one that came is not', async () => {
  setScripts({settings: 'assets/settings.1.js'});
  const first = bring('settings');
  assert.equal(bring('settings'), first);
  assert.deepEqual([asked.length, asked[0]?.src, get().scripts],
      [1, 'assets/settings.1.js', {settings: 'coming'}]);
  asked[0]?.onerror();
  assert.equal(await first.catch(kindOf), 'lost');
  assert.deepEqual(get().scripts, {settings: 'failed'});
  const second = bring('settings');
  asked[1]?.onload();
  await second;
  assert.deepEqual(get().scripts, {settings: 'there'});
  await bring('settings');
  assert.equal(asked.length, 2);
});
