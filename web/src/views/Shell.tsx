// What every page behind the sign-in has: header, navigation with badges, health banner, dialogs.
import type {ComponentChildren} from 'preact';
import {waiting} from '../state/editing';
import {addressOf, kPages} from '../state/route';
import {signOut} from '../state/session';
import {get, isSilent} from '../state/store';
import {t} from '../words';
import {Banner} from './parts/Banner';
import {Icon} from './parts/Icon';
import {LabelsNotice} from './parts/LabelsNotice';
import {LanguageSwitch, ThemeSwitch} from './parts/Switches';

const Header = () => <header class="bar">
  <a class="brand" href={addressOf('status')}><Icon name="recorder" /><span>{t('brand')}</span></a>
  <div class="tools">
    <LanguageSwitch /><ThemeSwitch />
    <button type="button" class="quiet" id="leave" onClick={() => void signOut()}>
      <Icon name="out" /><span>{t('leave')}</span>
    </button>
  </div>
</header>;

function Navigation() {
  const {page} = get();
  const counts = waiting();
  return <nav class="nav" aria-label={t('nav')}><ul>
    {kPages.map((name) => {
      const count = counts[name] || 0;
      return <li key={name}>
        <a href={addressOf(name)} data-page={name}
          aria-current={name === page ? 'page' : undefined}>
          <Icon name={name} /><span>{t(`page.${name}`)}</span>
          {count > 0 && <b class="badge" title={t('badge', {count})}>
            {count}<span class="unseen"> {t('badge.unit')}</span></b>}
        </a>
      </li>;
    })}
  </ul></nav>;
}

const skip = (event: Event) => {
  event.preventDefault();  // the address names the page
  const main = document.getElementById('main');
  if (main) main.focus();
};

export function Shell({children}: {children: ComponentChildren}) {
  const {page} = get();
  return <>
    <a class="skip" href="#main" onClick={skip}>{t('skip')}</a>
    <Header />
    <Navigation />
    <main id="main" tabIndex={-1} class={isSilent() ? 'stale' : ''} data-page={page}>
      <h1>{t(`page.${page}`)}</h1>
      <Banner />
      {page !== 'status' && <LabelsNotice />}
      {children}
    </main>
  </>;
}
