// Language and theme, kept in this browser.
import {preferred, speak, type Language} from '../words';
import {recall, remember} from './memory';
import {get, set, type Theme} from './store';

const kChosen = 'language.chosen';
const kRecorder = 'language.recorder';
const kTheme = 'theme';
const kThemes: readonly Theme[] = ['auto', 'light', 'dark'];
const kDark = '(prefers-color-scheme: dark)';

const isTheme = (text: string | null): text is Theme => kThemes.some((theme) => theme === text);

function dress() {
  const {theme} = get();
  const dark = theme === 'dark' || (theme === 'auto' && matchMedia(kDark).matches);
  document.documentElement.setAttribute('data-theme', dark ? 'dark' : 'light');
}

function speakPreferred() {
  const language = preferred(recall(kChosen), recall(kRecorder), navigator.language || '');
  speak(language);
  if (language !== get().language) set({language});
}

export function loadPreferences() {
  const theme = recall(kTheme);
  set({theme: isTheme(theme) ? theme : 'auto'});
  dress();
  // Engines of that time know only this form of it.
  matchMedia(kDark).addListener(dress);
  speakPreferred();
}

export function chooseLanguage(language: Language) {
  remember(kChosen, language);
  speakPreferred();
}

// The recorder's own code, "CN" or "EN".
export function followRecorder(code: string) {
  remember(kRecorder, code === 'CN' ? 'zh' : 'en');
  speakPreferred();
}

export function nextTheme() {
  const at = kThemes.indexOf(get().theme);
  const theme = kThemes[(at + 1) % kThemes.length] || 'auto';
  remember(kTheme, theme);
  set({theme});
  dress();
}
