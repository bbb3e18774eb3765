import assert from 'node:assert/strict';
import test from 'node:test';
import {judge, save, type Answer, type SaveEnd} from '../../src/model/save';
import {Fault, type FaultKind} from '../../src/recorder/fault';

const same = (a: string, b: string) => a === b;

test('the end of a save follows from the answer, its duration and what is read back', () => {
  const kAccepted = {result: true, ms: 2100};
  const kQuick = {result: true, ms: 20};
  const kSilent = {result: false, ms: 5010};
  const rows: [Answer | null, FaultKind | null, string, string, string, SaveEnd][] = [
    // answer, fault, before, sent, after, end
    [kAccepted, null, 'a', 'b', 'b', 'applied'],
    [kAccepted, null, 'a', 'b', 'c', 'partly'],
    [kAccepted, null, 'a', 'b', 'a', 'partly'],  // it said yes: that is not a refusal
    [kQuick, null, 'a', 'b', 'a', 'refused'],
    [kQuick, null, 'a', 'b', 'b', 'applied'],
    [kQuick, null, 'a', 'b', 'c', 'partly'],
    [kSilent, null, 'a', 'b', 'a', 'deviceSilent'],
    [kSilent, null, 'a', 'b', 'b', 'applied'],  // executed, but its answer lost
    [null, 'serviceSilent', 'a', 'b', 'b', 'applied'],
    [null, 'serviceSilent', 'a', 'b', 'a', 'serviceSilent'],
    [null, 'lost', 'a', 'b', 'a', 'lost'],
    [null, 'unreadable', 'a', 'b', 'a', 'lost'],
    [kAccepted, null, 'a', 'a', 'a', 'applied'],  // only the clock was set
    [kQuick, null, 'a', 'a', 'a', 'refused'],
    [kSilent, null, 'a', 'a', 'a', 'deviceSilent'],
  ];
  for (const [answer, fault, before, sent, after, end] of rows)
    assert.equal(judge({answer, fault, before, sent, after, same}), end,
        JSON.stringify([answer, fault, before, sent, after]));
});

type Script<T> = (T | FaultKind)[];

// Runs a save with scripted answers; a text that names a fault is thrown.
async function run(sends: Script<Answer>, loads: ({holds: string} | FaultKind)[]) {
  const steps: string[] = [];
  const next = <T>(list: Script<T>) => async (): Promise<T> => {
    const answer = list.length > 1 ? list.shift() : list[0];
    if (typeof answer === 'string') throw new Fault(answer as FaultKind);
    return answer as T;
  };
  const load = next(loads);
  const {end, after} = await save<string>({load: async () => (await load()).holds, send: next(sends),
    same, before: 'a', sent: 'b', progress: (step) => steps.push(step), pauseMs: 0});
  return {end, after, steps, left: loads.length};
}

test('a save sends, reads back and settles', async () => {
  const {end, after, steps} = await run([{result: true, ms: 2100}], [{holds: 'b'}]);
  assert.deepEqual([end, after, steps], ['applied', 'b', ['sending', 'reading']]);
});

test('a connection lost in the restart is found again', async () => {
  assert.equal((await run(['lost'], ['lost', 'lost', {holds: 'b'}])).end, 'applied');
});

test('a service that stays away ends the save', async () => {
  assert.equal((await run(['lost'], ['lost'])).end, 'lost');
  const late = await run(['serviceSilent'], ['serviceSilent']);
  assert.deepEqual([late.end, late.after], ['serviceSilent', null]);
});

test('a recorder that is silent when read back ends the save', async () => {
  const {end, after} = await run([{result: true, ms: 2100}], ['deviceSilent']);
  assert.deepEqual([end, after], ['deviceSilent', null]);
});

test('our own mistakes are not taken for faults', async () => {
  await assert.rejects(save<string>({load: async () => 'a', send: () => { throw new TypeError(); },
    same, before: 'a', sent: 'b', progress: () => {}}), TypeError);
});
