// Security: the password, and the lock after wrong passwords.
import {query} from './api.js';
import {card, el, facts} from './dom.js';
import {kSections} from './fields.js';
import {SectionForm} from './form.js';
import {toEntities} from './gbk.js';
import {t} from './i18n.js';
import {kWrongEntries, readLock, timeText, writeLock} from './lock.js';
import {Notice} from './notice.js';
import {save} from './save.js';
import {openPage} from './shell.js';
import {transmit} from './submit.js';

const kFirstUser = '0';
const kBlank = {current: '', fresh: '', repeat: ''};

let stored = null;  // the recorder's password as last read

async function load() {
  const reply = await query('get_UserSecurity');
  stored = reply.strAdminPasswd;
  return {result: reply.result, values: kBlank};
}

const precheck = (values) => values.current === stored ? {} : {current: t('error.current')};
const repeated = (value, values) =>
  value === values.fresh ? null : {key: 'error.repeat', values: {}};

// The recorder took the change when it holds the new password.
async function change(form, values, before) {
  const {end} = await transmit(form, values, before, async () => {
    const {result} = await load();
    return {result, values: stored === values.fresh ? values : before};
  });
  return {end, values: kBlank};
}

// Passwords are not kept as a draft: they would stay readable in the browser.
const [current, fresh, repeat] = kSections.password.fields;
const password = {
  ...kSections.password,
  fields: [
    {...current, transient: true}, {...fresh, transient: true},
    {...repeat, transient: true, check: repeated},
  ],
  load,
  precheck,
  transmit: change,
  wire: (values) => ({strUserName: kFirstUser, strConfirmPasswd: toEntities(values.fresh)}),
};

// The lock is no form: it shows the count and offers to set it back.
class LockCard {
  constructor() {
    this.notice = new Notice();
    this.count = el('dd', {});
    this.state = el('dd', {});
    this.button = el('button', {type: 'button', disabled: true, onclick: () => this.reset()},
        t('lock.reset'));
    this.node = card('lock', t('section.lock'), el('p', {class: 'hint'}, t('lock.help')),
        facts([[t('lock.count'), this.count], [t('lock.state'), this.state]]),
        this.notice.node, el('div', {class: 'actions'}, this.button));
  }

  show({count, left}) {
    this.shown = count;
    this.count.textContent = t('lock.of', {count, most: kWrongEntries});
    this.state.textContent = left ? t('lock.locked', {time: timeText(left)}) : t('lock.open');
    this.button.disabled = count === 0;
  }

  async read() {
    const lock = await readLock();
    if (lock.known) this.show(lock);
    return {result: lock.known, values: lock};
  }

  async load() {
    this.notice.say('busy', t('state.loading'));
    try {
      const {result} = await this.read();
      if (result) this.notice.say();
      else this.notice.say('bad', t('load.silent'));
    } catch (fault) {
      this.notice.say('bad', t(`load.${fault.kind}`));
    }
  }

  async reset() {
    this.button.disabled = true;
    const {end} = await save({
      load: () => this.read(),
      send: () => writeLock(0),
      same: (a, b) => a.count === b.count,
      before: {count: this.shown},
      sent: {count: 0},
      progress: (step) => this.notice.say('busy', t(`state.${step}`)),
    });
    this.notice.say(end === 'applied' ? 'good' : 'bad', t(`end.${end}`));
    this.button.disabled = end === 'applied';
  }
}

openPage('security', async (main) => {
  const form = new SectionForm('security', password);
  const lock = new LockCard();
  main.append(el('div', {class: 'cards'}, form.node, lock.node));
  await form.load();
  await lock.load();
});
