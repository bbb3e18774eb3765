import {signedInTo} from './page';
import assert from 'node:assert/strict';
import test from 'node:test';
import {askUser} from '../../src/state/dialog';
import {addressOf, follow, kPages, pageOf} from '../../src/state/route';
import {get} from '../../src/state/store';

test('the address names the page, and a foreign one the first', () => {
  assert.ok(kPages.length > 1);
  for (const page of kPages) assert.equal(pageOf(addressOf(page)), page);
  for (const hash of ['', '#', '#/', '#/nothing', '#/Status', '#/status/more'])
    assert.equal(pageOf(hash), 'status', hash);
});

test('a question does not follow to another page, and is answered with no', async () => {
  signedInTo({});
  const answer = askUser({kind: 'leave', pages: ['network']});
  location.hash = '#/device';
  follow();
  assert.deepEqual([get().page, get().dialog], ['device', null]);
  assert.equal(await answer, false);
});
