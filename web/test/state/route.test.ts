import './page';
import assert from 'node:assert/strict';
import test from 'node:test';
import {addressOf, kPages, pageOf} from '../../src/state/route';

test('the address names the page, and a foreign one the first', () => {
  assert.ok(kPages.length > 1);
  for (const page of kPages) assert.equal(pageOf(addressOf(page)), page);
  for (const hash of ['', '#', '#/', '#/nothing', '#/Status', '#/status/more'])
    assert.equal(pageOf(hash), 'status', hash);
});
