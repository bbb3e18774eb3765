// The hint below a control: a range, or how many bytes it may have.
import '../state/page';
import assert from 'node:assert/strict';
import test, {beforeEach} from 'node:test';
import {everyField} from '../../src/model/everyField';
import {resetStore} from '../../src/state/store';
import {limitText} from '../../src/views/parts/FieldRow';
import {addWords, speak} from '../../src/words';
import {en} from '../../src/words/en';
import {settings} from '../../src/words/en-settings';

addWords('en', {...en, ...settings});

beforeEach(() => {
  resetStore();
  speak('en');
});

const kHints: [string, string, string][] = [
  ['stMobileGNet/strFD_Apn', 'CMNET', 'Up to 31 bytes.'],
  ['stReserve/ucReserveData', '00', 'Up to 128 bytes.'],
  ['stBaseInfo/strFD_DeviceNo', '80012345', '5 to 12 bytes.'],
  ['stPower/usPOffDelayTime', '60', '0 to 65535.'],
  ['stLocalEth0/uiFD_LocalIp', '192.168.1.88', ''],
];

test('among all settings each tells its width in bytes or its range', () => {
  const fields = everyField(new Map(kHints.map(([path, value]) => [path, value])),
      (path) => ({label: () => path}));
  assert.deepEqual(fields.map((field) => [field.path, limitText('all', field)]),
      kHints.map(([path, , hint]) => [path, hint]));
});

test('a form tells a width only where there is a least one', () => {
  const [field] = everyField(new Map([['stMobileGNet/strFD_Apn', 'CMNET']]),
      (path) => ({label: () => path}));
  assert.equal(limitText('mobile', field!), '');
});
