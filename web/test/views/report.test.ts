import '../state/page';
import assert from 'node:assert/strict';
import test, {beforeEach} from 'node:test';
import {kReplies} from '../../src/recorder/replies';
import {watchHistory} from '../../src/state/history';
import {setBuild} from '../../src/state/session';
import {patchSection, resetStore, set} from '../../src/state/store';
import {addWords, speak} from '../../src/words';
import {en} from '../../src/words/en';
import {login as enLogin} from '../../src/words/en-login';
import {zh} from '../../src/words/zh';
import {login as zhLogin} from '../../src/words/zh-login';
import {reportText} from '../../src/views/parts/report';

addWords('en', {...enLogin, ...en});
addWords('zh', {...zhLogin, ...zh});
Object.defineProperty(globalThis, 'navigator',
    {value: {language: 'en-GB', userAgent: 'Browser/87 (Terminal)'}});
Object.assign(globalThis, {innerWidth: 800, innerHeight: 480});

const kKeys = [...kReplies.get_SystemInfo.matchAll(/(?:^|[ /])(?:(\w+)=)?(\w+)(?=:|\s|$)/g)]
    .map(([, alias, key]) => alias || key || '');
const kWords = ['ucFD_WifiMode', 'disk1Size', 'disk2Size', 'strFD_GpsPos', 'strFD_IOStatus'];
const isText = (key: string) => /^str|^uiFD_IP|IMSI|ICCID/.test(key);

const secret = 'hunter2';

beforeEach(() => {
  resetStore();
  speak('en');
  setBuild('b0123456789');
  watchHistory();
});

// A status whose every text names its own key.
function readStatus() {
  const values: Record<string, string> = {};
  for (const key of kKeys) values[key] = isText(key) && !kWords.includes(key) ? `<${key}>` : '1';
  set({status: {at: Date.now(), values: {...values, ucFD_WifiMode: 'Client',
    uiFD_GNetSignal: '24', disk1Size: '100GB/25GB', strFD_GpsPos: 'N22.5 E114.1',
    strFD_IOStatus: '10'}}});
}

test('the report tells versions, status, the last half hour and the browser', () => {
  readStatus();
  const text = reportText();
  const told = ['<strFD_AppVersion>', '<strFD_McuVersion>', '<strFD_LdrVersion>',
    '<strFD_KnlVersion>', '<strFD_RfsVersion>', '<strFD_DbtVersion>', '<strFD_DeviceNo>',
    'Signal: 4 of 5 bars (24)', 'Disk 1: 75 % used', 'Position: N22.5 E114.1', 'States: 1 On, 2 Off',
    'http://192.168.1.88, build b0123456789', 'Browser/87 (Terminal), en-GB, 800 x 480',
    'Last 30 minutes\nWithout an answer: 0 times, 0 s together.\nMobile network: 4 of 5 bars (24)\n',
    'Platform server: Connected\n', 'Last saves\nnone', 'The recorder answers.'];
  for (const part of told) assert.ok(text.includes(part), `${part} in:\n${text}`);
});

test('what names a subscriber stays out', () => {
  readStatus();
  const text = reportText();
  const left = kKeys.filter((key) => isText(key) && !kWords.includes(key))
      .filter((key) => !text.includes(`<${key}>`));
  assert.deepEqual(left, ['strFD_GNetIMEI', 'ucFD_SimIMSI', 'ucFD_SimICCID']);
});

test('nor does it come with another value', () => {
  set({status: {at: Date.now(), values: {strFD_GNetRevision: 'R05 IMEI: 860102034567894, V2'}}});
  assert.match(reportText(), /^Module revision: R05 IMEI: …, V2$/m);
});

test('saves are told with their ends and without their values', () => {
  patchSection('wifi', {
    held: {'stWifi/strFD_Passwd': secret}, typed: {'stWifi/strFD_Passwd': secret},
    former: {'stWifi/strFD_Passwd': secret}, note: {kind: 'end', end: 'partly', known: 'read',
      rows: [{field: {path: 'stWifi/strFD_Passwd', kind: 'secret', label: 'wifiPassword'},
        from: secret, to: secret}]},
  });
  patchSection('mobile', {note: {kind: 'end', end: 'deviceSilent', known: 'unsent', rows: []}});
  const text = reportText();
  assert.match(text, /\d Wi-Fi: Accepted, but the recorder holds other values than were sent\.$/m);
  assert.match(text, /\d Mobile network: The recorder does not .* Nothing was sent\./);
  assert.ok(!text.includes(secret));
});

test('a value of several lines stays one line', () => {
  set({status: {at: Date.now(), values: {strFD_AppVersion: 'V1\r\nLast saves: none'}}});
  assert.match(reportText(), /^Application: V1 Last saves: none$/m);
});

test('the report speaks as the page does', () => {
  readStatus();
  speak('zh');
  const text = reportText();
  assert.match(text, /^信号: 4\/5 格（24）$/m);
  assert.match(text, /^最近的保存\n无$/m);
  assert.ok(!/\{\w+\}|undefined/.test(text), text);
});

test('without a status there is a report all the same', () => {
  set({health: {state: 'serviceSilent', since: 0, retryAt: 0}});
  assert.match(reportText(), /^No answer from the web service\./m);
});
