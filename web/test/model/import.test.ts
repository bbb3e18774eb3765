import assert from 'node:assert/strict';
import test from 'node:test';
import {chosenOf, compareFile, foreignNumber, kDeviceNo, linesOf} from '../../src/model/import';

const now = new Map([[kDeviceNo, '80012345'], ['stVehicle/strFD_LicensePlate', 'A1'],
  ['stLocalEth0/uiFD_LocalIp', '192.168.1.88'], ['stMobileGNet/strFD_Apn', 'CMNET'],
  ['stSystemInfo/ACC', '1'], ['stBaseInfo/strFD_CurTime', '2026-01-01 00:00:00']]);
const changed = (path: string, value: string) => new Map([...now, [path, value]] as [string, string][]);

test('only what differs is a row, and never what a recorder tells about itself', () => {
  assert.deepEqual(compareFile(now, now), []);
  assert.deepEqual(compareFile(now, changed('stSystemInfo/ACC', '0')), []);
  assert.deepEqual(compareFile(now, changed('stMobileGNet/strFD_Apn', 'x')),
      [{path: 'stMobileGNet/strFD_Apn', from: 'CMNET', to: 'x', chosen: true}]);
  assert.deepEqual(compareFile(now, new Map([['stNew/strFD_A', '']])),
      [{path: 'stNew/strFD_A', from: null, to: '', chosen: true}]);
});

test('an old clock is left out at first', () => {
  const rows = compareFile(now, changed('stBaseInfo/strFD_CurTime', '2025-01-01 00:00:00'));
  assert.deepEqual([rows.length, chosenOf(rows)], [1, []]);
});

test('of another recorder’s file number, plate and addresses are left out at first', () => {
  const file = new Map([...changed('stMobileGNet/strFD_Apn', 'x'), [kDeviceNo, '90054321'],
    ['stVehicle/strFD_LicensePlate', 'B2'], ['stLocalEth0/uiFD_LocalIp', '192.168.1.99']]);
  assert.equal(foreignNumber(now, file), '90054321');
  const rows = compareFile(now, file);
  assert.equal(rows.length, 4);
  assert.deepEqual(chosenOf(rows), [['stMobileGNet/strFD_Apn', 'x']]);
  file.set(kDeviceNo, '80012345');
  assert.equal(chosenOf(compareFile(now, file)).length, 3);
});

test('a foreign file brings no driver, no network name and no dial number of its own', () => {
  const now = new Map([[kDeviceNo, '80012345']]);
  const own = ['stVehicle/strFD_DriverName', 'stVehicle/strFD_DrivingLicense', 'stWifi/strFD_SSID',
    'stWifiAp/strFD_SSID', 'stMobileGNet/strFD_PhoneNo', 'stServerGroup/strFD_UserName'];
  const ofFleet = ['stCMS/uiFD_IP', 'stServerGroup/uiFD_IP', 'stMobileGNet/strFD_Apn'];
  const file = new Map([[kDeviceNo, '90054321'], ...[...own, ...ofFleet].map((path) => [path, 'x'])] as
      [string, string][]);
  assert.deepEqual(chosenOf(compareFile(now, file)).map(([path]) => path), ofFleet);
});

test('the password of the sign-in comes from no file unless it is chosen by hand', () => {
  const path = 'stUserSec/stCustomUser/USER_0/strFD_UserPWD';
  const other = 'stUserSec/stCustomUser/USER_1/strFD_UserPWD';
  const rows = compareFile(new Map([[path, 'a'], [other, 'a']]), new Map([[path, 'b'], [other, 'b']]));
  assert.deepEqual(rows.map((row) => [row.path, row.chosen]), [[path, false], [other, true]]);
});

// before, file, after, what became of it
const kTook: [string | undefined, string, string | undefined, string][] = [
  ['64', '100', '100', 'taken'], ['64', '100', '64', 'kept'], ['64', '100', '112', 'other'],
  ['64', '100', undefined, 'absent'], [undefined, '100', undefined, 'absent'],
  [undefined, '100', '100', 'taken'], [undefined, '100', '', 'other'], ['100', '100', '100', 'same'],
];

test('a line tells what the recorder holds now, and never claims that it kept what it changed', () => {
  const path = 'stPower/usPOffDelayTime';
  const map = (value: string | undefined) =>
    new Map(value === undefined ? [] : [[path, value] as [string, string]]);
  for (const [before, file, after, took] of kTook) {
    const [line] = linesOf(map(file), compareFile(map(before), map(file)), map(after));
    assert.ok(line);
    assert.deepEqual([line.took, line.now], [took, after === undefined ? null : after],
        JSON.stringify([before, file, after]));
  }
  const [unread] = linesOf(map('100'), compareFile(map('64'), map('100')), null);
  assert.ok(unread);
  assert.deepEqual([unread.took, unread.now], ['unknown', undefined]);
});
