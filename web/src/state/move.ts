// The recorder's own address changes: where the pages go, and how they follow.
import {isAddress} from '../model/checks';
import type {Values} from '../model/fields';
import {kRestartMs, type Answer, type SaveEnd} from '../model/save';
import {kindOf} from '../recorder/fault';
import {answers} from '../recorder/wire';

const kTries = 30;
const kPauseMs = 2000;
export const kLocalIp = 'stLocalEth0/uiFD_LocalIp';

// Where the pages will be, or null when they do not move with the recorder's address. A file may
// hold anything as an address; the pages go to none but a recorder's.
export function newOrigin(held: string | undefined, wanted: string | undefined): string | null {
  if (!held || !wanted || held === wanted || location.hostname !== held) return null;
  const address = wanted.trim();
  return isAddress(address) ? location.origin.replace(held, address) : null;
}

export type Moved = SaveEnd | 'waiting';

// Sends, and returns whether the recorder is moving. `still` reads its current address.
export async function sendMove(send: () => Promise<Answer>, still: () => Promise<Values>,
    held: string): Promise<Moved> {
  try {
    const answer = await send();
    if (!answer.result) return 'deviceSilent';
    return answer.ms < kRestartMs ? 'refused' : 'waiting';
  } catch (caught) {
    const kind = kindOf(caught);
    const here = await still().catch(() => null);
    if (!here || here[kLocalIp] !== held) return 'waiting';
    return kind === 'serviceSilent' ? kind : 'lost';
  }
}

// Waits until the recorder answers there, then follows it. False when it does not answer.
export async function followTo(origin: string): Promise<boolean> {
  for (let left = kTries; left > 0; left--) {
    if (await answers(origin)) {
      location.assign(`${origin}/login.html#moved`);
      return true;
    }
    await new Promise((resume) => { setTimeout(resume, kPauseMs); });
  }
  return false;
}
