// Configuration files: what the recorder can take, and why it cannot take the rest.
import assert from 'node:assert/strict';
import {spawnSync} from 'node:child_process';
import {readFileSync} from 'node:fs';
import {join} from 'node:path';
import test from 'node:test';
import {configOf, isSecret, kImportBytes, openFile, printFile, printMessage, settingsOf}
  from '../../src/recorder/config';
import {readXml} from '../../src/recorder/xml';

const bytes = (text: string) => new TextEncoder().encode(text);
const kDefaults = join(process.env.SOURCE_ROOT || '', 'tools/devsim/devsim_default.xml');

test('the simulated recorder\'s own file is read whole, as xmllint reads it', () => {
  const file = readFileSync(kDefaults);
  const opened = openFile(new Uint8Array(file));
  assert.ok('settings' in opened, JSON.stringify(opened));
  const count = spawnSync('xmllint', ['--xpath', 'count(//@*)', kDefaults]);
  assert.equal(opened.settings.size, Number(count.stdout.toString()));
  assert.equal(opened.settings.get('stWifi/strFD_SSID'), '公交车队-0123');
  assert.equal(opened.settings.get('stMainStream/stVideoPara/VChn_7/ucFD_FrameRate'), '15');
});

test('what is printed is read again as it was, also by xmllint', () => {
  const value = 'a "b" <c> & \'d\' \r\n\t 车';
  const root = configOf([['stA/b', value], ['stA/stC/d', ''], ['stA/e', '1']]);
  for (const text of [printMessage(root), printFile(root)]) {
    const again = readXml(text.slice(text.indexOf('<VariCfgSec')), true);
    assert.ok(!('error' in again), text);
    assert.deepEqual([...settingsOf(again)], [['stA/b', value], ['stA/e', '1'], ['stA/stC/d', '']]);
    const found = spawnSync('xmllint', ['--xpath', 'string(/VariCfgSec/stA/@b)', '-'], {input: text});
    assert.equal(found.stdout.toString().replace(/\n$/, ''), value, text);
  }
});

test('what is no configuration, or not all of one, is refused with its reason', () => {
  const deep = `${'<a>'.repeat(40)}${'</a>'.repeat(40)}`;
  const long = `<VariCfgSec><a b="${'x'.repeat(kImportBytes)}"/></VariCfgSec>`;
  const rows: [string, object][] = [
    ['', {error: 'foreign'}], ['\x89PNG\r\n', {error: 'foreign'}],
    ['<html></html>', {error: 'foreign'}], ['<VariCfgSecond/>', {error: 'foreign'}],
    ['<VariCfgSec Action="DEVICE_QUERY"/>', {error: 'empty'}],
    ['<VariCfgSec>\n<stWifi strFD_SS', {error: 'cut', line: 2}],
    ['<VariCfgSec><stWifi strFD_SSID="a"/>', {error: 'cut', line: 1}],
    ['<VariCfgSec><stWifi/></VariCfgSec', {error: 'cut', line: 1}],
    ['<VariCfgSec>\n<stWifi></stWifiAp></VariCfgSec>', {error: 'broken', line: 2}],
    ['<VariCfgSec><stWifi/></VariCfgSec><b/>', {error: 'broken', line: 1}],
    ['<VariCfgSec><a b="1"\n b="2"/></VariCfgSec>', {error: 'repeated', name: 'b', line: 2}],
    ['<VariCfgSec><a b="1"/><a b="2"/></VariCfgSec>', {error: 'repeated', name: 'a/b', line: 0}],
    [`<VariCfgSec>${deep}</VariCfgSec>`, {error: 'deep'}],
    ['<VariCfgSec><a b="😀"/></VariCfgSec>', {error: 'char', char: '😀', name: 'a/b'}],
    [long, {error: 'long', used: long.length}],
  ];
  for (const [text, reason] of rows)
    assert.deepEqual(openFile(bytes(text)), reason, text.slice(0, 60));
});

test('a secret is known by its name', () => {
  const file = openFile(new Uint8Array(readFileSync(kDefaults)));
  assert.ok('settings' in file);
  const secrets = [...file.settings].filter(([path]) => isSecret(path));
  assert.ok(secrets.length >= 8);
  for (const value of ['depot2024', 'bus80012345', 'admin123', 'driver456', 'ipc2024', 'cms456'])
    assert.ok(secrets.some(([, held]) => held === value), value);
  for (const [path] of secrets) assert.match(path, /pass|pwd/i);
});
