// A file against the recorder: what would change, and what of it waits for the user's word.
import assert from 'node:assert/strict';
import test from 'node:test';
import {chosenOf, compareFile, foreignNumber, identifies} from '../../src/model/import';

const kNumber = 'stBaseInfo/strFD_DeviceNo';
const now = new Map([
  [kNumber, '80012345'], ['stBaseInfo/strFD_CurTime', '2024'], ['stWifi/strFD_SSID', 'depot'],
  ['stLocalEth0/uiFD_LocalIp', '192.168.1.88'], ['stVehicle/strFD_LicensePlate', '粤B1'],
  ['stGB28181/strFD_DeviceId', '34'], ['stSystemInfo/ACC', '1'], ['stOnly/here', '1'],
]);

const changed = (...changes: [string, string][]) => new Map([...now, ...changes]);
const rows = (file: Map<string, string>) =>
  compareFile(now, file).map(({path, chosen}) => `${chosen ? '+' : '-'} ${path}`);

test('what is equal, and what only tells about the recorder, is no row', () => {
  assert.deepEqual(rows(changed(['stSystemInfo/ACC', '0'], ['stVersion/Model', 'x'])), []);
  assert.deepEqual(rows(new Map()), []);
});

test('changes are chosen; the clock and the lock wait', () => {
  assert.deepEqual(rows(changed(['stWifi/strFD_SSID', 'x'], ['stBaseInfo/strFD_CurTime', '2020'],
      ['stLockOfPassword/uiFD_LockTime', '9'], ['stNew/thing', '1'])),
  ['- stBaseInfo/strFD_CurTime', '+ stWifi/strFD_SSID', '- stLockOfPassword/uiFD_LockTime',
    '+ stNew/thing']);
});

test('this recorder\'s own file moves it when it says so', () => {
  const file = changed(['stLocalEth0/uiFD_LocalIp', '192.168.1.9']);
  assert.equal(foreignNumber(now, file), null);
  assert.deepEqual(rows(file), ['+ stLocalEth0/uiFD_LocalIp']);
});

test('another recorder\'s number, plate, addresses and IDs wait; the rest is chosen', () => {
  const file = changed([kNumber, '80054321'], ['stLocalEth0/uiFD_LocalIp', '192.168.1.9'],
      ['stVehicle/strFD_LicensePlate', '粤B2'], ['stGB28181/strFD_DeviceId', '35'],
      ['stWifi/strFD_SSID', 'x']);
  assert.equal(foreignNumber(now, file), '80054321');
  assert.deepEqual(rows(file), [`- ${kNumber}`, '+ stWifi/strFD_SSID', '- stLocalEth0/uiFD_LocalIp',
    '- stVehicle/strFD_LicensePlate', '- stGB28181/strFD_DeviceId']);
  assert.deepEqual(chosenOf(compareFile(now, file)), [['stWifi/strFD_SSID', 'x']]);
});

test('a file without a number is no other recorder\'s', () => {
  assert.equal(foreignNumber(now, new Map([['stWifi/strFD_SSID', 'x']])), null);
});

test('what says which recorder this is', () => {
  const own = [kNumber, 'stVehicle/strFD_DeviceNum', 'stVehicle/strFD_LicensePlate',
    'stLocalEth0/uiFD_LocalIp', 'stLocalEth0/uiFD_NetMask', 'stLocalEth0/uiFD_GateWay',
    'stLocalEth0/strFD_Mac', 'stCMS/uiFD_IP', 'stGB28181/strFD_DeviceId',
    'stGB28181/stGB28181SubID/SUBDEVID_3/strFD_AlarmInId'];
  for (const path of own) assert.ok(identifies(path), path);
  for (const path of ['stWifi/strFD_SSID', 'stCMS/usFD_Port', 'stMobileGNet/strFD_Apn'])
    assert.ok(!identifies(path), path);
});
