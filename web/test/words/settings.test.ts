// The words of the settings against what the daemon knows.
import assert from 'node:assert/strict';
import {readFileSync} from 'node:fs';
import {join} from 'node:path';
import test from 'node:test';
import {attributeOf, knownAttributes, knownSections} from '../../src/model/schema';
import {settingsOf} from '../../src/recorder/config';
import {readXml} from '../../src/recorder/xml';
import {kAttributeWords} from '../../src/words/attributes';
import {attributeWords, itemWords, sectionWords, unitWords} from '../../src/words/settings';

declare const PROJECT: string;

// A whole configuration with every section and item.
function exported(): string[] {
  const bytes = readFileSync(join(PROJECT, 'tools/devsim/devsim_default.xml'));
  const text = new TextDecoder('gbk').decode(bytes);
  const root = readXml(text.slice(text.indexOf('<VariCfgSec')), false);
  assert.ok(root && !('error' in root));
  return [...settingsOf(root).keys()];
}

const kHan = /[\u4e00-\u9fff]/;
// What has no other name in Chinese.
const kSame = /^(?:IMEI|IMSI|ICCID)$/;

const paths = knownAttributes().map(({section, name}) => `${section}/${name}`);

test('every section, attribute and unit has words in both languages', () => {
  const pairs = [
    ...knownSections().map((name) => [name, sectionWords(name, 'zh'), sectionWords(name, 'en')]),
    ...paths.map((path) => [path, attributeWords(path, 'zh'), attributeWords(path, 'en')]),
  ];
  assert.ok(pairs.length > 300);
  for (const [name = '', zh = '', en = ''] of pairs) {
    assert.ok(kHan.test(zh) || kSame.test(zh), `${name}: ${zh}`);
    assert.ok(/^[^\u4e00-\u9fff#=;]+$/.test(en) && en.trim() === en, `${name}: ${en}`);
    assert.ok(!/^st[A-Z]|FD_|#/.test(en + zh), `${name}: ${en}`);
  }
  for (const {unit} of knownAttributes())
    if (unit) assert.ok(unitWords(unit, 'zh') !== unit && unitWords(unit, 'en') !== unit, unit);
});

test('every row of the words belongs to a setting', () => {
  const names = new Set(paths.flatMap((path) => {
    const name = path.replace(/.*\/(?:(?:uc|us|ui|str|f)(?:FD_)?)?/, '');
    return [name, name.replace(/\d/, '#'), `${path.replace(/\/.*/, '')}/${name}`];
  }));
  for (const row of kAttributeWords.split(';')) {
    const parts = row.trim().split('=');
    assert.ok(names.has(parts[0] || ''), row);
    assert.equal(parts.length, 3, row);
  }
});

test('no two settings beside each other have the same words', () => {
  const names = new Map<string, string>();
  for (const path of exported()) {
    for (const language of ['zh', 'en'] as const) {
      const words = [language, path.split('/')[0], itemWords(path, language),
        attributeWords(path, language)].join('|');
      assert.equal(names.get(words), undefined, `${path}: ${words}`);
      names.set(words, path);
    }
  }
  assert.ok(names.size > 1300);
});

test('every item of a whole configuration has words and a number from 1', () => {
  for (const path of exported()) {
    assert.ok(attributeOf(path), path);
    const items = path.split('/').filter((name) => /_\d+$/.test(name) && !/FD_/.test(name));
    if (!items.length) assert.equal(itemWords(path, 'en'), '', path);
    else assert.match(itemWords(path, 'zh'), /^[\u4e00-\u9fff]+ [1-8]$/, path);
  }
});

test('a digit in a name comes back in its words, and a section may have words of its own', () => {
  const rows: [string, string, string][] = [
    ['stTimingRec/stTimingRecDay/Day_0/uiStartT2', '时段 2 开始', 'Period 2 start'],
    ['stSystemInfo/Disk3Exist', '硬盘 3', 'Disk 3'],
    ['stSystemInfo/JTT808Status', 'JT/T 808 平台状态', 'JT/T 808 platform state'],
    ['stBaseInfo/usFD_SizeOf2ndPart', '第二分区大小', 'Size of second partition'],
    ['stOverlay/ucFD_IOEnable', '叠加输入输出', 'Show inputs and outputs'],
    ['stAlarm/stAlarmInIO/IO_0/ucIOEnable', '启用', 'In use'],
    ['stGSensor/fFD_X', 'X 轴', 'X axis'], ['stSpeed/usFD_OverTime', 'OverTime 数值', 'OverTime'],
    ['stVideoCrop/stVideoCropPara/VChn_0/uiFD_X', 'X 坐标', 'X'],
  ];
  for (const [path, zh, en] of rows)
    assert.deepEqual([attributeWords(path, 'zh'), attributeWords(path, 'en')], [zh, en]);
  assert.equal(itemWords('stAlarm/stAlarmInIO/IO_0/ucIOEnable', 'en'), 'Alarm input 1');
  assert.equal(itemWords('stAlarmLinkage/stAlarmOutIO/IO_1/ucIOEnable', 'en'), 'Alarm output 2');
});

test('what nobody knows keeps its name', () => {
  assert.equal(sectionWords('stUnheard', 'en'), 'stUnheard');
  for (const name of ['ucFD_Unheard', 'ucFD_Unheard7', 'unheard', 'ucFD_'])
    assert.equal(attributeWords(`stWifi/${name}`, 'zh'), name);
  assert.equal(itemWords('stUnheard/list/Gate_11/ucFD_X', 'zh'), 'Gate 12');
});
