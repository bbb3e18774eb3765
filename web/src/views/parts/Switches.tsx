// Language and theme of the pages in this browser.
import {chooseLanguage, nextTheme} from '../../state/preferences';
import {get} from '../../state/store';
import {t} from '../../words';
import {Icon} from './Icon';

export function LanguageSwitch() {
  const other = get().language === 'zh' ? 'en' : 'zh';
  return <button type="button" class="quiet" data-action="language"
    lang={other === 'zh' ? 'zh-CN' : 'en'} onClick={() => chooseLanguage(other)}>
    {t('language.other')}
  </button>;
}

export function ThemeSwitch() {
  const {theme} = get();
  return <button type="button" class="quiet" data-action="theme" data-theme-now={theme}
    title={t(`theme.${theme}`)} aria-label={t(`theme.${theme}`)} onClick={nextTheme}>
    <Icon name={theme} />
  </button>;
}
