// Maintenance: the configuration to and from a file, the recorder's language, versions.
import {query, renewSession, sendConfig} from './api.js';
import {changes, fetchConfig, isSecret, openConfigFile, printConfig, settings} from './config.js';
import {askUser} from './dialog.js';
import {card, el, facts} from './dom.js';
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
const kKeepUrlMs = 10000;  // a browser may read a download a little later

const hint = (key) => el('p', {class: 'hint'}, t(key));
const mainButton = (key, onclick) => el('button', {type: 'button', class: 'main', onclick}, t(key));

// Runs something that asks the recorder; says it when that fails.
async function attempt(notice, work) {
  try {
    await work();
  } catch (fault) {
    if (fault.kind === 'refused') goToLogin('maintenance');
    else if (fault.kind) notice.say('bad', t(`load.${fault.kind}`));
    else throw fault;
  }
}

// The recorder's root element, or null after having said why not.
async function fetchRoot(notice) {
  const {result, root} = await fetchConfig();
  if (!root) notice.say('bad', t(result ? 'load.unreadable' : 'load.silent'));
  return root;
}

function offerFile(name, text) {
  const url = URL.createObjectURL(new Blob([text], {type: 'application/xml'}));
  el('a', {href: url, download: name}).click();
  setTimeout(() => URL.revokeObjectURL(url), kKeepUrlMs);
}

function exportCard() {
  const notice = new Notice();
  const run = async () => {
    notice.say('busy', t('export.busy'));
    const root = await fetchRoot(notice);
    if (!root) return;
    const number = (settings(root).get('stBaseInfo strFD_DeviceNo') || '').replace(/[^\w-]/g, '');
    const name = `recorder-${number}-${clockText(new Date()).slice(0, 10)}.xml`;
    offerFile(name, `<?xml version="1.0" encoding="UTF-8"?>\n${printConfig(root, '  ')}`);
    notice.say('good', t('export.done', {name}));
  };
  const button = mainButton('export.go', async () => {
    button.disabled = true;
    await attempt(notice, run);
    button.disabled = false;
  });
  return card('export', t('section.export'), hint('export.help'), notice.node,
      el('div', {class: 'actions'}, button));
}

function changeTable(rows) {
  const shown = (path, value) => {
    if (value === null) return t('value.absent');
    return isSecret(path) && value ? '••••••' : value || t('value.none');
  };
  const head = ['import.setting', 'import.now', 'import.file'];
  const row = ({path, from, to}) => el('tr', {}, el('th', {scope: 'row'}, path),
      el('td', {}, shown(path, from)), el('td', {}, shown(path, to)));
  const region = {class: 'scroll', tabindex: '0', role: 'region', 'aria-label': t('import.file')};
  return el('div', region, el('table', {},
      el('thead', {}, el('tr', {}, head.map((key) => el('th', {scope: 'col'}, t(key))))),
      el('tbody', {}, rows.map(row))));
}

class ImportCard {
  constructor() {
    this.notice = new Notice();
    this.file = el('input', {type: 'file', accept: '.xml,text/xml',
      onchange: () => this.preview()});
    this.name = el('span', {class: 'hint'}, t('import.none'));
    this.changes = el('div', {class: 'preview'});
    this.button = mainButton('import.go', () => this.run());
    this.button.hidden = true;
    this.node = card('import', t('section.import'), hint('import.help'),
        el('label', {class: 'file'}, this.file, el('span', {class: 'button'}, t('import.choose')),
            this.name),
        this.changes, this.notice.node, el('div', {class: 'actions'}, this.button));
  }

  async busy(work) {
    this.file.disabled = true;
    this.button.disabled = true;
    await attempt(this.notice, work);
    this.file.disabled = false;
    this.button.disabled = false;
  }

  async preview() {
    this.changes.replaceChildren();
    this.button.hidden = true;
    const [file] = this.file.files;
    this.name.textContent = file ? file.name : t('import.none');
    if (!file) return this.notice.say();
    const {error, values, root, xml} = openConfigFile(new Uint8Array(await file.arrayBuffer()));
    if (error) return this.notice.say('bad', t(error, values));
    this.xml = xml;
    this.notice.say('busy', t('import.comparing'));
    return this.busy(async () => {
      const now = await fetchRoot(this.notice);
      if (now) this.showChanges(settings(now), settings(root));
    });
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
    await renewSession();
    const {end, values} = await save({
      load: async () => {
        const {root} = await fetchConfig();
        return {result: Boolean(root), values: root && settings(root)};
      },
      send: () => sendConfig(this.xml), same: (a, b) => this.same(a, b),
      before: this.before, sent: new Map([...this.before, ...this.wanted]),
      progress: (step) => this.notice.say('busy', t(`state.${step}`),
          el('progress', {'aria-label': t('state.progress')})),
    });
    this.button.hidden = end === 'applied';
    const left = end === 'adjusted' ? [changeTable(changes(values, this.wanted))] : [];
    if (left.length || end === 'applied') this.changes.replaceChildren(...left);
    this.notice.say({applied: 'good', adjusted: 'warn'}[end] || 'bad', t(`end.${end}`));
  }

  async run() {
    const question = el('p', {}, t('import.question', {count: this.wanted.size}));
    if (!await askUser(t('import.title'), question, t('import.go'))) return;
    await this.busy(() => this.transmit());
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

async function fillVersions(place, notice) {
  const version = await query('get_VersionInfo');
  const parts = await query('get_SystemInfo');
  if (!version.result) return notice.say('bad', t('load.silent'));
  // The reply's other key repeats the application's version.
  const rows = [['version.app', version.strFD_AppVersion],
    ...kVersions.map(([key, name]) => [key, parts[name]])];
  return place.replaceWith(facts(rows.map(([key, value]) =>
    [t(key), el('dd', {}, value || t('value.none'))])));
}

openPage('maintenance', async (main) => {
  const form = new SectionForm('maintenance', language);
  const notice = new Notice();
  const place = el('div');
  main.append(el('div', {class: 'cards'}, exportCard(), form.node, new ImportCard().node,
      card('versions', t('section.versions'), place, notice.node)));
  await form.load();
  await attempt(notice, () => fillVersions(place, notice));
});
