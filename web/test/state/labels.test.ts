import assert from 'node:assert/strict';
import test, {beforeEach} from 'node:test';
import {answers, asked} from './page';
import {loadLabels, nameOf, namesOf} from '../../src/state/labels';
import {get, resetStore, set} from '../../src/state/store';

const kZone = 'stBaseInfo/ucFD_TimeZone';
const kFormat = 'stMainStream/stVideoPara/VChn_5/ucFD_Resolution';

beforeEach(() => {
  resetStore();
  asked.length = 0;
  delete answers['labels.json'];
});

const serve = (file: unknown) => { answers['labels.json'] = JSON.stringify(file); };

test('without a file numbers stay numbers, nothing is told and the recorder is well', async () => {
  await loadLabels();
  assert.deepEqual(asked, ['labels.json']);
  assert.deepEqual(namesOf(kZone), []);
  assert.equal(nameOf(kZone, '8'), '8');
  assert.deepEqual([get().labels.error, get().health.state], [null, 'answers']);
});

test('named numbers have their text in the language that is spoken', async () => {
  serve({[kZone]: {8: {zh: '北京', en: 'Beijing'}, 0: 'UTC'}});
  await loadLabels();
  set({language: 'zh'});
  assert.deepEqual(namesOf(kZone), [['0', 'UTC (0)'], ['8', '北京 (8)']]);
  set({language: 'en'});
  assert.equal(nameOf(kZone, '8'), 'Beijing (8)');
  assert.equal(nameOf(kZone, '08'), 'Beijing (8)');
});

test('numbers without a name, and other settings, are shown as they are', async () => {
  serve({[kZone]: {8: 'Beijing'}});
  await loadLabels();
  for (const value of ['9', '', 'x', '8 ']) assert.equal(nameOf(kZone, value), value);
  assert.equal(nameOf('stWifi/ucFD_AuthMode', '8'), '8');
});

test('the settings of all items have the names of their attribute', async () => {
  serve({'stMainStream/ucFD_Resolution': {7: '1080p'}});
  await loadLabels();
  assert.equal(nameOf(kFormat, '7'), '1080p (7)');
});

test('a broken file is told, and none of its names is used', async () => {
  serve({[kZone]: {8: 'Beijing'}, 'stWifi/strFD_SSID': {}});
  await loadLabels();
  assert.deepEqual(get().labels.error, {error: 'setting', name: 'stWifi/strFD_SSID'});
  assert.equal(nameOf(kZone, '8'), '8');
});
