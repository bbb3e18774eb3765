// What every page behind the login has: the gate, the header, the navigation.
import {Fault, passGate, sheetUrl} from './api.js';
import {el, icon} from './dom.js';
import {loadLanguage, t} from './i18n.js';
import {languageSwitch} from './language.js';
import {endSession} from './store.js';

const kPages = ['status', 'device', 'video', 'network', 'platforms', 'security', 'maintenance'];

export function goToLogin(page) {
  location.replace(`login.html#${page}`);
}

function sheet(name) {
  return new Promise((arrived, failed) => {
    document.head.append(el('link', {
      rel: 'stylesheet',
      href: sheetUrl(name),
      onload: arrived,
      onerror: () => failed(new Fault('lost')),
    }));
  });
}

function header(page) {
  const leave = () => { endSession(); goToLogin(page); };
  return el('header', {class: 'bar'},
      el('a', {class: 'brand', href: 'status.html'}, icon('recorder'), el('span', {}, t('brand'))),
      el('div', {class: 'tools'},
          languageSwitch(),
          el('button', {type: 'button', class: 'quiet', id: 'leave', onclick: leave},
              icon('out'), el('span', {}, t('leave')))));
}

function navigation(page) {
  const item = (name) => el('li', {}, el('a', {
    href: `${name}.html`,
    'aria-current': name === page && 'page',
  }, icon(name), el('span', {}, t(`page.${name}`))));
  return el('nav', {class: 'nav', 'aria-label': t('nav')}, el('ul', {}, kPages.map(item)));
}

function frame(page) {
  const main = el('main', {id: 'main', tabindex: '-1'},
      el('h1', {}, t(`page.${page}`)));
  const app = document.getElementById('app');
  app.replaceChildren(el('a', {class: 'skip', href: '#main'}, t('skip')), header(page),
      navigation(page), main);
  return main;
}

function showFault(app, kind) {
  app.replaceChildren(el('main', {class: 'stop'},
      el('h1', {}, t(`load.${kind}`)),
      el('button', {type: 'button', onclick: () => location.reload()}, t('again'))));
  app.hidden = false;
}

// Shows the page when its guarded style sheets have come; without a session the login follows.
// fill(main) builds the content. All pages but the status have forms.
export async function openPage(page, fill) {
  const app = document.getElementById('app');
  const forms = page !== 'status';
  const sheets = ['page.css', ...(forms ? ['sets.css'] : [])];
  const language = loadLanguage(['', ...(forms ? ['-sets'] : [])]);
  try {
    await passGate(() => sheets.map(sheet));
    await language;
  } catch (fault) {
    if (fault.kind === 'refused') return goToLogin(page);
    await language;
    return showFault(app, fault.kind);
  }
  document.title = `${t(`page.${page}`)} · ${t('brand')}`;
  const main = frame(page);
  app.hidden = false;
  app.querySelector('[aria-current]').scrollIntoView({block: 'nearest', inline: 'center'});
  await fill(main);
}
