import assert from 'node:assert/strict';
import {readFileSync} from 'node:fs';
import {join} from 'node:path';
import test from 'node:test';
import {codePaths, largestCode, readLabels} from '../../src/model/labels';
import {attributeOf} from '../../src/model/schema';

declare const PROJECT: string;

const read = (text: string) => readLabels(new TextEncoder().encode(text));
const auth = (body: string) => `{"stWifi/ucFD_AuthMode": ${body}}`;

test('a text stands for both languages, or there is one for each', () => {
  const file = read(`{"stWifi/ucFD_AuthMode": {"3": {"zh": "个人版", "en": "Personal"}, "0": "WEP"},
    "stGB28181/streamType": {"1": "TCP"}}`);
  assert.ok('labels' in file);
  assert.deepEqual([...file.labels.get('stWifi/ucFD_AuthMode') || []],
      [['0', {zh: 'WEP', en: 'WEP'}], ['3', {zh: '个人版', en: 'Personal'}]]);
  assert.deepEqual(file.labels.get('stGB28181/streamType')!.get('1'), {zh: 'TCP', en: 'TCP'});
});

test('a file without names is none that is broken', () => {
  for (const text of ['{}', auth('{}'), '\ufeff{}']) assert.ok('labels' in read(text), text);
});

const kSetting = 'stWifi/ucFD_AuthMode';
const setting = (name: string) => ({error: 'setting', name});
const number = (value: string) => ({error: 'number', name: kSetting, value});
const text = (value: string) => ({error: 'text', name: kSetting, value});

test('what is wrong with a file is told', () => {
  const rows: [string, object][] = [
    ['', {error: 'json'}], ['{', {error: 'json'}], ['[]', {error: 'json'}],
    ['null', {error: 'json'}], ['"x"', {error: 'json'}], ['{"a": 1,}', {error: 'json'}],
    ['{"stWifi/ucFD_WorkMode": {}}', setting('stWifi/ucFD_WorkMode')],
    ['{"stWifi/ucFD_authmode": {}}', setting('stWifi/ucFD_authmode')],
    ['{"__proto__": {}}', setting('__proto__')], ['{"": {}}', setting('')],
    [auth('[]'), setting(kSetting)], [auth('"WEP"'), setting(kSetting)],
    [auth('null'), setting(kSetting)],
    [auth('{"256": "a"}'), number('256')], [auth('{"-1": "a"}'), number('-1')],
    [auth('{"03": "a"}'), number('03')], [auth('{"1.5": "a"}'), number('1.5')],
    [auth('{"": "a"}'), number('')], [auth('{"__proto__": "a"}'), number('__proto__')],
    [auth('{"1": ""}'), text('1')], [auth('{"1": " "}'), text('1')], [auth('{"1": 1}'), text('1')],
    [auth('{"1": {"en": "a"}}'), text('1')], [auth('{"1": {"en": "a", "zh": ""}}'), text('1')],
    [auth('{"1": {"en": "a", "zh": "b", "de": "c"}}'), text('1')],
    [auth(`{"1": "${'a'.repeat(61)}"}`), text('1')],
    ['{"stGB28181/streamType": {"2": "a"}}',
      {error: 'number', name: 'stGB28181/streamType', value: '2'}],
  ];
  for (const [content, error] of rows) assert.deepEqual(read(content), error, content);
});

test('limits may be reached', () => {
  assert.ok('labels' in read(auth(`{"255": "${'车'.repeat(60)}"}`)));
  assert.ok('labels' in read('{"stIpc/usFD_FuncMode": {"65535": "a"}}'));
  assert.ok('labels' in read(`{}${' '.repeat(32766)}`));
  assert.deepEqual(read(`{}${' '.repeat(32767)}`), {error: 'long'});
});

test('bytes that are no UTF-8 are told', () => {
  assert.deepEqual(readLabels(new Uint8Array([0x7b, 0xb9, 0xf3, 0x7d])), {error: 'json'});
});

test('every code is a number of the records and has their range', () => {
  const paths = codePaths();
  assert.ok(paths.length > 40);
  for (const path of paths.filter((each) => each !== 'stGB28181/streamType')) {
    const attribute = attributeOf(path);
    assert.ok(attribute && !attribute.onOff, path);
    assert.deepEqual([attribute.kind, attribute.max], ['number', largestCode(path)], path);
  }
});

const kDeployment = readFileSync(join(PROJECT, 'docs/deployment.md'), 'utf8');

test('the example of the manual is a good file, and its table names every code', () => {
  const [, example = ''] = /^```json\n([^]*?)^```/m.exec(kDeployment) || [];
  const file = read(example);
  assert.ok('labels' in file && file.labels.size === 2);
  const rows = [...kDeployment.matchAll(/^\| `(st\w+)` \| (.+) \|$/gm)];
  const told = rows.flatMap(([, section, names = '']) =>
    names.split(', ').map((name) => `${section}/${name.replace(/`/g, '')}`));
  assert.deepEqual(told, codePaths());
});
