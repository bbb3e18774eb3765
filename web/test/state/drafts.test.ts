import {session} from './page';
import assert from 'node:assert/strict';
import test, {beforeEach} from 'node:test';
import {sectionById} from '../../src/model/sections';
import {discard, propose, resolveConflict, type, waiting} from '../../src/state/editing';
import {draftsWait, dropAllDrafts, loadDraft} from '../../src/state/memory';
import {loadPage, take} from '../../src/state/reading';
import {patchSection, resetStore, sectionState, type Known, type Note} from '../../src/state/store';

const wifi = sectionById('wifi');
const kSsid = 'stWifi/strFD_SSID';
const kPass = 'stWifi/strFD_Passwd';
const held = {'stWifi/ucFD_WorkMode': '1', [kSsid]: 'depot', [kPass]: 'depot2024'};
const read = {reply: {}, settings: new Map(Object.entries(held))};
const fields = wifi.fields(read);
const fieldOf = (path: string) => fields.find((field) => field.path === path)!;
const fresh = (values = {}) => take(wifi, {fields, values: {...held, ...values}});

beforeEach(() => {
  resetStore();
  dropAllDrafts();
});

test('a password never enters a draft, neither typed nor held', () => {
  fresh();
  type('wifi', fieldOf(kSsid), 'new');
  type('wifi', fieldOf(kPass), 'secret99');
  assert.ok(session.text().includes('new'));
  assert.ok(!session.text().includes('secret99') && !session.text().includes('depot2024'));
  assert.deepEqual(waiting(), {network: 2});
});

test('a draft and its base survive a reload, so that a change elsewhere is seen', () => {
  fresh();
  type('wifi', fieldOf(kSsid), 'mine');
  resetStore();
  assert.deepEqual(waiting(), {network: 1});  // before the page is opened
  fresh({[kSsid]: 'theirs'});
  const state = sectionState('wifi');
  assert.deepEqual([state.typed, state.conflicts], [{[kSsid]: 'mine'}, {[kSsid]: 'theirs'}]);
  assert.equal(state.note?.kind, 'conflict');
});

test('what arrived before a reload is no unsaved change', () => {
  fresh();
  type('wifi', fieldOf(kSsid), 'mine');
  resetStore();
  fresh({[kSsid]: 'mine'});
  assert.deepEqual([sectionState('wifi').typed, loadDraft('wifi'), waiting()], [{}, null, {}]);
});

test('the sign-in hears of drafts that wait, and of none when they are dropped', () => {
  fresh();
  type('wifi', fieldOf(kSsid), 'mine');
  assert.equal(draftsWait(), true);
  dropAllDrafts();
  assert.equal(draftsWait(), false);
});

test('a change that is on its way to the recorder’s new address waits no more', () => {
  fresh();
  type('wifi', fieldOf(kSsid), 'mine');
  patchSection('wifi', {step: {name: 'moving', since: 0}});
  assert.deepEqual(waiting(), {});
  patchSection('wifi', {step: null});
  assert.deepEqual(waiting(), {network: 1});
});

test('a save that ended in silence is told anew by a later read', () => {
  const typed: Record<string, string> = {[kSsid]: 'mine', 'stWifi/ucFD_AuthMode': '3'};
  const rows: [Known, Record<string, string>, Note['kind'] | undefined][] = [
    ['unsent', {}, 'unsent'], ['unknown', {}, 'kept'], ['unknown', typed, 'arrived'],
    ['unknown', {[kSsid]: 'mine'}, 'end'], ['read', {}, 'end'],
    ['unknown', {[kSsid]: 'theirs'}, 'conflict']];
  for (const [known, arrived, told] of rows) {
    resetStore();
    dropAllDrafts();
    fresh({'stWifi/ucFD_AuthMode': '1'});
    for (const path of Object.keys(typed)) type('wifi', fieldOf(path), typed[path]!);
    patchSection('wifi', {note: {kind: 'end', end: 'deviceSilent', rows: [], known}});
    fresh({'stWifi/ucFD_AuthMode': '1', ...arrived});
    assert.equal(sectionState('wifi').note?.kind, told, `${known} ${JSON.stringify(arrived)}`);
  }
});

