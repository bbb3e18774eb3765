import {local} from './page';
import assert from 'node:assert/strict';
import test, {beforeEach} from 'node:test';
import {chooseLanguage, followRecorder, loadPreferences, nextTheme} from '../../src/state/preferences';
import {get, resetStore} from '../../src/state/store';
import {spoken} from '../../src/words';

let dark = false;
let theme = '';

beforeEach(() => {
  resetStore();
  for (const name of ['language.chosen', 'language.recorder', 'theme']) local.removeItem(name);
  dark = false;
  Object.assign(globalThis, {matchMedia: () => ({matches: dark, addListener() {}})});
  Object.assign(document.documentElement, {
    setAttribute: (_: string, value: string) => { theme = value; },
  });
});

test('the user’s language goes before the recorder’s, and that before the browser’s', () => {
  loadPreferences();
  assert.equal(spoken(), 'en');
  followRecorder('CN');
  assert.equal(spoken(), 'zh');
  assert.equal(get().language, 'zh');
  chooseLanguage('en');
  followRecorder('CN');
  assert.equal(spoken(), 'en');
});

test('what was chosen is there again when the pages are loaded', () => {
  local.setItem('language.chosen', 'zh');
  local.setItem('theme', 'dark');
  loadPreferences();
  assert.deepEqual([spoken(), get().language, get().theme, theme], ['zh', 'zh', 'dark', 'dark']);
});

test('themes follow each other, and the first one follows the system', () => {
  local.setItem('theme', 'pink');
  dark = true;
  loadPreferences();
  const seen = [[get().theme, theme]];
  for (let i = 0; i < 3; i++) {
    nextTheme();
    seen.push([get().theme, theme]);
  }
  assert.deepEqual(seen, [['auto', 'dark'], ['light', 'light'], ['dark', 'dark'], ['auto', 'dark']]);
  assert.equal(local.getItem('theme'), 'auto');
});
