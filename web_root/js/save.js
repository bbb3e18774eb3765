// One save up to its settled end. Knows no page and no field, so that every end can be tested.

// An accepted set restarts the service for 2 s, a silent recorder takes 5 s: shorter is neither.
const kRestartMs = 1900;
const kSilenceMs = 4500;
const kTries = 8;
const kPauseMs = 1500;

// applied, adjusted (taken over in part), refused, silent (the recorder), or a Fault's kind.
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

// load() gives {result, values}, send() {result, ms}; both may throw a Fault. progress(step) hears
// 'sending', then 'reading'. Gives {end, values}: values as read back, or null.
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
