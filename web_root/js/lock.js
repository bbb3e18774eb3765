// The lock after wrong passwords. The recorder keeps a count and a time, the pages count: five wrong
// entries within an hour of one another lock the login for an hour.
import {query, send, serviceTime} from './api.js';

export const kWrongEntries = 5;
const kLockSeconds = 3600;
const kClockOffset = 28800;  // the stored time is eight hours behind the service's clock

// {known, count, left}: known is false when the recorder did not answer; left is how many seconds
// the login stays locked.
export async function readLock() {
  const reply = await query('get_LockOfPassword');
  const elapsed = Number(reply.time) >>> 0;
  const recent = elapsed < kLockSeconds;
  const count = recent ? Number(reply.ucFD_ErrorCount) : 0;
  const left = recent && count >= kWrongEntries ? kLockSeconds - elapsed : 0;
  return {known: reply.result, count, left};
}

// Stores the count with the present time.
export async function writeLock(count) {
  const time = (await serviceTime() - kClockOffset) | 0;
  return send('set_LockOfPassword', {ucFD_ErrorCount: String(count), time: String(time)});
}

export function timeText(seconds) {
  const minutes = Math.floor(seconds / 60);
  return `${minutes}:${String(seconds % 60).padStart(2, '0')}`;
}
