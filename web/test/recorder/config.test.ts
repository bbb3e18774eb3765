import assert from 'node:assert/strict';
import {spawnSync} from 'node:child_process';
import test from 'node:test';
import {configOf, isSecret, openFile, printFile, printMessage, settingsOf}
  from '../../src/recorder/config';
import {readXml, type Element} from '../../src/recorder/xml';

const bytes = (text: string) => new TextEncoder().encode(text);
const errorOf = (text: string) => {
  const file = openFile(bytes(text));
  return 'error' in file ? file.error : null;
};

test('a file that is no configuration, is cut or repeats something is refused with the reason', () => {
  const rows: [string, string | null][] = [
    ['<VariCfgSec><stWifi a="1"/></VariCfgSec>', null],
    ['preamble <VariCfgSec Action="DEVICE_QUERY" Result="0"><stWifi a=\'1\'/></VariCfgSec>\n', null],
    ['', 'foreign'], ['hello', 'foreign'], ['<html></html>', 'foreign'],
    ['<VariCfgSection><a b="1"/></VariCfgSection>', 'foreign'],
    ['<VariCfgSec/>', 'empty'], ['<VariCfgSec><stWifi a="1"/>', 'cut'],
    ['<VariCfgSec><stWifi a="1', 'cut'], ['<VariCfgSec><stWifi a="1"', 'cut'],
    ['<VariCfgSec><stWifi a=1/></VariCfgSec>', 'broken'],
    ['<VariCfgSec><stWifi a="1"/></VariCfgSec><b/>', 'broken'],
    ['<VariCfgSec><stWifi a="1" a="2"/></VariCfgSec>', 'repeated'],
    ['<VariCfgSec><stWifi a="1"/><stWifi a="2"/></VariCfgSec>', 'repeated'],
    ['<VariCfgSec><stWifi a="1"/><stWifi b="2"/></VariCfgSec>', null],
    ['<VariCfgSec><stWifi a="&#xC0;"/></VariCfgSec>', 'char'],
    [`<VariCfgSec><a b="${'x'.repeat(30719)}"/></VariCfgSec>`, 'long'],
    [`<VariCfgSec>${'<a>'.repeat(30)}<b c="1"/>${'</a>'.repeat(30)}</VariCfgSec>`, null],
    [`<VariCfgSec>${'<a>'.repeat(31)}<b c="1"/>${'</a>'.repeat(31)}</VariCfgSec>`, 'deep'],
    [`<VariCfgSec>${'<a>'.repeat(8000)}`, 'deep'],
    [`<VariCfgSec>${'x'.repeat(20 << 20)}<a b="1"/></VariCfgSec>`, 'long'],
    [`<VariCfgSec>${'x'.repeat(900 << 10)}<a b="1"/></VariCfgSec>`, null],
  ];
  for (const [text, error] of rows) assert.equal(errorOf(text), error, text.slice(0, 80));
});

test('of what is repeated across elements the name is told, and no line', () => {
  const text = '<VariCfgSec><stWifi a="1"/><stWifi a="2"/></VariCfgSec>';
  assert.deepEqual(openFile(new TextEncoder().encode(text)),
      {error: 'repeated', name: 'stWifi/a', line: 0});
});

test('a file in GBK is read like one in UTF-8', () => {
  const gbk = Uint8Array.from([...bytes('<VariCfgSec><a b="'), 0xb3, 0xb5, ...bytes('"/></VariCfgSec>')]);
  const file = openFile(gbk);
  assert.deepEqual('settings' in file && [...file.settings], [['a/b', '车']]);
});

test('a document holds the settings that it is made of, nested as their paths say', () => {
  const settings: [string, string][] = [['stWifi/strFD_SSID', 'a"<&>\n'],
    ['stMainStream/stVideoPara/VChn_3/ucFD_Gop', '5'], ['stWifi/ucFD_WorkMode', '2']];
  const root = configOf(settings, [['stMainStream/StartChn', '3']]);
  assert.equal(printMessage(root), '<VariCfgSec><stMainStream StartChn="3"><stVideoPara>' +
      '<VChn_3 ucFD_Gop="5"/></stVideoPara></stMainStream>' +
      '<stWifi strFD_SSID="a&quot;&lt;&amp;>&#x0A;" ucFD_WorkMode="2"/></VariCfgSec>');
  const again = readXml(printMessage(root), true) as Element;
  assert.deepEqual(settingsOf(again), settingsOf(root));
});

test('what is printed is what another reader reads', () => {
  const value = `a"'<&>车 \t`;
  const text = printFile(configOf([['a/b/c', value]]));
  const {status, stdout} = spawnSync('xmllint', ['--xpath', 'string(/VariCfgSec/a/b/@c)', '-'],
      {input: text});
  assert.equal(status, 0);
  assert.equal(stdout.toString().replace(/\n$/, ''), value);
});

test('a recorder that writes markup into values is read all the same', () => {
  const root = readXml('<VariCfgSec><a b="x<y&z" c="&unknown;" b="2"/></VariCfgSec>', false);
  assert.deepEqual([...settingsOf(root as Element)], [['a/b', 'x<y&z'], ['a/c', '&unknown;']]);
});

test('a file of a great many attributes is looked through at once', () => {
  const many = Array.from({length: 60000}, (_, i) => ` a${i}="1"`).join('');
  const begin = Date.now();
  assert.equal(errorOf(`<VariCfgSec><a${many}/></VariCfgSec>`), 'long');
  assert.ok(Date.now() - begin < 2000, `${Date.now() - begin} ms`);
});

test('passwords, keys and tokens are known by their names', () => {
  const secrets = ['stWifi/strFD_Passwd', 'stUserSec/stCustomUser/USER_0/strFD_UserPWD',
    'stGB28181/strFD_DevicePass', 'stMobileGNet/strFD_UserPasswd', 'stIpc/stChnIpc/Ipc_0/strFD_Pass',
    'stVehicle/strFD_Authentication', 'stNew/strFD_ApiKey', 'stNew/strFD_Psk', 'stNew/strFD_Psw',
    'stNew/strFD_Token', 'stNew/strFD_ClientSecret', 'stNew/strFD_Passwd2'];
  for (const path of secrets) assert.ok(isSecret(path), path);
  for (const path of ['stExport/ucFD_PasswdEnable', 'stWifi/strFD_SSID', 'stWifi/ucFD_AuthMode',
    'stWifi/ucFD_CryptType', 'stNetWorkMode/ucFD_GNAuthMode', 'stUserSec/ucFD_PWEnableFlag'])
    assert.ok(!isSecret(path), path);
});
