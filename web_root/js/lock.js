// The lock after wrong passwords: the recorder keeps a count and a time, the pages count.
import {query, send, serviceTime} from './api.js';

export const kWrongEntries = 5;
const kLockSeconds = 3600;
const kClockOffset = 28800;  // the stored time is eight hours behind the service's clock

// known: the recorder answered; left: seconds that the login stays locked.
export async function readLock() {
  const reply = await query('get_LockOfPassword');
  const elapsed = Number(reply.time) >>> 0;
  const recent = elapsed < kLockSeconds;
  const count = recent ? Number(reply.ucFD_ErrorCount) : 0;
  const left = recent && count >= kWrongEntries ? kLockSeconds - elapsed : 0;
  return {known: reply.result, count, left};
}

export async function writeLock(count) {
  const time = (await serviceTime() - kClockOffset) | 0;
  return send('set_LockOfPassword', {ucFD_ErrorCount: String(count), time: String(time)});
}

export function timeText(seconds) {
  const minutes = Math.floor(seconds / 60);
  return `${minutes}:${String(seconds % 60).padStart(2, '0')}`;
}
