import {useEffect, useLayoutEffect, useState} from 'preact/hooks';
import {subscribe} from '../../state/store';

// Renders again at every change that `watch` tells of. The watch begins before the browser paints:
// an answer may come before that.
export function useChanges(watch: (changed: () => void) => void | (() => void)) {
  const [, setTurn] = useState(0);
  useLayoutEffect(() => watch(() => setTurn((turn) => turn + 1)), []);
}
export const useStore = () => useChanges(subscribe);

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
