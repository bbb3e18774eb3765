import assert from 'node:assert/strict';
import test from 'node:test';
import {load} from './pages.js';

const {judge, save} = await load('save.js');

const same = (a, b) => a === b;
const fault = (kind) => Object.assign(new Error(kind), {kind});

test('the end of a save follows from the answer, its duration and what is read back', () => {
  const kAccepted = {result: true, ms: 2100};
  const kQuick = {result: true, ms: 20};
  const kSilent = {result: false, ms: 5010};
  const kFailed = {result: false, ms: 20};
  const rows = [  // reply, fault, before, sent, after, end
    [kAccepted, null, 'a', 'b', 'b', 'applied'],
    [kAccepted, null, 'a', 'b', 'c', 'adjusted'],
    [kAccepted, null, 'a', 'b', 'a', 'refused'],
    [kQuick, null, 'a', 'b', 'a', 'refused'],
    [kQuick, null, 'a', 'b', 'b', 'applied'],
    [kSilent, null, 'a', 'b', 'a', 'silent'],
    [kSilent, null, 'a', 'b', 'b', 'applied'],  // carried out, its answer lost
    [kFailed, null, 'a', 'b', 'a', 'refused'],
    [null, 'noservice', 'a', 'b', 'b', 'applied'],
    [null, 'noservice', 'a', 'b', 'a', 'noservice'],
    [null, 'lost', 'a', 'b', 'a', 'lost'],
    [kAccepted, null, 'a', 'a', 'a', 'applied'],  // only the clock was set
    [kQuick, null, 'a', 'a', 'a', 'refused'],
    [kSilent, null, 'a', 'a', 'a', 'silent'],
  ];
  for (const [reply, kind, before, sent, after, end] of rows) {
    const found = judge({reply, fault: kind, before, sent, after, same});
    assert.equal(found, end, JSON.stringify([reply, kind, before, sent, after]));
  }
});

// Runs a save with scripted answers; an answer that is an Error is thrown.
async function run({sends, loads}) {
  const steps = [];
  const next = (list) => async () => {
    const answer = list.length > 1 ? list.shift() : list[0];
    if (answer instanceof Error) throw answer;
    return answer;
  };
  const outcome = await save({load: next(loads), send: next(sends), same, before: 'a', sent: 'b',
    progress: (step) => steps.push(step), pauseMs: 0});
  return {...outcome, steps};
}

test('a save sends, reads back and settles', async () => {
  const loads = [{result: true, values: 'b'}];
  const outcome = await run({sends: [{result: true, ms: 2100}], loads});
  assert.deepEqual(outcome, {end: 'applied', values: 'b', steps: ['sending', 'reading']});
});

test('a connection lost in the restart is found again', async () => {
  const loads = [fault('lost'), fault('lost'), {result: true, values: 'b'}];
  const outcome = await run({sends: [fault('lost')], loads});
  assert.equal(outcome.end, 'applied');
});

test('a service that stays away ends the save', async () => {
  assert.equal((await run({sends: [fault('lost')], loads: [fault('lost')]})).end, 'lost');
  const late = await run({sends: [fault('noservice')], loads: [fault('noservice')]});
  assert.deepEqual([late.end, late.values], ['noservice', null]);
});

test('a recorder that is silent when read back ends the save', async () => {
  const outcome = await run({sends: [{result: true, ms: 2100}], loads: [{result: false}]});
  assert.deepEqual([outcome.end, outcome.values], ['silent', null]);
});
