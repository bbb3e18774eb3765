// Saves a form: checks session and changes made elsewhere, sends, reads back, says how it ended.
// Whatever happens, what was typed stays.
import {renewSession, send} from './api.js';
import {el} from './dom.js';
import {toEntities} from './gbk.js';
import {t} from './i18n.js';
import {clockText} from './inputs.js';
import {save} from './save.js';
import {goToLogin} from './shell.js';
import {dropDraft} from './store.js';

const kSlowMs = 900;  // an accepted set takes longer than that, and a silent recorder too
const kTones = {applied: 'good', adjusted: 'warn'};

// A value as the user knows it.
function display(field, value) {
  if (field.kind === 'secret') return value ? '••••••' : t('value.none');
  if (field.kind === 'toggle') return t(value === '1' ? 'on' : 'off');
  const option = (field.options || []).find(([known]) => known === value);
  if (option) return t(option[1]);
  return field.display ? field.display(value) : value || t('value.none');
}

function changeList(rows) {
  return el('ul', {class: 'changes'}, rows.map(({field, from, to}) =>
    el('li', {}, el('strong', {}, field.labelText || t(field.label)), ' ',
        el('span', {}, display(field, from)), ' → ', el('span', {}, display(field, to)))));
}

// Takes over what changed on the recorder where the user typed nothing, and shows it all.
function mergeElsewhere(form, fresh) {
  const changed = form.differences(fresh, form.base);
  if (!changed.length) return false;
  const typed = form.typed();
  const rows = changed.map((field) =>
    ({field, from: form.base[field.name], to: fresh[field.name]}));
  for (const {name} of changed) if (!(name in typed)) form.controls[name].set(fresh[name]);
  form.base = fresh;
  form.keepDraft();
  form.say('warn', t('state.elsewhere'), changeList(rows), el('p', {}, t('state.elsewhere.next')));
  return true;
}

function formVariables(form, values) {
  if (form.section.wire) return form.section.wire(values);
  const variables = {};
  for (const {name, kind} of form.fields) {
    let value = values[name];
    if (kind === 'clock' && value === '') value = form.clock;
    else if (kind === 'clock' && value === 'now') value = clockText(new Date());
    variables[name] = toEntities(value);
  }
  return variables;
}

function showStep(form, step) {
  form.say('busy', t(`state.${step}`));
  if (step !== 'sending') return;
  const slow = () => {
    if (form.busy && form.step === 'sending')
      form.say('busy', t('state.restarting'), el('progress', {'aria-label': t('state.progress')}));
  };
  setTimeout(slow, kSlowMs);
}

// Sends and reads back; `load` reads what the recorder holds.
export function transmit(form, values, before, load = () => form.read()) {
  const progress = (step) => { form.step = step; showStep(form, step); };
  return save({
    load,
    send: () => send(form.section.set, formVariables(form, values)),
    same: (a, b) => !form.differences(a, b).length,
    before, sent: values, progress,
  });
}

function settle(form, sent, {end, values}) {
  const rows = end === 'adjusted' ? form.differences(sent, values).map((field) =>
    ({field, from: sent[field.name], to: values[field.name]})) : [];
  if (end === 'moved') return dropDraft(form.key);  // said where it went
  if (values) form.base = values;
  if (end === 'applied') {
    dropDraft(form.key);
    form.fill(values);
  } else {
    form.keepDraft();
  }
  form.say(kTones[end] || 'bad', t(`end.${end}`), rows.length ? changeList(rows) : null);
  if (end === 'applied' && form.section.applied) form.section.applied(values);
  return null;
}

async function run(form, values) {
  form.say('busy', t('state.checking'));
  await renewSession();
  const fresh = await form.read();
  if (!fresh.result) return settle(form, values, {end: 'silent', values: null});
  const live = form.fields.some(({name, live}) => live && values[name]);
  if (!live && !form.differences(values, fresh.values).length)
    return settle(form, values, {end: 'applied', values: fresh.values});  // arrived already
  if (mergeElsewhere(form, fresh.values)) return null;
  const {precheck, confirm} = form.section;
  if (precheck) {
    const errors = await precheck(values);
    form.setBusy(false);
    if (!form.mark(errors)) return null;
    form.setBusy(true);
  }
  if (confirm && !await confirm(form, values, fresh.values)) return form.say();
  const special = form.section.transmit && form.section.transmit(form, values, fresh.values);
  return settle(form, values, await (special || transmit(form, values, fresh.values)));
}

export async function submit(form) {
  if (form.busy || !form.base) return;
  const values = form.values();
  if (!Object.keys(form.typed()).length) return form.say('info', t('state.unchanged'));
  if (!form.validate(values)) return;
  form.setBusy(true);
  try {
    await run(form, values);
  } catch (fault) {
    if (fault.kind === 'refused') return goToLogin(form.page);
    if (!fault.kind) throw fault;
    settle(form, values, {end: fault.kind, values: null});
  } finally {
    form.step = null;
    form.setBusy(false);
  }
}
