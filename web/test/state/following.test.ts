import {answers, moves, signedInTo} from './page';
import assert from 'node:assert/strict';
import test, {beforeEach} from 'node:test';
import {sectionById} from '../../src/model/sections';
import {answerDialog} from '../../src/state/dialog';
import {type} from '../../src/state/editing';
import {newOrigin} from '../../src/state/move';
import {readSection, take} from '../../src/state/reading';
import {saveSection} from '../../src/state/saving';
import {get, resetStore, sectionState, set} from '../../src/state/store';
import {chooseFile, importRows, restoreImported} from '../../src/state/transfer';

const kLocalIp = 'stLocalEth0/uiFD_LocalIp';
let apn = 'CMNET';

const config = () => `<VariCfgSec><stLocalEth0 uiFD_LocalIp="192.168.1.88"/>` +
    `<stMobileGNet strFD_Apn="${apn}"/></VariCfgSec>`;

beforeEach(() => {
  resetStore();
  apn = 'CMNET';
  signedInTo({
    get_LocalNetInfo: '{ "strFD_LocalIp": "192.168.1.88", "strFD_NetMask": "255.255.255.0", ' +
        '"strFD_GateWay": "0.0.0.0", "strFD_Mac": "", "result": 1 }',
    set_LocalNetInfo: '{"result": 0 }',
    export_CfgFile: () => `{ "strFD_CfgPara": "${config()}", "result": 1 }`,
    import_CfgFile: '{"result": 0 }',
  });
});

const choose = (text: string) => chooseFile('a.xml', new TextEncoder().encode(text));

async function importNow(work = importRows) {
  const done = work();
  while (!get().dialog) await new Promise((resume) => { setImmediate(resume); });
  answerDialog(true);
  await done;
}

async function typed(address: string) {
  const section = sectionById('localEth0');
  take(section, await readSection(section));
  const field = sectionState('localEth0').fields.find(({path}) => path === kLocalIp);
  assert.ok(field);
  type('localEth0', field, address);
  return field;
}

async function saveNow() {
  const done = saveSection('localEth0');
  answerDialog(true);
  await done;
}

test('the pages follow the recorder to an address and to nothing else', () => {
  assert.equal(newOrigin('192.168.1.88', ' 192.168.1.90'), 'http://192.168.1.90');
  for (const wanted of ['evil.example.com', '192.168.1.90:8080', '192.168.1.90@evil.example.com',
    '192.168.1', '//evil', '192.168.1.88', '', undefined])
    assert.equal(newOrigin('192.168.1.88', wanted), null, wanted);
  assert.equal(newOrigin('10.0.0.1', '10.0.0.2'), null);
});

test('a move that was not confirmed does not claim that anything was read', async () => {
  await choose('<VariCfgSec><stLocalEth0 uiFD_LocalIp="192.168.1.90"/></VariCfgSec>');
  await importNow();
  const {end, lines} = get().transfer;
  assert.deepEqual([end?.end, end?.known, lines.map(({took}) => took)],
      ['deviceSilent', 'unknown', ['unknown']]);

  await typed('192.168.1.90');
  await saveNow();
  const {note, typed: left} = sectionState('localEth0');
  assert.deepEqual([note?.kind === 'end' && [note.end, note.known], left],
      [['deviceSilent', 'unknown'], {[kLocalIp]: '192.168.1.90'}]);
});

test('a recorder that was followed is not called silent while its new page comes', async () => {
  const field = await typed('192.168.1.90');
  const real = Date.now;
  answers['http://192.168.1.90/favicon.svg'] = '';
  answers.set_LocalNetInfo = () => {
    Date.now = () => real() + 2000;  // as long as a restart
    return '{"result": 1 }';
  };
  await saveNow();
  Date.now = real;
  const {note, typed: left, held} = sectionState('localEth0');
  assert.deepEqual(moves, ['http://192.168.1.90/login.html#moved']);
  assert.deepEqual([note?.kind === 'end' && note.end, left, held[field.path]],
      ['moved', {}, '192.168.1.90']);
});

test('a move without an answer is forgotten by the next import', async () => {
  const moving = {where: 'http://192.168.1.90', silent: true};
  await choose('<VariCfgSec><stMobileGNet strFD_Apn="fleet"/></VariCfgSec>');
  set({transfer: {...get().transfer, moving}});
  await importNow();
  assert.deepEqual([get().transfer.moving, get().transfer.end?.end], [null, 'deviceSilent']);
  const former = new Map([['stMobileGNet/strFD_Apn', 'former']]);
  set({transfer: {...get().transfer, moving, former}});
  await importNow(restoreImported);
  assert.equal(get().transfer.moving, null);
});
