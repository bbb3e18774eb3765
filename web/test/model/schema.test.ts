// What the pages know of every setting against the daemon's own tables and records.
import assert from 'node:assert/strict';
import test from 'node:test';
import {attributeOf, identifies, knownAttributes, knownSections, type Attribute} from '../../src/model/schema';
import {deviceNoLength, readRecords, readTables, type Member, type Row} from './daemon';

const rows = readTables();
const records = readRecords();
const kMembers: Record<string, string> = {strFD_LensId: 'strSubId', strFD_AlarmInId: 'strSubId'};
const kKinds: Record<string, Attribute['kind']> =
    {StoreAddress: 'address', StoreTimeOfDay: 'time', StoreReserveData: 'hex'};

const memberOf = ({record, name}: Row): Member | undefined => {
  const members = records.get(record);
  return members && members.get(kMembers[name] || name);
};

const known = (row: Row): Attribute => {
  const attribute = attributeOf(`${row.section}/${row.name}`);
  assert.ok(attribute, `${row.section}/${row.name} is missing`);
  return attribute;
};

test('every attribute of the daemon’s tables is known, and no other', () => {
  const daemons = rows.map(({section, name}) => `${section}/${name}`).sort();
  const ours = knownAttributes().map(({section, name}) => `${section}/${name}`).sort();
  assert.ok(daemons.length > 300, `${daemons.length}`);
  assert.deepEqual(ours, [...new Set(daemons)]);
  assert.equal(knownSections().length, 37);
});

test('every kind is the one that the daemon reads', () => {
  for (const row of rows) {
    const member = memberOf(row);
    const plain = !member || member.text ? 'text' : member.type === 'float' ? 'decimal' : 'number';
    const wanted = row.name === 'uiFD_NetMask' ? 'mask' : kKinds[row.store] || plain;
    assert.equal(known(row).kind, wanted, `${row.section}/${row.name}`);
  }
});

test('every width and range is the one of the daemon’s record', () => {
  let widths = 0;
  let ranges = 0;
  for (const row of rows) {
    const {kind, width, min, max} = known(row);
    const member = memberOf(row);
    const at = `${row.section}/${row.name}`;
    if (kind === 'text') {
      assert.equal(width, member && member.most, at);
      widths++;
    } else if (kind === 'number') {
      assert.deepEqual([min, max], [0, member && member.most], at);
      ranges++;
    } else if (kind === 'hex') {
      assert.equal(width, member && member.size, at);
    } else {
      assert.deepEqual([width, min, max], [undefined, undefined, undefined], at);
    }
  }
  assert.ok(widths > 70 && ranges > 150, `${widths} ${ranges}`);
});

test('a device number has the length that the daemon asks for', () => {
  const {least, most} = attributeOf('stBaseInfo/strFD_DeviceNo')!;
  assert.deepEqual([least, most], deviceNoLength());
  assert.deepEqual(knownAttributes().filter((each) => each.least).length, 1);
});

test('a setting of an item is known by its section and its own name', () => {
  const first = attributeOf('stMainStream/stVideoPara/VChn_0/ucFD_Gop');
  assert.equal(first && first.max, 255);
  assert.equal(attributeOf('stMainStream/stVideoPara/VChn_31/ucFD_Gop'), first);
  for (const path of ['stMainStream/ucFD_Unheard', 'stUnheard/ucFD_Gop', 'ucFD_Gop', ''])
    assert.equal(attributeOf(path), undefined, path);
});

test('what belongs to one recorder is told by one rule', () => {
  for (const {section, name, identity} of knownAttributes())
    assert.equal(identifies(`${section}/${name}`), identity, `${section}/${name}`);
  const rows: [string, boolean][] = [
    ['stBaseInfo/strFD_DeviceNo', true], ['stVehicle/strFD_CarVIN', true],
    ['stLocalEth0/strFD_Mac', true], ['stWifi/uiFD_GateWay', true], ['stWifi/strFD_SSID', true],
    ['stWifiAp/strFD_SSID', true], ['stMobileGNet/strFD_PhoneNo', true],
    ['stGB28181/strFD_DeviceId', true], ['stGB28181/stGB28181SubID/SUBDEVID_3/strFD_LensId', true],
    // Disks and sensors differ from one recorder to the next.
    ['stBaseInfo/ucFD_DiskFormatFlag', true], ['stBaseInfo/usFD_SizeOf2ndPart', true],
    ['stGSensor/fFD_X', true], ['stGSensor/fFD_Y', true], ['stGSensor/fFD_Z', true],
    ['stGSensor/fFD_XLimit', false],
    // Where a platform is, is the same for a whole fleet.
    ['stCMS/uiFD_IP', false], ['stServerGroup/uiFD_IP', false],
    ['stGB28181/strFD_ServerID', false], ['stSubStream/ucFD_FrameRate', false],
    ['stVideoCrop/stVideoCropPara/VChn_0/uiFD_X', false],
    // What the records lack is known by its name.
    ['stNew/strFD_Mac', true], ['stNew/stItem/Item_2/strFD_SSID', true], ['stNew/strFD_Apn', false],
  ];
  for (const [path, own] of rows) assert.equal(identifies(path), own, path);
});

const pathsWhere = (is: (attribute: Attribute) => boolean | undefined) =>
  knownAttributes().filter(is).map(({section, name}) => `${section}/${name}`).sort();

test('passwords and the authentication code are secret, and nothing else is', () => {
  assert.deepEqual(pathsWhere(({secret}) => secret), [
    'stGB28181/strFD_DevicePass', 'stIpc/strFD_Pass', 'stMobileGNet/strFD_UserPasswd',
    'stServerGroup/strFD_UserPWD', 'stUserSec/strFD_AdminPasswd', 'stUserSec/strFD_NormalPasswd',
    'stUserSec/strFD_UserPWD', 'stVehicle/strFD_Authentication', 'stWifi/strFD_Passwd',
    'stWifiAp/strFD_Passwd']);
  for (const {secret, kind, name} of knownAttributes()) if (secret) assert.equal(kind, 'text', name);
});

test('what moves by itself and what is only told are no settings', () => {
  assert.deepEqual(pathsWhere(({live}) => live), ['stBaseInfo/strFD_CurTime',
    'stBaseInfo/ucFD_NowIsDst', 'stLockOfPassword/ucFD_ErrorCount',
    'stLockOfPassword/uiFD_LockTime']);
  const sections = new Set(pathsWhere(({status}) => status).map((path) => path.split('/')[0]));
  assert.deepEqual([...sections], ['stSystemInfo', 'stVersion']);
});

test('the moment of the last wrong entry has no unit', () => {
  assert.equal(attributeOf('stLockOfPassword/uiFD_LockTime')!.unit, undefined);
});

test('a switch is a number of its own', () => {
  for (const {section, name, onOff, kind} of knownAttributes()) {
    const flags = section === 'stGB28181' && name === 'ucFD_Enable';
    if (onOff) assert.equal(kind, 'number', name);
    if (/Enable$/.test(name)) assert.equal(onOff, !flags, name);
  }
});
