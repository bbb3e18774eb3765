import {holdClock, tick} from '../clock';
import {answers, asked, signedIn} from './page';
import assert from 'node:assert/strict';
import test, {beforeEach} from 'node:test';
import {pollStatus} from '../../src/state/status';
import {resetStore, set} from '../../src/state/store';

holdClock();

const turn = () => new Promise((resume) => { setImmediate(resume); });
const polls = () => asked.filter((name) => name === 'get_SystemInfo').length;

async function wait(seconds: number) {
  for (let left = seconds; left > 0; left--) {
    tick(1000);
    await turn();
  }
}

beforeEach(() => {
  resetStore();
  signedIn();
  asked.length = 0;
  answers.get_SystemInfo = '{ "ucFD_AccStatus": 1, "result": 1 }';
});

test('the status is read again and again while it is shown', async () => {
  await pollStatus();
  assert.equal(polls(), 1);
  await wait(11);
  assert.equal(polls(), 3);
  set({page: 'device'});
  await wait(20);
  assert.equal(polls(), 3);
});

test('a status that is opened while a save restarts the service is read soon afterwards', async () => {
  set({page: 'status', health: {state: 'restarting', since: 0}});
  await pollStatus();
  await wait(3);
  assert.equal(polls(), 0);
  set({health: {state: 'answers'}});
  await wait(2);
  assert.equal(polls(), 1);
});

test('a silent recorder is left to what asks after it', async () => {
  set({health: {state: 'deviceSilent', since: 0, retryAt: 0}});
  await pollStatus();
  await wait(20);
  assert.equal(polls(), 0);
});
