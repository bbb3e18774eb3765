// Maintenance: versions, the configuration to and from a file, the recorder's language.
import {query, renewSession, sendConfig} from './api.js';
import {changes, isSecret, openConfigFile, printConfig, readConfig, settings} from './config.js';
import {askUser} from './dialog.js';
import {el} from './dom.js';
import {kSections} from './fields.js';
import {SectionForm} from './form.js';
import {chooseLanguage, rememberRecorderLanguage, t} from './i18n.js';
import {clockText} from './inputs.js';
import {Notice} from './notice.js';
import {save} from './save.js';
import {goToLogin, openPage} from './shell.js';

const kVersions = [
  ['version.mcu', 'strFD_McuVersion'], ['version.boot', 'strFD_LdrVersion'],
  ['version.kernel', 'strFD_KnlVersion'], ['version.files', 'strFD_RfsVersion'],
  ['version.data', 'strFD_DbtVersion'],
];

function card(id, ...content) {
  return el('section', {class: 'card form', id, 'aria-labelledby': `${id}-title`},
      el('h2', {id: `${id}-title`}, t(`section.${id}`)), content);
}

// Runs something that asks the recorder; false when it failed, which is said.
async function attempt(notice, work) {
  try {
    return await work();
  } catch (fault) {
    if (fault.kind === 'refused') return goToLogin('maintenance');
    if (!fault.kind) throw fault;
    notice.say('bad', t(`load.${fault.kind}`));
    return false;
  }
}

class VersionCard {
  constructor() {
    this.notice = new Notice();
    this.list = el('dl', {class: 'facts'});
    this.node = card('versions', this.list, this.notice.node);
  }

  load() {
    return attempt(this.notice, async () => {
      const version = await query('get_VersionInfo');
      const parts = await query('get_SystemInfo');
      if (!version.result) return this.notice.say('bad', t('load.silent'));
      // The reply's other key repeats the application's version.
      const rows = [['version.app', version.strFD_AppVersion],
        ...kVersions.map(([key, name]) => [key, parts[name]])];
      return this.list.replaceChildren(...rows.map(([key, value]) =>
        el('div', {}, el('dt', {}, t(key)), el('dd', {}, value || t('value.none')))));
    });
  }
}

// The recorder's present configuration, or null after having said why not.
async function fetchConfig(notice) {
  const {result, strFD_CfgPara} = await query('export_CfgFile');
  const root = result && readConfig(strFD_CfgPara);
  if (!root) notice.say('bad', t(result ? 'load.unreadable' : 'load.silent'));
  return root || null;
}

function offerFile(name, text) {
  const url = URL.createObjectURL(new Blob([text], {type: 'application/xml'}));
  el('a', {href: url, download: name}).click();
  setTimeout(() => URL.revokeObjectURL(url), 10000);
}

class ExportCard {
  constructor() {
    this.notice = new Notice();
    this.button = el('button', {type: 'button', class: 'main', onclick: () => this.run()},
        t('export.go'));
    this.node = card('export', el('p', {class: 'hint'}, t('export.help')), this.notice.node,
        el('div', {class: 'actions'}, this.button));
  }

  async run() {
    this.button.disabled = true;
    this.notice.say('busy', t('export.busy'));
    await attempt(this.notice, async () => {
      const root = await fetchConfig(this.notice);
      if (!root) return;
      const number = settings(root).get('stBaseInfo strFD_DeviceNo') || '';
      const day = clockText(new Date()).slice(0, 10);
      const name = `recorder-${number.replace(/[^\w-]/g, '')}-${day}.xml`;
      offerFile(name, `<?xml version="1.0" encoding="UTF-8"?>\n${printConfig(root, '  ')}`);
      this.notice.say('good', t('export.done', {name}));
    });
    this.button.disabled = false;
  }
}

function changeTable(rows) {
  const shown = (path, value) => {
    if (value === null) return t('value.absent');
    return isSecret(path) && value ? '••••••' : value || t('value.none');
  };
  const head = ['import.setting', 'import.now', 'import.file'].map((key) =>
    el('th', {scope: 'col'}, t(key)));
  return el('div', {class: 'scroll', tabindex: '0', role: 'region', 'aria-label': t('import.table')},
      el('table', {}, el('thead', {}, el('tr', {}, head)),
          el('tbody', {}, rows.map(({path, from, to}) =>
            el('tr', {}, el('th', {scope: 'row'}, path), el('td', {}, shown(path, from)),
                el('td', {}, shown(path, to)))))));
}

