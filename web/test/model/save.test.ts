// Every end of a save, from the answer, its duration and what is read back.
import assert from 'node:assert/strict';
import test from 'node:test';
import {judge, save, type Answer, type SaveEnd} from '../../src/model/save';
import {Fault, type FaultKind} from '../../src/recorder/fault';

const same = (a: string, b: string) => a === b;

const kAccepted: Answer = {result: true, ms: 2100};
const kQuick: Answer = {result: true, ms: 20};
const kSilent: Answer = {result: false, ms: 5010};
const kFailed: Answer = {result: false, ms: 20};

test('the end of a save follows from the answer, its duration and what is read back', () => {
  const rows: [Answer | null, FaultKind | null, string, string, string, SaveEnd][] = [
    [kAccepted, null, 'a', 'b', 'b', 'applied'],
    [kAccepted, null, 'a', 'b', 'c', 'partly'],
    [kAccepted, null, 'a', 'b', 'a', 'partly'],  // taken, and yet not held: not the recorder's no
    [kQuick, null, 'a', 'b', 'a', 'refused'],
    [kQuick, null, 'a', 'b', 'b', 'applied'],
    [kQuick, null, 'a', 'b', 'c', 'partly'],
    [kSilent, null, 'a', 'b', 'a', 'deviceSilent'],
    [kSilent, null, 'a', 'b', 'b', 'applied'],  // carried out, its answer lost
    [kFailed, null, 'a', 'b', 'a', 'deviceSilent'],  // no answer of the recorder's
    [null, 'serviceSilent', 'a', 'b', 'b', 'applied'],
    [null, 'serviceSilent', 'a', 'b', 'a', 'serviceSilent'],
    [null, 'lost', 'a', 'b', 'a', 'lost'],
    [kAccepted, null, 'a', 'a', 'a', 'applied'],  // only the clock was set
    [kQuick, null, 'a', 'a', 'a', 'refused'],
    [kSilent, null, 'a', 'a', 'a', 'deviceSilent'],
  ];
  for (const [answer, fault, before, sent, after, end] of rows) {
    const found = judge({answer, fault, before, sent, after, same});
    assert.equal(found, end, JSON.stringify([answer, fault, before, sent, after]));
  }
});

// Runs a save with scripted answers; an answer that is a Fault is thrown.
async function run(sends: (Answer | Fault)[], loads: (string | Fault)[]) {
  const steps: string[] = [];
  const next = <T>(list: (T | Fault)[]) => async (): Promise<T> => {
    const answer = list.length > 1 ? list.shift() : list[0];
    if (answer instanceof Fault) throw answer;
    return answer as T;
  };
  const outcome = await save<string>({
    load: next(loads), send: next(sends), same, before: 'a', sent: 'b',
    progress: (step) => steps.push(step), pauseMs: 0,
  });
  return {...outcome, steps};
}

const lost = new Fault('lost');
const silent = new Fault('serviceSilent');

test('a save sends, reads back and settles', async () => {
  assert.deepEqual(await run([kAccepted], ['b']),
      {end: 'applied', after: 'b', steps: ['sending', 'reading']});
});

test('a connection lost in the restart is found again', async () => {
  assert.equal((await run([lost], [lost, lost, 'b'])).end, 'applied');
});

test('a service that stays away ends the save, and what it holds is not known', async () => {
  assert.deepEqual(await run([lost], [lost]), {end: 'lost', after: null, steps: ['sending', 'reading']});
  assert.deepEqual((await run([silent], [silent])).end, 'serviceSilent');
});

test('a recorder that is silent when read back ends the save', async () => {
  const {end, after} = await run([kAccepted], [new Fault('deviceSilent')]);
  assert.deepEqual([end, after], ['deviceSilent', null]);
});

test('our own mistakes are no end of a save', async () => {
  await assert.rejects(save<string>({
    load: async () => 'b', send: async () => { throw new TypeError('mine'); }, same, before: 'a',
    sent: 'b', progress: () => {}, pauseMs: 0,
  }), TypeError);
});
