import {answers, bodies, signedIn} from './page';
import assert from 'node:assert/strict';
import test, {beforeEach} from 'node:test';
import {answerDialog} from '../../src/state/dialog';
import {resetStore, get} from '../../src/state/store';
import {chooseFile, chooseRows, exportFile, importRows, restoreImported}
  from '../../src/state/transfer';

let held = new Map<string, string>();

const config = () => `<VariCfgSec><stBaseInfo strFD_DeviceNo="${held.get('no')}"/>` +
    `<stMobileGNet strFD_Apn="${held.get('apn')}" strFD_PhoneNo="*99#"/></VariCfgSec>`;

beforeEach(() => {
  resetStore();
  signedIn();
  bodies.length = 0;
  held = new Map([['no', '80012345'], ['apn', 'CMNET']]);
  Object.assign(answers, {
    'page.css': '', 'favicon.svg': '',
    export_CfgFile: () => `{ "strFD_CfgPara": "${config()}", "result": 1 }`,
    import_CfgFile: () => {
      const text = decodeURIComponent(bodies[bodies.length - 1] || '');
      const apn = /strFD_Apn="([^"]*)"/.exec(text);
      const no = /strFD_DeviceNo="([^"]*)"/.exec(text);
      if (apn) held.set('apn', apn[1] || '');
      if (no) held.set('no', no[1] || '');
      return '{"result": 1 }';
    },
  });
});

const choose = (text: string) => chooseFile('a.xml', new TextEncoder().encode(text));
const sent = () => bodies.map((body) => decodeURIComponent(body).replace('strFD_CfgPara=', ''));

async function importNow() {
  const done = importRows();
  answerDialog(true);
  await done;
}

test('of another recorder’s file its number is left out, and only the rest is sent', async () => {
  await choose('<VariCfgSec><stBaseInfo strFD_DeviceNo="90054321"/>' +
      '<stMobileGNet strFD_Apn="fleet" strFD_PhoneNo="*99#"/></VariCfgSec>');
  const {foreign, rows} = get().transfer;
  assert.deepEqual([foreign, rows.length], ['90054321', 2]);
  await importNow();
  assert.deepEqual(sent(), ['<VariCfgSec><stMobileGNet strFD_Apn="fleet"/></VariCfgSec>']);
  assert.deepEqual([held.get('no'), get().transfer.end?.end], ['80012345', 'applied']);
});

test('a row that the user adds is sent, one that is left out is not', async () => {
  await choose('<VariCfgSec><stBaseInfo strFD_DeviceNo="90054321"/>' +
      '<stMobileGNet strFD_Apn="fleet"/></VariCfgSec>');
  chooseRows(['stBaseInfo/strFD_DeviceNo'], true);
  chooseRows(['stMobileGNet/strFD_Apn'], false);
  await importNow();
  assert.deepEqual(sent(), ['<VariCfgSec><stBaseInfo strFD_DeviceNo="90054321"/></VariCfgSec>']);
});

test('with nothing chosen, and without a yes, nothing is sent', async () => {
  await choose('<VariCfgSec><stMobileGNet strFD_Apn="fleet"/></VariCfgSec>');
  const done = importRows();
  answerDialog(false);
  await done;
  chooseRows(['stMobileGNet/strFD_Apn'], false);
  await importRows();
  assert.deepEqual([sent(), get().dialog], [[], null]);
});

test('what an import replaced comes back', async () => {
  await choose('<VariCfgSec><stMobileGNet strFD_Apn="fleet"/></VariCfgSec>');
  await importNow();
  const done = restoreImported();
  while (!get().dialog) await new Promise((resume) => { setImmediate(resume); });
  answerDialog(true);
  await done;
  assert.equal(held.get('apn'), 'CMNET');
});

test('a file that the recorder could not take is not compared', async () => {
  await choose('<VariCfgSec><a b="1"');
  assert.deepEqual([get().transfer.error?.error, get().transfer.rows], ['cut', []]);
});

test('an export is named after the recorder and holds all of it', async () => {
  const offered: string[] = [];
  await exportFile((name, text) => offered.push(name, text));
  assert.match(offered[0] || '', /^recorder-80012345-\d{4}-\d\d-\d\d\.xml$/);
  assert.match(offered[1] || '', /strFD_Apn="CMNET" strFD_PhoneNo="\*99#"/);
});
