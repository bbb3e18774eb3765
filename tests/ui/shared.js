// One rig and one page for all tests of a file: test files that need no more call sharePage().
import assert from 'node:assert/strict';
import {after, before, beforeEach} from 'node:test';
import {forget, Rig, visit} from './rig.js';

export let rig;
export let page;

// Before each test the recorder has its first settings again, the tab has no drafts, and `name`, if
// there is one, is open; `prepare` does what the file wants besides. At the end no script of the page
// may have failed.
export function sharePage(name, prepare = async () => {}) {
  before(async () => {
    rig = await Rig.start();
    page = await rig.enter();
  });
  beforeEach(async () => {
    await rig.reset();
    await prepare();
    await forget(page);
    if (name) await visit(rig, page, name);
  });
  after(async () => {
    assert.deepEqual(page.errors, []);
    await rig.stop();
  });
}
