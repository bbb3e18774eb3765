import {bodies, local, session, signedInTo} from './page';
import assert from 'node:assert/strict';
import test, {beforeEach} from 'node:test';
import {sectionById} from '../../src/model/sections';
import {openFile} from '../../src/recorder/config';
import {answerDialog} from '../../src/state/dialog';
import {found, giveEveryField} from '../../src/state/everySetting';
import {addRuns, applyTemplate, choosePaths, chosenSettings, clearRuns, loadRuns, nameTemplate,
  noteUnchanged, restoreTemplate, saveTemplate, transferable} from '../../src/state/fleet';
import {readSection, take} from '../../src/state/reading';
import {get, resetStore, sectionState} from '../../src/state/store';
import {chooseFile} from '../../src/state/transfer';
import {kColumns, printCsv, type Run} from '../../src/model/runs';

const kApn = 'stMobileGNet/strFD_Apn';
const kPhone = 'stMobileGNet/strFD_PhoneNo';
const kSecret = 'stWifi/strFD_Passwd';
const all = sectionById('all');
let held: Record<string, string> = {};
let takes: string[] = [];  // what the recorder takes of an import

const config = () => `<VariCfgSec><stBaseInfo strFD_DeviceNo="80012345"/>` +
    `<stMobileGNet strFD_Apn="${held.Apn}" strFD_PhoneNo="${held.PhoneNo}"/>` +
    `<stWifi strFD_Passwd="depot2024"/><stVersion strAppVer="V4"/></VariCfgSec>`;

const utf8 = (text: string) => new TextEncoder().encode(text);
const template = (apn: string, phone: string) =>
  utf8(`<VariCfgSec><stMobileGNet strFD_Apn="${apn}" strFD_PhoneNo="${phone}"/></VariCfgSec>`);

beforeEach(async () => {
  resetStore();
  local.removeItem('fleet.runs');
  held = {Apn: 'CMNET', PhoneNo: '*99#'};
  takes = ['Apn', 'PhoneNo'];
  signedInTo({
    export_CfgFile: () => `{ "strFD_CfgPara": "${config()}", "result": 1 }`,
    import_CfgFile: () => {
      const text = decodeURIComponent(bodies[bodies.length - 1] || '');
      for (const name of takes) {
        const match = new RegExp(`strFD_${name}="([^"]*)"`).exec(text);
        if (match) held[name] = match[1] || '';
      }
      return '{"result": 1 }';
    },
  });
  giveEveryField();
  take(all, await readSection(all));
});

async function apply(file: Uint8Array, work = applyTemplate) {
  if (work === applyTemplate) await chooseFile('depot.xml', file, 'template');
  const done = work();
  for (let turns = 0; !get().dialog && turns < 50; turns++) await Promise.resolve();
  await new Promise((resume) => { setTimeout(resume); });
  answerDialog(true);
  await done;
}

const took = () => get().transfer.lines.map(({path, took: what}) => [path, what]);

test('a search finds words of both languages, raw names and values, but no password', () => {
  const {fields, held: values} = sectionState('all');
  const paths = (query: string) => found(fields, values, query).map(({path}) => path);
  assert.deepEqual(paths('access POINT name'), [kApn]);
  assert.deepEqual(paths('接入点'), [kApn]);
  assert.deepEqual(paths('strfd_phoneno'), [kPhone]);
  assert.deepEqual(paths('cmnet'), [kApn]);
  assert.deepEqual(paths('mobile *99'), [kPhone]);
  assert.deepEqual(paths('depot2024'), []);
  assert.equal(paths(' ').length, fields.length);
});

test('a template holds what was chosen and nothing else, and any import reads it', () => {
  const saved: string[] = [];
  choosePaths([kPhone, kApn, kSecret], true);
  choosePaths([kSecret], false);
  nameTemplate(' depot: north/1 ');
  assert.deepEqual(chosenSettings(), [[kApn, 'CMNET'], [kPhone, '*99#']]);
  saveTemplate((name, text) => saved.push(name, text));
  const [name = '', text = ''] = saved;
  assert.match(name, /^template-depot-north-1-\d{4}-\d\d-\d\d\.xml$/);
  const file = openFile(utf8(text));
  assert.ok('settings' in file);
  assert.deepEqual([...file.settings], chosenSettings());
});

test('what the recorder tells about itself is nothing for a template', () => {
  const {fields} = sectionState('all');
  assert.deepEqual(fields.filter((field) => !transferable(field)).map(({path}) => path),
      ['stVersion/strAppVer']);
});

test('what an applied template did is told line by line and goes to the list', async () => {
  takes = ['Apn'];
  await apply(template('fleet', '*98#'));
  assert.deepEqual(took(), [[kApn, 'taken'], [kPhone, 'kept']]);
  const [run, ...rest] = get().fleet.runs;
  assert.ok(run && !rest.length);
  assert.deepEqual([run.number, run.template, run.end, run.taken, run.kept],
      ['80012345', 'depot.xml', 'partly', 1, kPhone]);
  loadRuns();
  assert.deepEqual(get().fleet.runs, [run]);
});

test('former values can be restored, and that goes to the list, too', async () => {
  await apply(template('fleet', '*99#'));
  assert.equal(held.Apn, 'fleet');
  await apply(template('', ''), restoreTemplate);
  assert.equal(held.Apn, 'CMNET');
  assert.deepEqual(get().fleet.runs.map(({action}) => action).sort(), ['apply', 'restore']);
});

