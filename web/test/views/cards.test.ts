// Cards as they are drawn for what the store holds.
import assert from 'node:assert/strict';
import test, {beforeEach} from 'node:test';
import {text} from '../../src/model/fields';
import {readingOf} from '../../src/model/history';
import {kSignInPassword} from '../../src/model/import';
import {giveEncoder} from '../../src/state/encoder';
import {steadyNow} from '../../src/state/history';
import {patch, type SignInNote} from '../../src/state/signIn';
import {get, patchSection, resetStore, set, type Health, type Loading} from '../../src/state/store';
import {AccessPointCode} from '../../src/views/AccessPointCode';
import {Apply} from '../../src/views/fleet/Apply';
import {Runs} from '../../src/views/fleet/Runs';
import {Template} from '../../src/views/fleet/Template';
import {History} from '../../src/views/History';
import {Import} from '../../src/views/Import';
import {Login} from '../../src/views/Login';
import {SectionForm} from '../../src/views/parts/SectionForm';
import {Security} from '../../src/views/Security';
import {AllSettings} from '../../src/views/settings/AllSettings';
import {Video} from '../../src/views/Video';
import {addWords, speak, t} from '../../src/words';
import {en} from '../../src/words/en';
import {login} from '../../src/words/en-login';
import {settings} from '../../src/words/en-settings';
import {drawn, drawnAnew, type Node} from './drawn';

addWords('en', {...login, ...en, ...settings});

beforeEach(() => {
  resetStore();
  speak('en');
});

const kMode = 'stWifi/ucFD_WorkMode';
const kName = 'stWifiAp/strFD_SSID';
const kPassword = 'stWifiAp/strFD_Passwd';

test('beside a code stands that the recorder does not hold it yet, from the first change on',
    async () => {
      giveEncoder(() => ({size: 1, get: (x) => x === 0}));
      const held = {[kMode]: '2', [kName]: 'depot', [kPassword]: 'platform9'};
      patchSection('wifi', {held});
      const card = drawn(AccessPointCode, {});
      await card.all('data-action', 'code')[0]!.does('click');
      set({scripts: {qr: 'there'}});
      await drawnAnew();
      assert.equal(card.all('class', 'code').length, 1);
      assert.equal(card.all('data-hint').length, 0);
      patchSection('wifi', {typed: {[kName]: 'depot 2'}});
      await drawnAnew();
      assert.equal(card.all('data-hint', 'unsaved').length, 1);
    });

test('an access point that is known in part has no code to ask for', () => {
  for (const path of [kName, kPassword]) {
    patchSection('wifi', {held: {[kMode]: '2', [path]: 'platform9'}});
    assert.deepEqual(drawn(AccessPointCode, {}).all('data-action'), [], path);
  }
});

// wrong entries, whether the counter is being set back, whether that cannot be asked for
const kLocks = [[0, false, true], [3, false, false], [3, true, true]] as const;

test('the lock\'s counter is set back where there is one, and once', () => {
  for (const [count, busy, off] of kLocks) {
    set({lock: {...get().lock, busy, lock: {known: true, count, left: 0}}});
    const [reset] = drawn(Security, {}).all('data-action', 'reset');
    assert.equal('aria-disabled' in reset!.attributes, off, `${count} ${busy}`);
  }
});

test('where a recorder tells of its first camera only, that is said', () => {
  for (const channels of [1, 2]) {
    const fields = Array.from({length: channels}, (_, i) =>
      text(`stCamera/CH_${i}/strFD_Name`, 'camera', 31, {labelValues: {channel: i + 1}}));
    patchSection('cameras', {loading: {state: 'loaded'}, fields});
    const told = drawn(Video, {}).textContent.includes(t('cameras.firstOnly'));
    assert.equal(told, channels === 1, `${channels}`);
  }
});

test('a list of no runs can only be added to', () => {
  assert.deepEqual(drawn(Runs, {}).all('type').map(({attributes}) => attributes.type), ['file']);
});

test('one line of a template is told as many are', () => {
  set({transfer: {...get().transfer, purpose: 'template', lines: [
    {path: 'stMobileGNet/strFD_Apn', from: 'CMNET', to: 'fleet', now: 'fleet', took: 'taken'}]}});
  assert.equal(drawn(Apply, {}).all('data-took', 'taken').length, 1);
});

const kSilent = {state: 'deviceSilent' as const, since: 0, retryAt: 0};
// health, loading, bars that stand for what is coming, whether it may be asked for again
const kLoading: [Health, Loading, number, boolean][] = [
  [{state: 'answers'}, {state: 'waiting'}, 2, false],
  [{state: 'answers'}, {state: 'failed', why: 'deviceSilent'}, 0, true],
  [kSilent, {state: 'waiting'}, 0, false],
  [kSilent, {state: 'failed', why: 'deviceSilent'}, 0, false],
];

test('what is not known yet is said to come, or to have failed', () => {
  for (const [health, loading, bars, again] of kLoading) {
    set({health, lock: {...get().lock, loading}});
    patchSection('language', {loading});
    const form = drawn(SectionForm, {id: 'language' as const, icon: 'info' as const, rows: 2});
    const [lock] = drawn(Security, {}).all('data-section', 'lock');
    for (const card of [form, lock!]) {
      const [skeleton] = card.all('class', 'skeleton');
      const what = JSON.stringify([health, loading, card.attributes]);
      assert.equal(skeleton ? skeleton.childNodes.length : 0, bars, what);
      assert.equal(card.textContent.includes(t('again')), again, what);
    }
    assert.equal(form.all('type', 'submit').length, 0);
  }
});

