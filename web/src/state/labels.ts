// The names of code numbers where the deployment gives them. They are asked for once, when the
// application opens; whatever is wrong with them, the pages go on with plain numbers.
import {kLabelsFile, readLabels} from '../model/labels';
import {readFile} from '../recorder/wire';
import {get, set} from './store';

export async function loadLabels() {
  const bytes = await readFile(kLabelsFile).catch(() => null);
  if (!bytes) return;
  const read = readLabels(bytes);
  set({labels: 'error' in read ? {names: new Map(), error: read}
    : {names: read.labels, error: null}});
}

// A number as the file writes it.
const canonical = (value: string) => /^\d+$/.test(value) ? String(Number(value)) : value;

// Number and text of each named value of a setting, none without names.
export function namesOf(path: string): [value: string, text: string][] {
  const {labels: {names}, language} = get();
  const known = names.get(path.replace(/\/.*\//, '/'));
  return known ? [...known].map(([value, texts]) => [value, `${texts[language]} (${value})`]) : [];
}

// The text of a value, or the value itself.
export function nameOf(path: string, value: string): string {
  const found = namesOf(path).find(([known]) => known === canonical(value));
  return found ? found[1] : value;
}

export const sameCode = (a: string, b: string) => canonical(a) === canonical(b);
