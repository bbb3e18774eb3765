// Compares what the user typed with what the recorder holds now, when that has changed meanwhile.
import {equal, type Change, type Field, type Values} from './fields';

export interface Merged {
  typed: Values;  // without what the recorder holds already
  conflicts: Values;  // what it holds instead where the user typed too
  elsewhere: Change[];  // what changed where the user typed nothing
}

// `base` is what the recorder held when the user began, `fresh` what it holds now.
export function merge(fields: Field[], base: Values, fresh: Values, typed: Values): Merged {
  const merged: Merged = {typed: {}, conflicts: {}, elsewhere: []};
  for (const field of fields) {
    const {path} = field;
    const mine = typed[path];
    const now = fresh[path];
    const known = path in base && path in fresh;
    const moved = known && !field.live && !equal(field, base[path], now);
    if (mine === undefined) {
      if (moved) merged.elsewhere.push({field, from: base[path], to: now || ''});
      continue;
    }
    if (!field.live && equal(field, mine, now)) continue;
    merged.typed[path] = mine;
    if (moved) merged.conflicts[path] = now || '';
  }
  return merged;
}
