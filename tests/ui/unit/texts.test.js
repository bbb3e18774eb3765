import assert from 'node:assert/strict';
import {readdirSync, readFileSync} from 'node:fs';
import {join} from 'node:path';
import test from 'node:test';
import {kRoot, load} from './pages.js';

const read = (name) => readFileSync(join(kRoot, name), 'utf8');
const scripts = readdirSync(join(kRoot, 'js')).filter((name) => name.endsWith('.js'));
const code = scripts.map((name) => read(`js/${name}`)).join('\n').replace(/^\s*\/\/.*$/gm, '');

async function dictionary(language) {
  const texts = new Map();
  for (const part of ['', '-sets']) {
    const {default: lines} = await load(`lang/${language}${part}.js`);
    for (const line of lines.split('\n').filter(Boolean)) {
      const [, key, text] = /^(\S+) (.+)$/.exec(line);
      assert.ok(!texts.has(key), `${language}: ${key} stands twice`);
      texts.set(key, text);
    }
  }
  return texts;
}

const en = await dictionary('en');
const zh = await dictionary('zh');

// Keys that the code names: in t('...'), in tables and, as a prefix, in t(`...${`.
const inCalls = [...code.matchAll(/\bt\('([^']+)'/g)].map((match) => match[1]);
const inTables = [...code.matchAll(/'([a-zA-Z]\w*(?:\.[\w-]+)+)'/g)].map((match) => match[1])
    .filter((word) => !/\.(?:js|css|html|svg)$/.test(word) && !word.startsWith('language.re') &&
      word !== 'language.chosen');
const prefixes = [...code.matchAll(/\bt\(`([\w.]+)\$\{/g)].map((match) => match[1]);

test('both dictionaries have the same keys and the same names in braces', () => {
  assert.ok(en.size > 200);
  assert.deepEqual([...en.keys()].sort(), [...zh.keys()].sort());
  for (const [key, text] of en) {
    const names = (words) => [...new Set(words.match(/\{\w+\}/g))].sort();
    assert.deepEqual(names(zh.get(key)), names(text), key);
  }
});

test('both parts of the dictionaries are split alike', async () => {
  for (const part of ['', '-sets']) {
    const keys = (text) => text.split('\n').map((line) => line.split(' ')[0]);
    const [a, b] = await Promise.all(['en', 'zh'].map((language) =>
      load(`lang/${language}${part}.js`)));
    assert.deepEqual(keys(a.default), keys(b.default));
  }
});

test('every key in the code is in the dictionaries', () => {
  assert.ok(inCalls.length > 80 && inTables.length > 60 && prefixes.length > 5);
  for (const key of [...inCalls, ...inTables]) assert.ok(en.has(key), key);
  for (const prefix of prefixes)
    assert.ok([...en.keys()].some((key) => key.startsWith(prefix)), prefix);
});

test('every label, help and option of the field tables is in the dictionaries', async () => {
  const {kSections} = await load('fields.js');
  for (const section of Object.values(kSections)) {
    assert.ok(en.has(`section.${section.title}`), section.title);
    for (const field of section.fields) {
      assert.ok(en.has(field.label), field.label);
      if (field.help) assert.ok(en.has(field.help), field.help);
      for (const [, key] of field.options || []) assert.ok(en.has(key), key);
    }
  }
});

test('every end and every failure has its own words', () => {
  const ends = ['applied', 'adjusted', 'refused', 'silent', 'noservice', 'lost', 'unreadable'];
  const groups = [['end', ends], ['load', ['silent', 'noservice', 'lost', 'unreadable']]];
  for (const texts of [en, zh]) {
    for (const [prefix, kinds] of groups) {
      const words = kinds.map((kind) => texts.get(`${prefix}.${kind}`));
      assert.ok(words.every(Boolean), prefix);
      assert.equal(new Set(words).size, kinds.length, prefix);
    }
  }
});

test('no key is left over', () => {
  const words = new Set([...code.matchAll(/'([\w.-]+)'/g)].map((match) => match[1]));
  for (const key of en.keys()) {
    const used = words.has(key) || prefixes.some((prefix) => key.startsWith(prefix));
    assert.ok(used, key);
  }
});

test('no text stands outside the dictionaries', () => {
  for (const page of readdirSync(kRoot).filter((name) => name.endsWith('.html'))) {
    const text = read(page).replace(/<[^>]*>/g, '').trim();
    assert.equal(text, '…', page);
  }
  for (const [, literal] of code.matchAll(/['`]([^'`\n]*)['`]/g))
    assert.ok(!/^[A-Z][a-z]+ [a-z]+ |[\u3000-\u9fff]/.test(literal), literal);
});