test('what a save came to is told until the next change, and no longer', () => {
  fresh();
  for (const kind of ['arrived', 'kept', 'unsent'] as const) {
    patchSection('wifi', {note: {kind}});
    type('wifi', fieldOf(kSsid), kind);
    assert.equal(sectionState('wifi').note, null, kind);
  }
});

test('what is to be corrected or chosen is told as long as something is', () => {
  fresh();
  const problem = {key: 'error.empty' as const, values: {}};
  patchSection('wifi', {note: {kind: 'invalid'},
    problems: {[kSsid]: problem, 'stWifi/ucFD_AuthMode': problem}});
  type('wifi', fieldOf(kSsid), 'mine');
  assert.equal(sectionState('wifi').note?.kind, 'invalid');
  type('wifi', fieldOf('stWifi/ucFD_AuthMode'), '3');
  assert.equal(sectionState('wifi').note, null);
  patchSection('wifi', {note: {kind: 'conflict', rows: []}, conflicts: {[kSsid]: 'theirs'}});
  type('wifi', fieldOf('stWifi/ucFD_AuthMode'), '4');
  assert.equal(sectionState('wifi').note?.kind, 'conflict');
  type('wifi', fieldOf(kSsid), 'depot');
  assert.equal(sectionState('wifi').note, null);
});

test('a save of the password is not told anew, as nothing is read', async () => {
  await loadPage('security');
  const note: Note = {kind: 'end', end: 'deviceSilent', rows: [], known: 'unknown'};
  const [field] = sectionState('password').fields;
  type('password', field!, 'secret99');
  patchSection('password', {note});
  await loadPage('security');
  assert.equal(sectionState('password').note, note);
});

test('a value typed back is no change', () => {
  fresh();
  type('wifi', fieldOf(kSsid), 'mine');
  type('wifi', fieldOf(kSsid), 'depot');
  assert.deepEqual([sectionState('wifi').typed, loadDraft('wifi')], [{}, null]);
});

test('of a conflict either side can be taken', () => {
  for (const mine of [true, false]) {
    resetStore();
    fresh();
    type('wifi', fieldOf(kSsid), 'mine');
    fresh({[kSsid]: 'theirs'});
    resolveConflict('wifi', kSsid, mine);
    const state = sectionState('wifi');
    assert.deepEqual([state.typed, state.conflicts], [mine ? {[kSsid]: 'mine'} : {}, {}]);
    fresh({[kSsid]: 'theirs'});
    assert.deepEqual(sectionState('wifi').conflicts, {}, 'asked once');
  }
});

test('what was typed for a channel that is gone is gone, the rest stays', () => {
  const cameras = sectionById('cameras');
  const path = (k: number) => `stMainStream/stVideoPara/VChn_${k}/ucFD_FrameRate`;
  const of = (count: number) => {
    const settings = new Map(Array.from({length: count}, (_, k) => [path(k), '25'] as [string, string]));
    return {fields: cameras.fields({reply: {}, settings}), values: Object.fromEntries(settings)};
  };
  take(cameras, of(8));
  for (const k of [1, 6]) type('cameras', of(8).fields[k]!, '20');
  take(cameras, of(4));
  assert.deepEqual(sectionState('cameras').typed, {[path(1)]: '20'});
});

test('discarding leaves what the recorder holds', () => {
  fresh();
  type('wifi', fieldOf(kSsid), 'mine');
  discard('wifi');
  assert.deepEqual([sectionState('wifi').typed, loadDraft('wifi')], [{}, null]);
});

test('former values are typed where they differ', () => {
  fresh({[kSsid]: 'new'});
  propose('wifi', {[kSsid]: 'depot', 'stWifi/ucFD_WorkMode': '1'});
  assert.deepEqual(sectionState('wifi').typed, {[kSsid]: 'depot'});
});

test('a draft that is none is not taken', () => {
  for (const text of ['', 'null', '[]', '{"base":{},"typed":{"a":1}}', '{"typed":{}}', '{'])  {
    session.setItem('draft.wifi', text);
    assert.equal(loadDraft('wifi'), null, text);
  }
});