const tags = (node: Node) => node.all('class', 'tag').map(({textContent}) => textContent);
const kApn = 'stMobileGNet/strFD_Apn';

test('among imported settings the password of the sign-in is marked', () => {
  const rows = [kApn, kSignInPassword].map((path) => ({path, from: 'a', to: 'b', chosen: true}));
  set({transfer: {...get().transfer, rows}});
  const card = drawn(Import, {});
  assert.deepEqual([kApn, kSignInPassword].map((path) => tags(card.all('data-setting', path)[0]!)),
      [[], [t('import.signIn')]]);
});

test('what names this recorder, and what is secret, is marked among the settings of a template',
    async () => {
      const fields = [text(kApn, 'apn', 31), text(`${kApn}1`, 'apn', 31, {apart: true}),
        text(`${kApn}2`, 'apn', 31, {kind: 'secret'})];
      patchSection('all', {fields, loading: {state: 'loaded'}});
      const card = drawn(Template, {});
      await card.all('aria-expanded')[0]!.does('click');
      assert.deepEqual(fields.map(({path}) => tags(card.all('data-setting', path)[0]!)),
          [[], [t('import.identity')], [t('template.secret')]]);
    });

test('a long section shows a part of its settings, and how many are left', async () => {
  const fields = Array.from({length: 60}, (_, i) => text(`stA/LIST_0/a${i}`, 'apn', 31));
  patchSection('all', {fields, loading: {state: 'loaded'}});
  const page = drawn(AllSettings, {});
  const shown = () => page.all('data-setting').length;
  assert.equal(shown(), 0);
  await page.all('aria-expanded')[0]!.does('click');
  assert.equal(shown(), 40);
  assert.match(page.all('data-setting')[0]!.textContent, /LIST_0\/a0$/);
  const [more] = page.all('data-action', 'more');
  assert.equal(more!.textContent, t('all.more', {count: 20}));
  await more!.does('click');
  assert.equal(shown(), 60);
  assert.equal(page.all('data-action', 'more').length, 0);
});

test('a section tells how many of its settings were changed, if any', async () => {
  const fields = ['stA/a', 'stA/b', 'stB/a'].map((path) => text(path, 'apn', 31));
  patchSection('all', {fields, loading: {state: 'loaded'}});
  const page = drawn(AllSettings, {});
  const badges = () => ['stA', 'stB'].map((name) =>
    page.all('data-group', name)[0]!.all('class', 'badge').map(({textContent}) => textContent));
  assert.deepEqual(badges(), [[], []]);
  patchSection('all', {typed: {'stB/a': 'fleet'}});
  await drawnAnew();
  assert.deepEqual(badges(), [[], [`1 ${t('badge.unit')}`]]);
});

// A key, and where it leads to from the tenth of 20 readings, four a minute.
const kKeys: [string, number][] = [
  ['ArrowLeft', 9], ['ArrowDown', 9], ['ArrowRight', 11], ['ArrowUp', 11], ['PageDown', 6],
  ['PageUp', 14], ['Home', 0], ['End', 20], ['Tab', 10],
];

test('keys lead along a plot by a reading, by a minute, and to its ends', async () => {
  const now = steadyNow();
  const history = Array.from({length: 21}, (_, i) =>
    readingOf(now - (20 - i) * 15000, {ucFD_GNetExist: '1', uiFD_GNetSignal: '24'}));
  set({history});
  const [plot] = drawn(History, {}).all('data-plot');
  const press = async (key: string, times = 1) => {
    for (; times; times--) await plot!.does('keydown', {key});
  };
  for (const [key, to] of kKeys) {
    await press('Home');
    await press('ArrowRight', 10);
    await press(key);
    assert.equal(plot!.attributes['aria-valuenow'], String(to), key);
  }
});

// what is known of the recorder, what the sign-in says of it
const kReached = [
  [{reached: 'asking', deviceNo: ''}, 'Looking for the recorder…'],
  [{reached: 'silent', deviceNo: ''}, 'The recorder does not answer.'],
  [{reached: 'answers', deviceNo: ''}, 'The recorder answers.'],
  [{reached: 'answers', deviceNo: '80012345'}, 'Recorder 80012345'],
] as const;

const kNotes: [SignInNote, string][] = [
  [{kind: 'fault', why: 'deviceSilent'}, t('login.silent')],
  [{kind: 'fault', why: 'serviceSilent'}, t('load.serviceSilent')],
  [{kind: 'fault', why: 'dropped'}, t('load.lost')],
  [{kind: 'fault', why: 'refused'}, t('load.lost')],
  [{kind: 'wrong', left: 3}, t('login.wrong', {left: 3})],
  [{kind: 'locked', until: 0}, t('login.open')],
  [{kind: 'kept'}, t('login.kept')],
];

test('the sign-in tells whether the recorder answers, and what became of a try', () => {
  const page = () => drawn(Login, {go() {}, prefetch() {}});
  for (const [known, told] of kReached) {
    patch(known);
    assert.equal(page().all('data-reached')[0]!.textContent, told);
  }
  for (const [note, told] of kNotes) {
    patch({note});
    assert.equal(page().all('data-note')[0]!.textContent, told, note.kind);
  }
});
