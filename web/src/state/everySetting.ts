// Names for every setting, and what a search finds: the words of both languages, the raw name and
// what the recorder holds, but no secret.
import {everyField, sectionName, type Name} from '../model/everyField';
import type {Field, Values} from '../model/fields';
import {giveFields} from '../model/sections';
import {sectionWords} from '../words/settings';
import {settingName} from './names';

const kLanguages = ['zh', 'en'] as const;

const nameOf = (path: string): Name => ({
  label: () => settingName(path),
  group: () => sectionWords(sectionName(path)),
});

const textOf = (path: string) => [path, ...kLanguages.map((language) =>
  `${sectionWords(sectionName(path), language)} ${settingName(path, language)}`)].join(' ').toLowerCase();

// Made when the settings are read, so that the first letter of a search waits for nothing.
const texts = new Map<string, string>();
const prepare = (fields: Field[]) => {
  for (const {path} of fields) if (!texts.has(path)) texts.set(path, textOf(path));
};

export const giveEveryField = () => giveFields(({settings}) => {
  const fields = settings ? everyField(settings, nameOf) : [];
  prepare(fields);
  return fields;
});

// The fields in which every word of the query stands.
export function found(fields: Field[], held: Values, query: string): Field[] {
  const words = query.toLowerCase().split(/\s+/).filter(Boolean);
  if (!words.length) return fields;
  return fields.filter(({path, kind}) => {
    const text = texts.get(path) || '';
    const value = kind === 'secret' ? '' : (held[path] || '').toLowerCase();
    return words.every((word) => text.includes(word) || value.includes(word));
  });
}
