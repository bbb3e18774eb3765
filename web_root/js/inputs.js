// One control per kind of field: {node, input, get, set}. Values are texts as the wire has them.
import {el} from './dom.js';
import {wireLength} from './gbk.js';
import {t} from './i18n.js';

const kModes = {number: 'numeric', ipv4: 'decimal', host: 'url'};

function textControl(field, id) {
  const input = el('input', {
    id,
    type: 'text',
    inputmode: kModes[field.kind],
    autocomplete: field.autocomplete || 'off',
    autocapitalize: 'none',
    spellcheck: 'false',
  });
  return {node: input, input, get: () => input.value, set: (value) => { input.value = value; }};
}

function secretControl(field, id) {
  const control = textControl(field, id);
  const {input} = control;
  input.type = 'password';
  const reveal = el('button', {
    type: 'button',
    class: 'quiet',
    'aria-pressed': 'false',
    'aria-controls': id,
    onclick: () => {
      const shown = input.type === 'password';
      input.type = shown ? 'text' : 'password';
      reveal.setAttribute('aria-pressed', String(shown));
    },
  }, t('reveal'));
  return {...control, node: el('div', {class: 'reveals'}, input, reveal)};
}

function toggleControl(field, id) {
  const input = el('input', {id, type: 'checkbox', role: 'switch', class: 'switch'});
  return {
    node: input,
    input,
    get: () => input.checked ? '1' : '0',
    set: (value) => { input.checked = Number(value) > 0; },
  };
}

// A value that is none of the options is shown as it is.
function choiceControl(field, id) {
  const option = ([value, key]) => el('option', {value}, t(key));
  const input = el('select', {id}, field.options.map(option));
  const set = (value) => {
    if (![...input.options].some((known) => known.value === value))
      input.append(el('option', {value}, t('choice.other', {value})));
    input.value = value;
  };
  return {node: input, input, get: () => input.value, set};
}

const two = (number) => String(number).padStart(2, '0');

export function clockText(date) {
  const day = [date.getFullYear(), two(date.getMonth() + 1), two(date.getDate())].join('-');
  return `${day} ${[date.getHours(), date.getMinutes(), date.getSeconds()].map(two).join(':')}`;
}

// '' leaves the clock alone; 'now' becomes this device's time when it is sent.
function clockControl(field, id) {
  const shown = el('output', {for: id});
  const input = el('select', {id}, ['keep', 'now', 'set'].map((mode) =>
    el('option', {value: mode}, t(`clock.${mode}`))));
  const chosen = el('input', {
    type: 'datetime-local', step: '1', hidden: true, 'aria-label': t('clock.chosen'),
  });
  const refresh = () => { chosen.hidden = input.value !== 'set'; };
  input.addEventListener('change', refresh);
  const chosenText = () => {
    const text = chosen.value.replace('T', ' ');
    return text.length === 16 ? `${text}:00` : text || 'none';
  };
  return {
    node: el('div', {class: 'clocks'}, shown, input, chosen),
    input,
    get: () => ({keep: '', now: 'now', set: chosenText()})[input.value],
    set: (value) => {
      input.value = value === '' ? 'keep' : value === 'now' ? 'now' : 'set';
      if (input.value === 'set') chosen.value = value.replace(' ', 'T');
      refresh();
    },
    show: (text) => { shown.value = text; },
  };
}

const kControls = {toggle: toggleControl, choice: choiceControl, secret: secretControl,
  clock: clockControl};

function counter(field) {
  const node = el('span', {class: 'count', 'aria-hidden': 'true'});
  const update = (value) => {
    const used = wireLength(value);
    const limit = field.most || field.bytes;
    node.textContent = `${used}/${limit}`;
    node.classList.toggle('over', used > limit);
  };
  return {node, update};
}

function limitText(field) {
  if (field.kind === 'number') return t('limit.range', {min: field.min, max: field.max});
  if (!field.bytes) return '';
  const most = field.most || field.bytes;
  return t(field.least > 1 ? 'limit.between' : 'limit.bytes', {least: field.least, most});
}

// A field with label, help, limit and error; changed() is called after each edit.
export function fieldControl(field, scope, changed) {
  const id = `${scope}-${field.name}`;
  const control = (kControls[field.kind] || textControl)(field, id);
  const help = [field.help && t(field.help), limitText(field)].filter(Boolean).join(' ');
  const count = field.bytes ? counter(field) : null;
  const hint = el('p', {class: 'hint', id: `${id}-hint`}, el('span', {}, help),
      count && count.node);
  const error = el('p', {class: 'error', id: `${id}-error`, hidden: true});
  const update = () => { if (count) count.update(control.get()); };
  control.node.addEventListener('input', () => { update(); changed(); });
  control.node.addEventListener('change', changed);
  control.input.setAttribute('aria-describedby', `${id}-hint ${id}-error`);
  const label = el('label', {for: id, class: 'label'}, field.labelText || t(field.label));
  return {
    ...control,
    block: el('div', {class: `field ${field.kind}`, 'data-field': field.name}, label,
        control.node, hint, error),
    set: (value) => { control.set(value); update(); },
    fail: (text) => {
      error.textContent = text || '';
      error.hidden = !text;
      control.input.toggleAttribute('aria-invalid', Boolean(text));
      if (text) control.input.setAttribute('aria-invalid', 'true');
    },
  };
}
