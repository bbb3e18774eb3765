import assert from 'node:assert/strict';
import {readdirSync, readFileSync, statSync} from 'node:fs';
import {join, posix} from 'node:path';
import test from 'node:test';
import {kRoot} from './pages.js';

const kWhole = 120000;
const kFirstView = 40000;

function walk(folder = '') {
  return readdirSync(join(kRoot, folder), {withFileTypes: true}).flatMap((entry) => {
    const path = posix.join(folder, entry.name);
    return entry.isDirectory() ? walk(path) : [path];
  });
}

const files = walk().filter((name) => /\.(?:html|css|js|svg)$/.test(name));
const read = (name) => readFileSync(join(kRoot, name), 'utf8');
const size = (name) => statSync(join(kRoot, name)).size;
const sum = (names) => [...names].reduce((total, name) => total + size(name), 0);

// What a page fetches: its links, its scripts with all that they import, one dictionary.
function fetched(page, more) {
  const found = new Set([page, 'favicon.svg', 'base.css', ...more]);
  const visit = (script) => {
    if (found.has(script)) return;
    found.add(script);
    for (const [, name] of read(script).matchAll(/from '\.\/([\w-]+\.js)'/g)) visit(`js/${name}`);
  };
  for (const [, script] of read(page).matchAll(/src="([^"]+)"/g)) visit(script);
  return found;
}

test('the pages are only what a recorder can serve by itself', () => {
  assert.ok(files.length > 40);
  for (const name of files) {
    const urls = read(name).match(/https?:\/\/[\w.]+/g) || [];
    for (const url of urls) assert.equal(url, 'http://www.w3.org', name);
    assert.ok(!/@import|url\((?!#)/.test(read(name)), name);
  }
});

test('all pages together weigh less than 120 KB', () => {
  assert.ok(sum(files) < kWhole, `${sum(files)} bytes`);
});

test('a first view weighs less than 40 KB', () => {
  for (const language of ['en', 'zh']) {
    const dictionary = `js/lang/${language}.js`;
    const login = sum(fetched('login.html', [dictionary]));
    const status = sum(fetched('status.html', ['page.css', dictionary]));
    assert.ok(login < kFirstView, `login ${login} bytes`);
    assert.ok(status < kFirstView, `status ${status} bytes`);
  }
});

test('no page has script or style inside, and each names its policy', () => {
  for (const name of files.filter((file) => file.endsWith('.html') && file !== 'index.html')) {
    assert.ok(!/<style|\son\w+=|\sstyle=|<script(?! type="module" src=)/.test(read(name)), name);
    assert.match(read(name), /Content-Security-Policy" content="default-src 'self'/, name);
  }
});

test('only api.js talks to the recorder, and nothing inserts markup', () => {
  for (const name of files.filter((file) => file.endsWith('.js'))) {
    const script = read(name);
    if (name !== 'js/api.js') assert.ok(!/\bfetch\(|XMLHttpRequest|sendBeacon/.test(script), name);
    assert.ok(!/innerHTML|outerHTML|insertAdjacent|document\.write|\beval\(/.test(script), name);
  }
});