class ImportCard {
  constructor() {
    this.notice = new Notice();
    this.file = el('input', {type: 'file', accept: '.xml,text/xml',
      'aria-describedby': 'import-help', onchange: () => this.preview()});
    this.name = el('span', {class: 'hint'}, t('import.none'));
    this.changes = el('div', {class: 'preview'});
    this.button = el('button', {type: 'button', class: 'main', hidden: true,
      onclick: () => this.run()}, t('import.go'));
    this.node = card('import', el('p', {class: 'hint', id: 'import-help'}, t('import.help')),
        el('label', {class: 'file'}, this.file, el('span', {class: 'button'}, t('import.choose')),
            this.name),
        this.changes, this.notice.node, el('div', {class: 'actions'}, this.button));
  }

  setBusy(busy) {
    this.file.disabled = busy;
    this.button.disabled = busy;
  }

  async preview() {
    this.changes.replaceChildren();
    this.button.hidden = true;
    const [file] = this.file.files;
    this.name.textContent = file ? file.name : t('import.none');
    if (!file) return this.notice.say();
    this.opened = openConfigFile(new Uint8Array(await file.arrayBuffer()));
    const {error, values, root} = this.opened;
    if (error) return this.notice.say('bad', t(error, values));
    this.notice.say('busy', t('import.comparing'));
    this.setBusy(true);
    await attempt(this.notice, async () => {
      const now = await fetchConfig(this.notice);
      if (now) this.showChanges(settings(now), settings(root));
    });
    return this.setBusy(false);
  }

  showChanges(now, file) {
    const rows = changes(now, file);
    if (!rows.length) return this.notice.say('info', t('import.same'));
    this.changes.replaceChildren(el('h3', {}, t('import.count', {count: rows.length})),
        changeTable(rows));
    this.before = now;
    this.wanted = new Map(rows.map(({path, to}) => [path, to]));
    this.button.hidden = false;
    return this.notice.say();
  }

  // Only what the file changes counts: the recorder's status differs at every reading.
  same(a, b) {
    return [...this.wanted.keys()].every((path) => a.get(path) === b.get(path));
  }

  async transmit() {
    const load = async () => {
      const {result, strFD_CfgPara} = await query('export_CfgFile');
      const root = result && readConfig(strFD_CfgPara);
      return {result: Boolean(root), values: root && settings(root)};
    };
    await renewSession();
    return save({
      load, send: () => sendConfig(this.opened.xml), same: (a, b) => this.same(a, b),
      before: this.before, sent: new Map([...this.before, ...this.wanted]),
      progress: (step) => this.notice.say('busy', t(`state.${step}`),
          el('progress', {'aria-label': t('state.progress')})),
    });
  }

  async run() {
    const question = el('p', {}, t('import.question', {count: this.wanted.size}));
    if (!await askUser(t('import.title'), question, t('import.go'))) return;
    this.setBusy(true);
    await attempt(this.notice, async () => {
      const {end, values} = await this.transmit();
      const left = values ? changes(values, this.wanted) : [];
      if (end === 'applied') this.button.hidden = true;
      this.changes.replaceChildren(...(end === 'adjusted' ? [changeTable(left)] : []));
      const tone = {applied: 'good', adjusted: 'warn'}[end] || 'bad';
      this.notice.say(tone, t(`end.${end}`));
    });
    this.setBusy(false);
  }
}

const language = {
  ...kSections.language,
  applied({strLanguage}) {
    rememberRecorderLanguage(strLanguage);
    chooseLanguage(strLanguage === 'CN' ? 'zh' : 'en');
    location.reload();
  },
};

openPage('maintenance', ['page.css', 'sets.css'], async (main) => {
  const parts = [new ExportCard(), new SectionForm('maintenance', language), new ImportCard(),
    new VersionCard()];
  main.append(el('div', {class: 'cards'}, parts.map((part) => part.node)));
  for (const part of parts) if (part.load) await part.load();
});
