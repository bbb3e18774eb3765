import '../state/page';
import assert from 'node:assert/strict';
import test from 'node:test';
import {preferred, sentences, speak} from '../../src/words';
import {en} from '../../src/words/en';
import {login as enLogin} from '../../src/words/en-login';
import {settings as enSettings} from '../../src/words/en-settings';
import {zh} from '../../src/words/zh';
import {login as zhLogin} from '../../src/words/zh-login';
import {settings as zhSettings} from '../../src/words/zh-settings';

const english: Record<string, string> = {...enLogin, ...en, ...enSettings};
const chinese: Record<string, string> = {...zhLogin, ...zh, ...zhSettings};

test('both languages fill in the same names', () => {
  const names = (text: string) => (text.match(/\{\w+\}/g) || []).sort().join();
  for (const [key, text] of Object.entries(english))
    assert.equal(names(chinese[key] || ''), names(text), key);
});

test('no text is empty, none is left in the other language', () => {
  for (const [key, text] of Object.entries(english)) {
    assert.ok(text.trim() && (chinese[key] || '').trim(), key);
    if (key !== 'language.other') assert.ok(!/[\u4e00-\u9fff]/.test(text), key);
  }
});

test('the user’s choice of language goes first, then the recorder’s, then the browser’s', () => {
  const rows: [string | null, string | null, string, string][] = [['zh', 'en', 'en-GB', 'zh'],
    [null, 'zh', 'en-GB', 'zh'], [null, null, 'zh-CN', 'zh'], [null, null, 'de', 'en'],
    ['xx', null, 'ZH', 'zh']];
  for (const [chosen, recorder, browser, language] of rows)
    assert.equal(preferred(chosen, recorder, browser), language);
});

test('sentences are parted by a space where their full stops bring none', () => {
  speak('en');
  assert.equal(sentences('One.', '', false, undefined, 'Two.'), 'One. Two.');
  speak('zh');
  assert.equal(sentences('一。', '二。'), '一。二。');
  speak('en');
});
