// What a setting is called, by its path.
import {attributeOf} from '../model/schema';
import type {Language} from '../words';
import {attributeWords, itemWords, unitWords} from '../words/settings';

// "Channel 3 · Bit rate (kbit/s)", without the section.
export function settingName(path: string, language?: Language): string {
  const {unit} = attributeOf(path) || {};
  const name = [itemWords(path, language), attributeWords(path, language)].filter(Boolean)
      .join(' · ');
  return unit ? `${name} (${unitWords(unit, language)})` : name;
}
