// A whole configuration, as exported by the simulated recorder, compared with another XML parser.
import assert from 'node:assert/strict';
import {spawnSync} from 'node:child_process';
import {readFileSync} from 'node:fs';
import {join} from 'node:path';
import test from 'node:test';
import {isSecret, openFile} from '../../src/recorder/config';

declare const PROJECT: string;

const kDefaults = join(PROJECT, 'tools/devsim/devsim_default.xml');

function open() {
  const file = openFile(new Uint8Array(readFileSync(kDefaults)));
  assert.ok('settings' in file, JSON.stringify(file));
  return file.settings;
}

test('every setting is found, as many as xmllint finds', () => {
  const settings = open();
  const count = spawnSync('xmllint', ['--xpath', 'count(//@*)', kDefaults]);
  assert.equal(settings.size, Number(count.stdout.toString()));
  assert.equal(settings.get('stWifi/strFD_SSID'), '公交车队-0123');
  assert.equal(settings.get('stMainStream/stVideoPara/VChn_7/ucFD_FrameRate'), '15');
});

test('no password of it is taken for an open value', () => {
  const secrets = [...open()].filter(([path]) => isSecret(path)).map(([, value]) => value);
  for (const value of ['depot2024', 'bus80012345', 'admin123', 'driver456', 'ipc2024', 'cms456'])
    assert.ok(secrets.includes(value), value);
});
