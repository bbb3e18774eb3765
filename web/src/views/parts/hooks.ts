import {useEffect, useState} from 'preact/hooks';
import {subscribe} from '../../state/store';

// Renders again at every change of the state.
export function useStore() {
  const [, setTurn] = useState(0);
  useEffect(() => subscribe(() => setTurn((turn) => turn + 1)), []);
}

// The time in milliseconds, moving once a second while it is needed.
export function useNow(needed: boolean): number {
  const [now, setNow] = useState(Date.now());
  useEffect(() => {
    if (!needed) return undefined;
    setNow(Date.now());
    const timer = setInterval(() => setNow(Date.now()), 1000);
    return () => clearInterval(timer);
  }, [needed]);
  return now;
}

export const secondsSince = (since: number, now: number) =>
  Math.max(0, Math.floor((now - since) / 1000));
export const secondsUntil = (at: number, now: number) => Math.max(0, Math.ceil((at - now) / 1000));
