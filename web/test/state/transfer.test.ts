import {bodies, signedInTo} from './page';
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
  held = new Map([['no', '80012345'], ['apn', 'CMNET']]);
  signedInTo({
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

test('a way back that is not taken stays, and the file is shown with no values but its own', async () => {
  await choose('<VariCfgSec><stMobileGNet strFD_Apn="fleet"/></VariCfgSec>');
  await importNow();
  const before = get().transfer;
  const done = restoreImported();
  while (!get().dialog) await new Promise((resume) => { setImmediate(resume); });
  answerDialog(false);
  await done;
  assert.deepEqual(get().transfer, before);
  assert.equal(held.get('apn'), 'fleet');
});

const kSignIn = 'stUserSec/stCustomUser/USER_0/strFD_UserPWD';
const choosePassword = async (value: string) => {
  await choose(`<VariCfgSec><stMobileGNet strFD_Apn="fleet"/><stUserSec><stCustomUser>` +
      `<USER_0 strFD_UserPWD="${value}"/></stCustomUser></stUserSec></VariCfgSec>`);
  chooseRows([kSignIn], true);
};

test('a password that could never sign in again is not sent, even when it is chosen', async () => {
  for (const [value, why] of [['', 'error.empty'], ['&amp;'.repeat(40), 'error.entities']] as const) {
    await choosePassword(value);
    await importNow();
    const {error} = get().transfer;
    assert.deepEqual([error?.error, error && 'problem' in error && error.problem.key],
        ['password', why]);
    assert.deepEqual([sent(), get().dialog], [[], null]);
  }
  chooseRows([kSignIn], false);
  assert.equal(get().transfer.error, null);
  await importNow();
  assert.deepEqual(sent(), ['<VariCfgSec><stMobileGNet strFD_Apn="fleet"/></VariCfgSec>']);
});

test('a password that the Security page would take is sent when it is chosen', async () => {
  await choosePassword('geheim');
  await importNow();
  assert.match(sent().join(), /strFD_UserPWD="geheim"/);
});

test('what a colleague changed since the file was opened is not overwritten without asking', async () => {
  await choose('<VariCfgSec><stBaseInfo strFD_DeviceNo="80012346"/>' +
      '<stMobileGNet strFD_Apn="fleet"/></VariCfgSec>');
  chooseRows(['stBaseInfo/strFD_DeviceNo'], false);
  held.set('apn', 'colleague');
  await importNow();
  assert.deepEqual(sent(), []);
  const {rows, changed, end} = get().transfer;
  assert.deepEqual(rows.map(({from, to, chosen}) => [from, to, chosen]),
      [['80012345', '80012346', false], ['colleague', 'fleet', true]]);
  assert.deepEqual([changed, end], [['stMobileGNet/strFD_Apn'], null]);
  await importNow();
  assert.deepEqual([held.get('apn'), get().transfer.changed], ['fleet', []]);
  assert.deepEqual([...get().transfer.former || []], [['stMobileGNet/strFD_Apn', 'colleague']]);
});

test('a change elsewhere of what is left out stops nothing', async () => {
  await choose('<VariCfgSec><stBaseInfo strFD_DeviceNo="80012346"/>' +
      '<stMobileGNet strFD_Apn="fleet"/></VariCfgSec>');
  chooseRows(['stBaseInfo/strFD_DeviceNo'], true);
  chooseRows(['stMobileGNet/strFD_Apn'], false);
  held.set('apn', 'colleague');
  await importNow();
  assert.equal(get().transfer.end?.end, 'applied');
});

test('a colleague who did the same leaves nothing to send', async () => {
  await choose('<VariCfgSec><stMobileGNet strFD_Apn="fleet"/></VariCfgSec>');
  held.set('apn', 'fleet');
  await importNow();
  const {rows, end, lines} = get().transfer;
  assert.deepEqual([sent(), rows, end?.end, lines.map(({took}) => took)], [[], [], 'unchanged', ['same']]);
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
