// A field for every setting: as the forms know it, else from the recorder's tables, else guessed.
import assert from 'node:assert/strict';
import {readFileSync} from 'node:fs';
import {join} from 'node:path';
import test from 'node:test';
import {check} from '../../src/model/checks';
import {everyField, groupsOf} from '../../src/model/everyField';
import type {Field} from '../../src/model/fields';
import {attributeOf} from '../../src/model/schema';
import {openFile} from '../../src/recorder/config';

declare const PROJECT: string;

const file = openFile(readFileSync(join(PROJECT, 'tools/devsim/devsim_default.xml')));
assert.ok('settings' in file);
const {settings} = file;
const nameOf = (path: string) => ({label: () => path});
const fields = everyField(settings, nameOf);
const fieldOf = (path: string, value: string) =>
  everyField(new Map([...settings, [path, value]]), nameOf)
      .find((field) => field.path === path) as Field;

test('every setting of an export has one field, in the order of the export', () => {
  assert.deepEqual(fields.map(({path}) => path), [...settings.keys()]);
  assert.ok(fields.length > 600, String(fields.length));
  const groups = groupsOf(fields);
  assert.equal(groups.length, 37);
  assert.equal(groups.reduce((sum, group) => sum + group.fields.length, 0), fields.length);
});

test('what the recorder holds is right', () => {
  const held = Object.fromEntries(settings);
  for (const field of fields) {
    const value = settings.get(field.path) || '';
    if (field.live || !value) continue;
    // Compared with nothing, so that it is checked as if it had just been typed.
    const others = {...held, [field.path]: 'something else'};
    assert.equal(check(field, held, others), null, `${field.path} ${value}`);
  }
});

// path, value that is held, value that is typed, what is wrong
const kWrong: [string, string, string, string | null][] = [
  ['stBaseInfo/strFD_DeviceNo', '80012345', '8001', 'error.short'],
  ['stLocalEth0/uiFD_NetMask', '255.255.255.0', '255.0.255.0', 'error.mask'],
  ['stWifi/uiFD_NetMask', '255.255.255.0', '255.0.255.0', 'error.mask'],
  ['stMainStream/stVideoPara/VChn_7/ucFD_FrameRate', '25', '61', 'error.range'],
  ['stPower/ucPowerMode', '1', '256', 'error.range'],
  ['stPower/ucPowerMode', '1', '255', null],
  ['stPower/usPOffDelayTime', '60', '65536', 'error.range'],
  ['stPower/usPOffDelayTime', '60', 'ten', 'error.range'],
  ['stVehicle/strFD_DriverName', '', '驾'.repeat(16), 'error.long'],
  ['stVehicle/strFD_DriverName', '', '驾'.repeat(15), null],
  ['stIpc/stChnIpc/Ipc_0/uiFD_IP', '10.0.0.1', '10.0.0.256', 'error.address'],
  ['stTempAlarm/Temp_0/fFD_LowTemp', '-20', '-20,5', 'error.decimal'],
  ['stTempAlarm/Temp_0/fFD_LowTemp', '-20', '-20.5', null],
  ['stNew/ucThing', '1', '300', 'error.range'],
  ['stNew/uiFD_Where', '10.0.0.1', '10.0.0', 'error.address'],
  ['stNew/strThing', 'a', '😀', 'error.char'],
];

test('a typed value is checked against type, width and range', () => {
  for (const [path, held, typed, wrong] of kWrong) {
    const found = check(fieldOf(path, held), {[path]: typed}, {[path]: held});
    assert.equal(found ? found.key : null, wrong, `${path} ${typed}`);
  }
});

test('a switch is one as long as it holds on or off', () => {
  const path = 'stMainStream/stVideoPara/VChn_0/uiFD_EnableROI';
  assert.deepEqual(['0', '1', '2'].map((value) => fieldOf(path, value).kind),
      ['switch', 'switch', 'number']);
});

test('passwords are secret, what moves is fixed but the clock, what names a recorder is apart', () => {
  const rows: [string, Partial<Field>][] = [
    ['stWifi/strFD_Passwd', {kind: 'secret', fixed: false, apart: false}],
    ['stUserSec/stUser/USER_0/strFD_UserPWD', {kind: 'secret'}],
    ['stNew/strPassword', {kind: 'secret'}], ['stNew/uiToken', {kind: 'secret'}],
    ['stVehicle/strFD_Authentication', {kind: 'secret'}],
    ['stWifi/ucFD_AuthMode', {kind: 'number'}],
    ['stUserSec/stCustomUser/USER_0/strFD_UserPWD', {kind: 'secret', fixed: true, help: 'help.signIn'}],
    ['stUserSec/stCustomUser/USER_1/strFD_UserPWD', {kind: 'secret', fixed: false}],
    ['stBaseInfo/strFD_CurTime', {kind: 'clock', fixed: false, live: true}],
    ['stLockOfPassword/ucFD_ErrorCount', {fixed: true, live: true}],
    ['stSystemInfo/ACC', {fixed: true, live: true}],
    ['stBaseInfo/strFD_DeviceNo', {fixed: false, live: false, apart: true}],
    ['stWifiAp/strFD_SSID', {apart: true}], ['stNew/strFD_Mac', {apart: true}],
    ['stMobileGNet/strFD_Apn', {apart: false}],
  ];
  for (const [path, wanted] of rows) {
    const field = fieldOf(path, '1');
    for (const [key, value] of Object.entries(wanted))
      assert.equal(field[key as keyof Field], value, `${path} ${key}`);
  }
  for (const {path, apart} of fields)
    assert.equal(apart, Boolean((attributeOf(path) || {identity: true}).identity), path);
});
