// The lock after wrong passwords: the recorder stores a count and a time, the pages do the
// counting.
import {query, send, serviceTime} from './wire';

export const kWrongEntries = 5;
const kLockSeconds = 3600;
const kClockOffset = 28800;  // the stored time is eight hours behind the service's clock

// known: the recorder answered; left: seconds that the sign-in stays locked.
export interface Lock { known: boolean; count: number; left: number }

export function lockOf(count: number, time: number): Omit<Lock, 'known'> {
  const elapsed = time >>> 0;  // a lock ahead of the clock is far in the past
  const recent = elapsed < kLockSeconds;
  const counted = recent ? count : 0;
  return {count: counted, left: counted >= kWrongEntries ? kLockSeconds - elapsed : 0};
}

export async function readLock(): Promise<Lock> {
  const {result, values} = await query('get_LockOfPassword');
  return {known: result, ...lockOf(Number(values.ucFD_ErrorCount), Number(values.time))};
}

export async function writeLock(count: number) {
  const time = (await serviceTime() - kClockOffset) | 0;
  return send('set_LockOfPassword', {ucFD_ErrorCount: String(count), time: String(time)});
}

export function timeText(seconds: number): string {
  const rest = seconds % 60;
  return `${Math.floor(seconds / 60)}:${rest < 10 ? '0' : ''}${rest}`;
}