test('a recorder that holds everything already is noted, one that is not asked is not', async () => {
  await chooseFile('depot.xml', template('CMNET', '*99#'), 'template');
  noteUnchanged();
  assert.deepEqual(took(), [[kApn, 'same'], [kPhone, 'same']]);
  assert.deepEqual(get().fleet.runs.map(({end, same}) => [end, same]), [['unchanged', 2]]);
  await chooseFile('other.xml', template('fleet', '*99#'), 'template');
  noteUnchanged();
  const done = applyTemplate();
  answerDialog(false);
  await done;
  assert.equal(get().fleet.runs.length, 1);
  assert.deepEqual(bodies, []);
});

test('a refusal is noted once, however often the question after it is answered with no', async () => {
  takes = [];
  await apply(template('fleet', '*99#'));
  assert.deepEqual(get().fleet.runs.map(({end, kept}) => [end, kept]), [['refused', kApn]]);
  clearRuns();
  const again = applyTemplate();
  answerDialog(false);
  await again;
  assert.deepEqual(get().fleet.runs, []);
});

test('the list holds no values, and no secret reaches the browser’s memory', async () => {
  await apply(utf8('<VariCfgSec><stMobileGNet strFD_Apn="fleet"/>' +
      '<stWifi strFD_Passwd="geheim"/></VariCfgSec>'));
  assert.equal(get().fleet.runs.length, 1);
  assert.doesNotMatch(local.text() + session.text(), /geheim|depot2024|CMNET/);
});

test('a saved list is added once, anything else is refused', async () => {
  await apply(template('fleet', '*99#'));
  const {runs} = get().fleet;
  const csv = printCsv([...kColumns], runs);
  clearRuns();
  assert.deepEqual(get().fleet.runs, []);
  assert.ok(addRuns(csv) && addRuns(csv));
  assert.deepEqual(get().fleet.runs, runs);
  assert.equal(addRuns('<VariCfgSec/>'), false);
  assert.deepEqual(get().fleet.runs, runs);
});

const noted = (number: string, at = '2026-01-31 18:30:00') => ({at, number, plate: '', where: '',
  template: 'depot.xml', action: 'apply', end: 'applied', taken: 1, same: 0, left: 0, kept: ''});
const numbers = () => get().fleet.runs.map(({number}) => number);
const stored = () => JSON.parse(local.getItem('fleet.runs') || '[]')
    .map(({number}: {number: string}) => number);

test('what another window has noted meanwhile stays on the list', async () => {
  await apply(template('fleet', '*99#'));
  const [mine] = get().fleet.runs;
  local.setItem('fleet.runs', JSON.stringify([mine, noted('80012346')]));
  await chooseFile('depot.xml', template('fleet', '*99#'), 'template');
  noteUnchanged();
  assert.deepEqual(numbers(), ['80012345', '80012345', '80012346']);
  assert.deepEqual([stored(), get().fleet.unkept], [numbers(), 0]);
});

test('a list that another window has emptied begins anew', async () => {
  await apply(template('fleet', '*99#'));
  local.setItem('fleet.runs', '[]');
  assert.ok(addRuns(printCsv([...kColumns], [noted('2') as Run])));
  assert.deepEqual(numbers(), ['2']);
});

test('what is beyond the kept list is counted, and stays while the page is open', () => {
  const many = Array.from({length: 500}, (_, i) => noted(String(i), '2026-02-01 08:00:00'));
  local.setItem('fleet.runs', JSON.stringify(many));
  loadRuns();
  assert.ok(addRuns(printCsv([...kColumns], [noted('a'), noted('b')] as Run[])));
  assert.deepEqual([get().fleet.runs.length, get().fleet.unkept, stored().length], [502, 2, 500]);
  assert.ok(addRuns(printCsv([...kColumns], [noted('c')] as Run[])));
  assert.deepEqual([get().fleet.runs.length, get().fleet.unkept, stored().length], [503, 3, 500]);
  clearRuns();
  assert.deepEqual([get().fleet.runs.length, get().fleet.unkept, stored().length], [0, 0, 0]);
});

test('a browser that refuses to keep the list is told about, and loses nothing before it is left',
    async () => {
      await apply(template('fleet', '*99#'));
      const {setItem} = local;
      local.setItem = () => { throw new Error('quota'); };
      try {
        for (const number of ['2', '3'])
          assert.ok(addRuns(printCsv([...kColumns], [noted(number) as Run])));
      } finally {
        local.setItem = setItem;
      }
      assert.deepEqual([numbers(), stored(), get().fleet.unkept],
          [['80012345', '3', '2'], ['80012345'], 2]);
      assert.ok(addRuns(printCsv([...kColumns], [noted('4') as Run])));
      assert.deepEqual([stored().sort(), get().fleet.unkept], [['2', '3', '4', '80012345'], 0]);
    });

test('a kept list that is broken is none', () => {
  for (const text of ['{', 'null', '{"a":1}', '[1,{"at":2}]']) {
    local.setItem('fleet.runs', text);
    loadRuns();
    assert.deepEqual(get().fleet.runs, [], text);
  }
});
