// The texts. The user's choice of language goes first, then the recorder's, then the browser's.
import type {en} from './en';
import type {login} from './en-login';
import type {settings} from './en-settings';

export type Language = 'zh' | 'en';
export type WordKey = keyof typeof en | keyof typeof login | keyof typeof settings;
export type Words = Partial<Record<WordKey, string>>;

const books: Record<Language, Words> = {zh: {}, en: {}};
let language: Language = 'en';

export const addWords = (of: Language, words: Words) => Object.assign(books[of], words);

export function speak(next: Language) {
  language = next;
  document.documentElement.lang = next === 'zh' ? 'zh-CN' : 'en';
}

export const spoken = () => language;

// The text of a key with its {names} filled in.
export const t = (key: WordKey, values: Record<string, string | number> = {}): string =>
  (books[language][key] || '').replace(/\{(\w+)\}/g, (_, name: string) => String(values[name]));

// Chinese full stops bring their own space.
export const sentences = (...texts: (string | false | undefined)[]) =>
  texts.filter(Boolean).join(language === 'zh' ? '' : ' ');

const isLanguage = (text: string | null): text is Language => text === 'zh' || text === 'en';

export function preferred(chosen: string | null, recorder: string | null, browser: string): Language {
  if (isLanguage(chosen)) return chosen;
  if (isLanguage(recorder)) return recorder;
  return browser.toLowerCase().startsWith('zh') ? 'zh' : 'en';
}
