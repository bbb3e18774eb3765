// What the browser stores: drafts with their base values, and never a secret.
import assert from 'node:assert/strict';
import test, {beforeEach} from 'node:test';
import {sectionById, type SectionId} from '../../src/model/sections';
import {dropAllDrafts, dropDraft, keepDraft, loadDraft} from '../../src/state/memory';

class Storage {
  getItem(key: string) { return (this as Record<string, unknown>)[key] ?? null; }
  setItem(key: string, value: string) { (this as Record<string, unknown>)[key] = value; }
  removeItem(key: string) { delete (this as Record<string, unknown>)[key]; }
}

beforeEach(() => {
  for (const name of ['sessionStorage', 'localStorage'])
    Object.defineProperty(globalThis, name, {value: new Storage(), configurable: true});
});

const kApn = 'stMobileGNet/strFD_Apn';
const kSecret = 'stMobileGNet/strFD_UserPasswd';
const fieldsOf = (id: SectionId) => sectionById(id).fields({reply: {}, settings: null});
const mobile = fieldsOf('mobile');
const kept = () => JSON.stringify(sessionStorage) + JSON.stringify(localStorage);

test('a draft keeps what was typed and the base it began from', () => {
  keepDraft('mobile', mobile, {base: {[kApn]: 'CMNET'}, typed: {[kApn]: 'fleet'}, sent: true});
  assert.deepEqual(loadDraft('mobile'),
      {base: {[kApn]: 'CMNET'}, typed: {[kApn]: 'fleet'}, sent: true});
  dropDraft('mobile');
  assert.equal(loadDraft('mobile'), null);
});

test('no secret of any section enters a draft, typed or held', () => {
  for (const id of ['mobile', 'wifi', 'gb28181', 'password'] as const) {
    const fields = fieldsOf(id);
    const secrets = fields.filter(({kind}) => kind === 'secret');
    assert.ok(secrets.length, id);
    const values = Object.fromEntries(fields.map(({path, kind}) =>
      [path, kind === 'secret' ? 'geheim' : 'open']));
    keepDraft(id, fields, {base: values, typed: values});
    assert.doesNotMatch(kept(), /geheim/, id);
  }
});

test('with secrets alone there is no draft', () => {
  keepDraft('mobile', mobile, {base: {[kSecret]: 'card'}, typed: {[kSecret]: 'geheim'}});
  assert.equal(loadDraft('mobile'), null);
  assert.equal(Object.keys(sessionStorage).length, 0);
});

test('drafts are dropped together, and nothing else with them', () => {
  keepDraft('mobile', mobile, {base: {}, typed: {[kApn]: 'fleet'}});
  sessionStorage.setItem('other', '1');
  dropAllDrafts();
  assert.deepEqual(Object.keys(sessionStorage), ['other']);
});

test('a draft that is none is not taken', () => {
  for (const text of ['', 'null', '{}', '[]', '{"base":{},"typed":{"a":1}}', '{"typed":{}}', '{']) {
    sessionStorage.setItem('draft.mobile', text);
    assert.equal(loadDraft('mobile'), null, text);
  }
});
