// The texts. The user's choice of language goes first, then the recorder's, then the browser's.
import {recall, remember} from './store.js';

let texts = {};

export const kLanguages = ['zh', 'en'];

export function preferredLanguage() {
  const known = recall('language.chosen') || recall('language.recorder');
  if (kLanguages.includes(known)) return known;
  return navigator.language.toLowerCase().startsWith('zh') ? 'zh' : 'en';
}

// Call with the recorder's own code, "CN" or "EN".
export const rememberRecorderLanguage = (code) =>
  remember('language.recorder', code === 'CN' ? 'zh' : 'en');
export const chooseLanguage = (language) => remember('language.chosen', language);

// Loads parts of a dictionary: '' for what every page shows, '-sets' for the forms.
export async function loadLanguage(parts) {
  const language = preferredLanguage();
  document.documentElement.lang = language === 'zh' ? 'zh-CN' : 'en';
  const modules = await Promise.all(parts.map((part) => import(`./lang/${language}${part}.js`)));
  const lines = modules.flatMap((module) => module.default.split('\n')).filter(Boolean);
  texts = Object.fromEntries(lines.map((line) => line.split(/ (.*)/, 2)));
}

// The text of a key with its {names} filled in.
export const t = (key, values = {}) =>
  texts[key].replace(/\{(\w+)\}/g, (_, name) => String(values[name]));
