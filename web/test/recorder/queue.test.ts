import assert from 'node:assert/strict';
import test from 'node:test';
import {Fault} from '../../src/recorder/fault';
import {Queue} from '../../src/recorder/queue';

// Work that ends on request, and the work that has begun.
function bench() {
  const begun: string[] = [];
  const ends = new Map<string, () => void>();
  const work = (name: string) => () => new Promise<string>((resolve) => {
    begun.push(name);
    ends.set(name, () => resolve(name));
  });
  const end = async (name: string) => {
    ends.get(name)!();
    await new Promise((resume) => { setImmediate(resume); });
  };
  return {begun, work, end};
}

test('one request at a time, in order', async () => {
  const {begun, work, end} = bench();
  const queue = new Queue();
  const all = ['a', 'b', 'c'].map((name) => queue.add(work(name)));
  assert.deepEqual(begun, ['a']);
  await end('a');
  assert.deepEqual(begun, ['a', 'b']);
  await end('b');
  await end('c');
  assert.deepEqual(await Promise.all(all), ['a', 'b', 'c']);
});

test('a save comes before readings that wait', async () => {
  const {begun, work, end} = bench();
  const queue = new Queue();
  void queue.add(work('reading'));
  void queue.add(work('later'));
  void queue.add(work('save'), 'send', true);
  void queue.add(work('second save'), 'send', true);
  for (const name of ['reading', 'save', 'second save', 'later']) await end(name);
  assert.deepEqual(begun, ['reading', 'save', 'second save', 'later']);
});

test('a failure holds nothing up', async () => {
  const queue = new Queue();
  const bad = queue.add(() => Promise.reject(new Fault('lost')));
  const good = queue.add(() => Promise.resolve(7));
  await assert.rejects(bad, {kind: 'lost'});
  assert.equal(await good, 7);
});

test('what waits for a page that was left is dropped, what runs goes on', async () => {
  const {begun, work, end} = bench();
  const queue = new Queue();
  const running = queue.add(work('running'), 'page');
  const dropped = queue.add(work('dropped'), 'page');
  const kept = queue.add(work('kept'), 'send');
  queue.drop('page');
  await assert.rejects(dropped, {kind: 'dropped'});
  await end('running');
  await end('kept');
  assert.deepEqual(await Promise.all([running, kept]), ['running', 'kept']);
  assert.deepEqual(begun, ['running', 'kept']);
});
