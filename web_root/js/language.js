// The button that changes the language of the pages in this browser.
import {el} from './dom.js';
import {chooseLanguage, preferredLanguage, t} from './i18n.js';

export function languageSwitch() {
  const other = preferredLanguage() === 'zh' ? 'en' : 'zh';
  return el('button', {type: 'button', class: 'quiet', lang: other === 'zh' ? 'zh-CN' : 'en',
    onclick: () => { chooseLanguage(other); location.reload(); }}, t('language.other'));
}
