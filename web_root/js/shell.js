// What every page behind the login has: the gate, the header and the navigation. A page calls
// openPage with its name and fills the element that it gets.
import {Fault, passGate, sheetUrl} from './api.js';
import {el, icon} from './dom.js';
import {chooseLanguage, loadLanguage, preferredLanguage, t} from './i18n.js';
import {endSession} from './store.js';

const kPages = ['status', 'device', 'video', 'network', 'platforms', 'security', 'maintenance'];

export function goToLogin(page) {
  location.replace(`login.html#${page}`);
}

// A guarded style sheet, asked for in the form that the service's gate reads.
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

export function languageSwitch(after) {
  const other = preferredLanguage() === 'zh' ? 'en' : 'zh';
  return el('button', {
    type: 'button',
    class: 'quiet',
    lang: other === 'zh' ? 'zh-CN' : 'en',
    onclick: () => { chooseLanguage(other); after(); },
  }, t('language.other'));
}

function header(page) {
  const leave = () => { endSession(); goToLogin(page); };
  return el('header', {class: 'bar'},
      el('a', {class: 'brand', href: 'status.html'}, icon('recorder'), el('span', {}, t('brand'))),
      el('div', {class: 'tools'},
          languageSwitch(() => location.reload()),
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
      el('div', {class: 'heading'}, el('h1', {}, t(`page.${page}`)),
          el('p', {class: 'lead'}, t(`lead.${page}`))));
  const app = document.getElementById('app');
  app.replaceChildren(el('a', {class: 'skip', href: '#main'}, t('skip')), header(page),
      navigation(page), main);
  return main;
}

function showFault(app, kind) {
  app.replaceChildren(el('main', {class: 'stop'},
      el('h1', {}, t(`fault.${kind}`)), el('p', {}, t(`fault.${kind}.help`)),
      el('button', {type: 'button', onclick: () => location.reload()}, t('again'))));
  app.hidden = false;
}

// Shows the page when its style sheets have come; without a valid session it stays hidden and the
// login follows. `fill(main)` builds the content.
export async function openPage(page, sheets, fill) {
  const app = document.getElementById('app');
  const language = loadLanguage(sheets.includes('sets.css') ? ['', '-sets'] : ['']);
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
