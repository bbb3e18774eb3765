import assert from 'node:assert/strict';
import test from 'node:test';
import {chosenOf, compareFile, foreignNumber, identifies, kDeviceNo} from '../../src/model/import';

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

test('what names one recorder is known', () => {
  const rows: [string, boolean][] = [
    [kDeviceNo, true], ['stVehicle/strFD_CarVIN', true], ['stLocalEth0/strFD_Mac', true],
    ['stWifi/uiFD_GateWay', true], ['stGB28181/strFD_DeviceId', true],
    ['stGB28181/stGB28181SubID/SUBDEVID_3/strFD_LensId', true], ['stCMS/uiFD_IP', true],
    ['stWifi/strFD_SSID', false], ['stSubStream/ucFD_FrameRate', false],
    ['stGB28181/strFD_ServerID', false], ['stVideoCrop/stVideoCropPara/VChn_0/uiFD_X', false],
  ];
  for (const [path, names] of rows) assert.equal(identifies(path), names, path);
});
