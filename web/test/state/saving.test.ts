import {answers, asked, moves, signedIn, cookie} from './page';
import assert from 'node:assert/strict';
import test, {beforeEach} from 'node:test';
import {sectionById} from '../../src/model/sections';
import {answerDialog} from '../../src/state/dialog';
import {type} from '../../src/state/editing';
import {dropAllDrafts} from '../../src/state/memory';
import {readSection, take} from '../../src/state/reading';
import {rowsOf, saveSection} from '../../src/state/saving';
import {get, resetStore, sectionState, type SectionState} from '../../src/state/store';

const kPath = 'stNetWorkMode/ucFD_NetType';
const netMode = sectionById('netMode');
let held = '1';

// The recorder applies what is sent, as after a restart, if allowed.
function recorder(takes: boolean) {
  Object.assign(answers, {
    'page.css': '', 'favicon.svg': '',
    get_NetWModeInfo: () => `{ "ucFD_NetWType": "${held}", "result": 1 }`,
    set_NetWModeInfo: () => {
      if (takes) held = '2';
      return '{"result": 1 }';
    },
  });
}

async function edit(value: string) {
  take(netMode, await readSection(netMode));
  type('netMode', sectionState('netMode').fields[0]!, value);
}

async function save(yes = true) {
  const done = saveSection('netMode');
  if (get().dialog) answerDialog(yes);
  await done;
  const {note} = sectionState('netMode');
  return note && note.kind === 'end' ? note.end : note && note.kind;
}

beforeEach(() => {
  resetStore();
  dropAllDrafts();
  signedIn();
  held = '1';
  asked.length = 0;
  moves.length = 0;
});

test('a save renews the session, compares, sends and reads back', async () => {
  recorder(true);
  await edit('2');
  asked.length = 0;
  assert.equal(await save(), 'applied');
  assert.deepEqual(asked.filter((name) => name !== 'favicon.svg'),
      ['page.css', 'get_NetWModeInfo', 'set_NetWModeInfo', 'get_NetWModeInfo']);
  assert.deepEqual(sectionState('netMode').former, {[kPath]: '1'});
});

test('a question that is not answered with yes sends nothing', async () => {
  recorder(true);
  await edit('2');
  asked.length = 0;
  await save(false);
  assert.deepEqual([asked, sectionState('netMode').typed], [[], {[kPath]: '2'}]);
});

test('without a change nothing is asked and nothing sent', async () => {
  recorder(true);
  await edit('1');
  asked.length = 0;
  assert.deepEqual([await save(), asked], ['unchanged', []]);
});

test('what the recorder holds meanwhile is not sent again', async () => {
  recorder(true);
  await edit('2');
  held = '2';
  assert.equal(await save(), 'unchanged');
  assert.ok(!asked.includes('set_NetWModeInfo'));
});

test('a colleague changed the very field: nothing is sent, neither value is lost', async () => {
  recorder(true);
  await edit('2');
  held = '3';
  assert.equal(await save(), 'conflict');
  assert.ok(!asked.includes('set_NetWModeInfo'));
  const {typed, conflicts} = sectionState('netMode');
  assert.deepEqual([typed, conflicts], [{[kPath]: '2'}, {[kPath]: '3'}]);
});

test('a refusal leaves the recorder’s value and what was typed', async () => {
  recorder(false);
  await edit('2');
  assert.equal(await save(), 'refused');
  const {held: now, typed, former} = sectionState('netMode');
  assert.deepEqual([now, typed, former], [{[kPath]: '1'}, {[kPath]: '2'}, null]);
});

test('a second press during a save does nothing', async () => {
  recorder(true);
  let answer: (text: string) => void = () => {};
  answers.set_NetWModeInfo = () => new Promise((resolve) => { answer = resolve; });
  await edit('2');
  const first = saveSection('netMode');
  await saveSection('netMode');
  answerDialog(true);
  while (!asked.includes('set_NetWModeInfo')) await new Promise((resume) => { setImmediate(resume); });
  await saveSection('netMode');
  assert.equal(get().dialog, null);
  answer('{"result": 1 }');
  await first;
  assert.equal(asked.filter((name) => name === 'set_NetWModeInfo').length, 1);
});

test('without a session nothing is sent and the sign-in follows', async () => {
  recorder(true);
  await edit('2');
  cookie.value = '';
  asked.length = 0;
  await save();
  assert.deepEqual([asked, moves], [[], ['login.html#status']]);
});

test('each change is a row, and the clock is one once it was typed', () => {
  const fields = [{path: 'a', kind: 'text', label: 'password'},
    {path: 'c', kind: 'clock', label: 'password', live: true}];
  const held = {a: 'x', c: '10:00'};
  const rows = (typed: Record<string, string>) =>
    rowsOf({fields, held, typed} as unknown as SectionState)
        .map(({field, from, to}) => [field.path, from, to]);
  assert.deepEqual(rows({}), []);
  assert.deepEqual(rows({a: 'y'}), [['a', 'x', 'y']]);
  assert.deepEqual(rows({a: 'y', c: '10:01'}), [['a', 'x', 'y'], ['c', '10:00', '10:01']]);
});

test('a clock is called saved when it goes on from what was sent, and only then', async () => {
  const real = Date.now;
  const base = sectionById('base');
  const rows: [string, number, string][] = [['2026-03-01 10:00:04', 2000, 'applied'],
    ['2026-01-01 08:00:04', 2000, 'partly'], ['2026-01-01 08:00:04', 10, 'refused']];
  for (const [after, ms, end] of rows) {
    resetStore();
    recorder(true);
    let clock = '2026-01-01 08:00:00';
    answers.get_BaseInfo = () => '{ "strFD_DeviceNo": "80012345", "ucFD_TimeZone": "8" , ' +
        `"ucFD_GpsSTFlag": "0", "strFD_CurTime": "${clock}", "result": 1 }`;
    answers.import_CfgFile = () => {
      clock = after;
      Date.now = () => real() + ms;
      return '{"result": 1 }';
    };
    take(base, await readSection(base));
    type('base', sectionState('base').fields.find(({live}) => live)!, '2026-03-01 10:00:00');
    const done = saveSection('base');
    answerDialog(true);
    await done;
    Date.now = real;
    const {note} = sectionState('base');
    assert.ok(note?.kind === 'end');
    assert.deepEqual([note.end, note.rows.map(({from, to}) => [from, to])],
        [end, end === 'partly' ? [['2026-03-01 10:00:00', after]] : []]);
  }
});
