// A question that must be answered before something is sent.
import {el} from './dom.js';
import {t} from './i18n.js';

// True when the user goes on, false on cancel and Escape.
export function askUser(title, content, goOn) {
  return new Promise((answer) => {
    const dialog = el('dialog', {'aria-labelledby': 'dialog-title'},
        el('h2', {id: 'dialog-title'}, title), content,
        el('div', {class: 'actions'},
            el('button', {type: 'button', class: 'main', onclick: () => dialog.close('yes')}, goOn),
            el('button', {type: 'button', class: 'quiet', onclick: () => dialog.close()},
                t('cancel'))));
    dialog.addEventListener('close', () => {
      dialog.remove();
      answer(dialog.returnValue === 'yes');
    });
    document.body.append(dialog);
    dialog.showModal();
  });
}
