// One save, from the click to a settled end. Knows no page and no field: it is given how to load,
// send and compare, so that every end can be tested.

// The service restarts for 2 s when the recorder accepts a set and waits 5 s for a silent recorder;
// a shorter answer means that neither happened.
const kRestartMs = 1900;
const kSilenceMs = 4500;
const kTries = 8;
const kPauseMs = 1500;

// The ends: applied, adjusted (taken over in part), refused, silent (the recorder does not answer),
// noservice, lost, unreadable.
export function judge({reply, fault, before, sent, after, same}) {
  const asked = !same(sent, before);
  if (asked && same(sent, after)) return 'applied';
  if (fault) return fault;
  if (reply.result && !asked) return reply.ms >= kRestartMs ? 'applied' : 'refused';
  if (reply.result) return reply.ms < kRestartMs || same(after, before) ? 'refused' : 'adjusted';
  return reply.ms < kSilenceMs ? 'refused' : 'silent';
}

async function readBack(load, tries, pauseMs) {
  for (let left = tries;;) {
    try {
      return await load();
    } catch (fault) {
      left -= fault.kind === 'noservice' ? kTries / 2 : 1;  // that one has cost its time already
      if (left <= 0) throw fault;
    }
    await new Promise((resume) => { setTimeout(resume, pauseMs); });
  }
}

// load() gives {result, values}, send() gives {result, ms}; both may throw a Fault. same(a, b)
// compares two sets of values. progress(step) is told 'sending', then 'reading'. Resolves to
// {end, values}: values as read back, or null when that failed.
export async function save({load, send, same, before, sent, progress, pauseMs = kPauseMs}) {
  let reply = null;
  let fault = null;
  progress('sending');
  try {
    reply = await send();
  } catch (thrown) {
    fault = thrown.kind;
  }
  progress('reading');
  let after;
  try {
    after = await readBack(load, reply ? 2 : kTries, pauseMs);
  } catch (thrown) {
    return {end: thrown.kind, values: null};
  }
  if (!after.result) return {end: 'silent', values: null};
  const end = judge({reply, fault, before, sent, after: after.values, same});
  return {end, values: after.values};
}
