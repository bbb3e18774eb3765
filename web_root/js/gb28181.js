// GB28181: settings and channel IDs. The service reads the first channel's IDs and writes all: the
// others come from the exported configuration, and without it nothing is saved.
import {Fault, query} from './api.js';
import {fetchConfig} from './config.js';
import {el} from './dom.js';
import {kSections} from './fields.js';
import {toEntities} from './gbk.js';
import {t} from './i18n.js';
import {candidates, hiddenIds, isOpen, kShift, placeName, readIds, rowCount, toLists, toPlaces}
  from './ids.js';

const kIdBytes = 31;

const state = {channels: 0, hidden: []};

function checkId(value) {
  if (isOpen(value)) return {key: 'error.choose', values: {}};
  if (value.includes('*')) return {key: 'error.char', values: {char: '*'}};
  if (value.length === 1) return {key: 'error.short', values: {used: 1, limit: 2}};
  return null;
}

function placeField(k, rows) {
  const alarm = k >= kShift;
  const label = alarm ? t('id.alarm', {channel: k - kShift + 1}) : t('id.lens', {channel: k + 1});
  const shared = alarm && k < rows ? t('id.shared', {channel: k + 1}) : '';
  return {
    name: placeName(k), kind: 'text', bytes: kIdBytes, labelText: label + shared, check: checkId,
    display: (value) => isOpen(value) ? candidates(value).join(' / ') : value || t('value.none'),
  };
}

async function load() {
  const reply = await query('get_GB28181Info');
  if (!reply.result) return reply;
  const {root} = await fetchConfig();
  const ids = root && readIds(root);
  const channels = Number(reply.iVideoChnCount);
  if (!ids || channels < 1) throw new Fault('unreadable');
  if (state.channels && state.channels !== channels) throw new Fault('unreadable');
  state.channels = channels;
  state.hidden = hiddenIds(ids, state.channels);
  const places = toPlaces(ids, state.channels);
  const rows = rowCount(channels);
  const used = places.map((_, k) => k).filter((k) => k < rows || k >= kShift);
  gb28181.fields = [...kSections.gb28181.fields, ...used.map((k) => placeField(k, rows))];
  for (const k of used) reply[placeName(k)] = places[k];
  return reply;
}

function wire(values) {
  const variables = {};
  for (const {name} of kSections.gb28181.fields) variables[name] = toEntities(values[name]);
  const places = Array.from({length: rowCount(state.channels) + kShift},
      (_, k) => toEntities(values[placeName(k)] || ''));
  return {...variables, ...toLists(places, state.channels)};
}

// A place's control that keeps two different IDs open until one is chosen or typed.
function openable(control) {
  const {get, set, input} = control;
  let open = null;
  const choice = el('p', {class: 'open', hidden: true});
  input.after(choice);
  const close = () => { open = null; choice.hidden = true; };
  input.addEventListener('input', close);
  control.get = () => open === null ? get() : open;
  control.set = (value) => {
    close();
    set(isOpen(value) ? '' : value);
    if (!isOpen(value)) return;
    open = value;
    const [lens, alarm] = candidates(value).map((id) => id || t('value.none'));
    choice.textContent = t('id.open', {lens, alarm});
    choice.hidden = false;
  };
}

// The lens ID of a later channel is the same place as an alarm-input ID: typed there, shown here.
function twin(form, k) {
  const {input, set} = form.controls[placeName(k)];
  const id = `twin${k}`;
  const shown = el('output', {id, for: input.id});
  const mirror = () => { shown.value = input.value || t('value.none'); };
  form.controls[placeName(k)].set = (value) => { set(value); mirror(); };
  input.addEventListener('input', mirror);
  const label = el('label', {for: id, class: 'label'}, t('id.lens', {channel: k + 1}));
  return el('div', {}, label, shown,
      el('p', {class: 'hint'}, t('id.twin', {channel: k - kShift + 1})));
}

function chooser(form) {
  const pick = (index) => () => {
    for (const {name} of form.fields) {
      const control = form.controls[name];
      if (name.startsWith('place') && isOpen(control.get())) {
        control.set(candidates(control.get())[index]);
        form.edited(name);
      }
    }
    form.openNote.hidden = true;
  };
  const button = (index, key) =>
    el('button', {type: 'button', onclick: pick(index)}, t(key));
  return el('div', {class: 'notice', hidden: true}, el('p', {}, t('id.conflict')),
      el('div', {class: 'actions'}, button(0, 'id.keepLens'), button(1, 'id.keepAlarm')));
}

function hiddenNote() {
  if (!state.hidden.length) return null;
  const row = ({k, lens, alarm}) => el('li', {}, t('id.hiddenRow', {channel: k + 1,
    lens: lens || t('value.none'), alarm: alarm || t('value.none')}));
  return el('div', {class: 'notice'}, el('p', {}, t('id.hidden')),
      el('ul', {}, state.hidden.map(row)));
}

function layout(form) {
  const rows = rowCount(state.channels);
  const block = (k) => form.controls[placeName(k)].block;
  for (const {name} of form.fields) if (name.startsWith('place')) openable(form.controls[name]);
  form.openNote = chooser(form);
  const twinOrBlock = (k) => k < kShift ? block(k) : twin(form, k);
  const row = (k) => el('tr', {}, el('th', {scope: 'row'}, String(k + 1)),
      el('td', {}, twinOrBlock(k)), el('td', {}, block(k + kShift)));
  const head = ['id.channel', 'id.lensHead', 'id.alarmHead'].map((key) =>
    el('th', {scope: 'col'}, t(key)));
  return [
    ...kSections.gb28181.fields.map((field) => form.controls[field.name].block),
    el('div', {class: 'ids'}, el('h3', {}, t('id.title')), el('p', {class: 'hint'}, t('id.help')),
        form.openNote, hiddenNote(),
        el('table', {}, el('thead', {}, el('tr', {}, head)),
            el('tbody', {}, Array.from({length: rows}, (_, k) => row(k))))),
  ];
}

const showOpen = (form) => {
  form.openNote.hidden = !form.fields.some(({name}) => isOpen(form.values()[name]));
};

export const gb28181 = {
  ...kSections.gb28181, load, wire, layout, loaded: showOpen, edited: (_, form) => showOpen(form),
};
