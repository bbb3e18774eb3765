import {useEffect, useState} from 'preact/hooks';
import {subscribe} from '../../state/store';

// Renders again at every change of the state.
export function useStore() {
  const [, setTurn] = useState(0);
  useEffect(() => subscribe(() => setTurn((turn) => turn + 1)), []);
}

const kTickMs = 250;  // a passed second is shown at once

// The time in milliseconds, updated while it is needed.
export function useNow(needed: boolean): number {
  const [, setNow] = useState(0);
  useEffect(() => {
    if (!needed) return undefined;
    const timer = setInterval(() => setNow(Date.now()), kTickMs);
    return () => clearInterval(timer);
  }, [needed]);
  return Date.now();
}

export const secondsSince = (since: number, now: number) =>
  Math.max(0, Math.floor((now - since) / 1000));
export const secondsUntil = (at: number, now: number) => Math.max(0, Math.ceil((at - now) / 1000));
