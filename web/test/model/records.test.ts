// Compares the pages' widths and ranges with the daemon's records, so that neither side can change
// alone. A record's text field reserves one byte for its terminator.
import assert from 'node:assert/strict';
import test from 'node:test';
import type {Read} from '../../src/model/fields';
import {kSections} from '../../src/model/sections';
import {kReplies} from '../../src/recorder/replies';
import {readRecords, type Member} from './daemon';

const records = readRecords();

// The record of an item, where a setting's elements are items of a list.
const kItems: Record<string, string> = {
  'stMainStream/stVideoPara': 'stVideoItem', 'stVideoMirror/stVideoMirrorPara': 'stVideoMirrorItem',
  'stGB28181/stGB28181SubID': 'stGB28181',
};
const kMembers: Record<string, string> = {strFD_LensId: 'strSubId', strFD_AlarmInId: 'strSubId'};
// The password's form: each of its fields is the first user's password.
const kPassword = ['current', 'fresh', 'repeat'];
// What the pages read from the flags byte.
const kParts = ['stGB28181/enable', 'stGB28181/streamType'];

function memberAt(path: string): Member {
  if (kPassword.includes(path)) return memberAt('stUserItem/strFD_UserPWD');
  const parts = path.split('/');
  const name = parts.pop() || '';
  const record = kItems[parts.slice(0, 2).join('/')] || parts[0] || '';
  const member = records.get(record)?.get(kMembers[name] || name);
  assert.ok(member, `${path}: no such member of ${record}`);
  return member;
}

// A recorder with two cameras and two sub-devices, so that later ones are checked, too.
const settings = new Map<string, string>();
for (const k of [0, 1]) {
  for (const name of ['ucFD_FrameRate', 'uiFD_BitRate'])
    settings.set(`stMainStream/stVideoPara/VChn_${k}/${name}`, '1');
  for (const name of ['ucFD_LeftRight', 'ucFD_UpDown'])
    settings.set(`stVideoMirror/stVideoMirrorPara/VChn_${k}/${name}`, '1');
  for (const name of ['strFD_LensId', 'strFD_AlarmInId'])
    settings.set(`stGB28181/stGB28181SubID/SUBDEVID_${k}/${name}`, '1');
}
const read: Read = {reply: {}, settings};
const fields = kSections.flatMap((section) => section.fields(read))
    .filter(({path}) => !kParts.includes(path));

test('every text is as long as its record allows', () => {
  const texts = fields.filter(({kind}) => ['text', 'secret', 'host', 'mac'].includes(kind));
  assert.ok(texts.length > 20);
  for (const {path, bytes, most = 0} of texts) {
    const member = memberAt(path);
    assert.ok(member.text, path);
    assert.equal(bytes, member.most, path);
    assert.ok(most <= member.most, path);
  }
});

test('every number and choice fits its record', () => {
  const numbers = fields.filter(({kind, path}) =>
    kind === 'number' || (kind === 'choice' && path !== 'stDisplay/strLanguage'));
  assert.ok(numbers.length > 10);
  for (const {path, min = 0, max, options} of numbers) {
    const member = memberAt(path);
    const all = options ? options.map(([value]) => Number(value)) : [min, max || Infinity];
    assert.ok(!member.text, path);
    for (const value of all) assert.ok(value >= 0 && value <= member.most, `${path} ${value}`);
  }
});

test('codes and ports may be anything that their record holds', () => {
  const open = fields.filter(({path}) => /Port$|Mode$|CryptType$|NetType$|TimeZone$/.test(path))
      .filter(({kind}) => kind === 'number');
  assert.ok(open.length > 5);
  for (const {path, max} of open) assert.equal(max, memberAt(path).most, path);
});

test('switches are single bytes, addresses are addresses', () => {
  for (const {path, kind} of fields) {
    if (kind === 'switch') assert.equal(memberAt(path).most, 0xff, path);
    if (kind === 'address' || kind === 'mask') assert.equal(memberAt(path).most, 0xffffffff, path);
  }
});

test('a language is two letters', () => {
  const language = fields.find(({path}) => path === 'stDisplay/strLanguage');
  const member = memberAt('stDisplay/strLanguage');
  for (const [value] of language?.options || [])
    assert.ok(value.length <= member.most, value);
});

// Reply, record, members with a different name there. Texts that the service writes itself (a
// dotted address, its own time, the session) have no member.
type Row = readonly [keyof typeof kReplies, string, Record<string, string>?];
const kRows: readonly Row[] = [
  ['get_BaseInfo', 'stBaseInfo', {strFD_CurTime: ''}],
  ['get_GNetInfo', 'stMobileGNet'], ['get_WifiInfo', 'stWifi'],
  ['get_LocalNetInfo', 'stLocalEth0',
    {strFD_LocalIp: '', strFD_NetMask: '', strFD_GateWay: ''}],
  ['get_VCmsInfo', 'stCMS', {strFD_Address: 'strFD_Domain'}],
  ['get_VersionInfo', 'stVersion', {strFD_AppVersion: 'strAppVer', strFD_KnlVersion: 'strAppVer'}],
  ['get_UserSecurity', 'stUserItem',
    {strAdminPasswd: 'strFD_UserPWD', strNormalPasswd: 'strFD_UserPWD'}],
  ['get_GB28181Info', 'stGB28181', {strFD_LensId: '', strFD_AlarmInId: ''}],
  ['get_SystemInfo', 'stSystemInfo', {
    strFD_GpsPos: 'GpsPos', strFD_GNetIMEI: 'IMEI', strFD_GNetRevision: 'ATI',
    ucFD_SimIMSI: 'IMSI', ucFD_SimICCID: 'ICCID', ucFD_WifiMode: '', disk1Size: 'Disk1Size',
    disk2Size: 'Disk2Size', strFD_IOStatus: 'IO', strFD_McuVersion: 'McuVer',
    strFD_LdrVersion: 'BootVer', strFD_KnlVersion: 'KnlVer', strFD_RfsVersion: 'RfsVer',
    strFD_AppVersion: 'AppVer', strFD_DbtVersion: 'DBVer', uiFD_IP: '', strFD_DeviceNo: 'DeviceNo',
  }],
];

test('every text in a reply is as long as its record lets it be', () => {
  let compared = 0;
  for (const [reply, record, names = {}] of kRows) {
    for (const row of kReplies[reply].split(' ').filter((text) => text.includes(':'))) {
      const [, alias = '', key = '', width] = /(?:(\w+)=)?(\w+):(\d+)$/.exec(row) || [];
      const name = alias || key;
      const member = name in names ? names[name] : name;
      if (!member) continue;
      assert.equal(Number(width), records.get(record)?.get(member)?.most, `${reply} ${name}`);
      compared++;
    }
  }
  assert.ok(compared > 30, `${compared}`);
});
