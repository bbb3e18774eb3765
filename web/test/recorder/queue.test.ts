// One request at a time, in order; a save before readings; readings of a page left are dropped.
import assert from 'node:assert/strict';
import test from 'node:test';
import {Fault} from '../../src/recorder/fault';
import {Queue} from '../../src/recorder/queue';

// Work that ends when it is told to.
function work(name: string, log: string[]) {
  let end = () => {};
  const ended = new Promise<void>((resolve) => { end = resolve; });
  return {end, run: async () => { log.push(name); await ended; return name; }};
}

const settle = () => new Promise((resolve) => { setImmediate(resolve); });

test('work runs alone, in order, what is urgent first', async () => {
  const log: string[] = [];
  const queue = new Queue();
  const jobs = ['a', 'b', 'c', 'urgent'].map((name) => work(name, log));
  const done = jobs.map(({run}, i) => queue.add(run, '', i === 3));
  for (const i of [0, 3, 1, 2]) {
    await settle();
    assert.equal(log.length, [0, 3, 1, 2].indexOf(i) + 1);
    assert.ok(queue.busy);
    jobs[i]!.end();
  }
  assert.deepEqual(await Promise.all(done), ['a', 'b', 'c', 'urgent']);
  assert.deepEqual(log, ['a', 'urgent', 'b', 'c']);
  await settle();
  assert.ok(!queue.busy);
});

test('what waits for a page that was left is dropped, what runs and others go on', async () => {
  const log: string[] = [];
  const queue = new Queue();
  const first = work('runs', log);
  const running = queue.add(first.run, 'page');
  const waiting = queue.add(work('dropped', log).run, 'page');
  const other = work('other', log);
  const kept = queue.add(other.run, 'send');
  queue.drop('page');
  await assert.rejects(waiting, (caught) => caught instanceof Fault && caught.kind === 'dropped');
  first.end();
  other.end();
  assert.deepEqual([await running, await kept], ['runs', 'other']);
  assert.deepEqual(log, ['runs', 'other']);
});

test('a failure is its own work\'s alone', async () => {
  const queue = new Queue();
  const failed = queue.add(async () => { throw new Fault('lost'); });
  const next = queue.add(async () => 'next');
  await assert.rejects(failed, Fault);
  assert.equal(await next, 'next');
});
