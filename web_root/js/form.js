// The form of one section (fields.js): loads, keeps what is typed, checks; submit.js saves.
// Hooks that a page may add to a section:
//   load() {result, values}; wire(values) form variables; layout(form) nodes
//   precheck(values) {field: text}, what only the recorder can tell
//   confirm(form, values, before) false stops; transmit(form, values, before) saves, or null
//   applied(values), edited(name, form), loaded(form)
import {query} from './api.js';
import {card, el} from './dom.js';
import {t} from './i18n.js';
import {fieldControl} from './inputs.js';
import {Notice} from './notice.js';
import {dropDraft, loadDraft, saveDraft} from './store.js';
import {submit} from './submit.js';
import {check} from './validate.js';

export class SectionForm {
  constructor(page, section) {
    this.page = page;
    this.section = section;
    this.scope = section.get.slice(4);
    this.base = null;  // values as loaded, or as they were when the draft began
    this.busy = false;
    this.build();
  }

  get key() { return `${this.page}.${this.scope}`; }

  get fields() { return this.section.fields; }

  build() {
    this.notice = new Notice();
    this.body = el('fieldset', {'aria-labelledby': `${this.scope}-title`, disabled: true});
    this.saveButton = el('button', {type: 'submit', class: 'main', disabled: true}, t('save'));
    this.discardButton = el('button', {type: 'button', class: 'quiet', hidden: true,
      onclick: () => this.discard()}, t('discard'));
    const form = el('form', {novalidate: true, autocomplete: 'off',
      onsubmit: (event) => { event.preventDefault(); submit(this); }},
    this.body, this.notice.node,
    el('div', {class: 'actions'}, this.saveButton, this.discardButton));
    this.node = card(this.scope, t(`section.${this.section.title}`), form);
  }

  say(...words) { this.notice.say(...words); }

  setBusy(busy) {
    this.busy = busy;
    this.body.disabled = busy || !this.base;
    this.saveButton.disabled = this.body.disabled;
    this.refresh();
  }

  async read() {
    const reply = await (this.section.load ? this.section.load() : query(this.section.get));
    const values = {};
    for (const {name, kind} of this.fields) {
      const value = (reply.values || reply)[name];
      values[name] = kind === 'toggle' ? String(Number(Number(value) > 0)) : value;
      if (kind === 'clock') {
        this.clock = value;
        values[name] = '';
      }
    }
    return {result: reply.result, values};
  }

  async load() {
    this.say('busy', t('state.loading'));
    try {
      const {result, values} = await this.read();
      if (result) this.show(values);
      else this.offerRetry('silent');
    } catch (fault) {
      this.offerRetry(fault.kind);
    }
  }

  offerRetry(kind) {
    const again = () => this.load();
    this.say('bad', t(`load.${kind}`),
        el('button', {type: 'button', class: 'quiet', onclick: again}, t('again')));
  }

  makeControls() {
    this.controls = {};
    for (const field of this.fields)
      this.controls[field.name] = fieldControl(field, this.scope, () => this.edited(field.name));
    const blocks = () => this.fields.map((field) => this.controls[field.name].block);
    this.body.replaceChildren(...(this.section.layout ? this.section.layout(this) : blocks()));
  }

  // Shows what the recorder holds, and the draft on top of it.
  show(values) {
    this.makeControls();
    const draft = loadDraft(this.key);
    this.base = draft ? {...values, ...draft.base} : values;
    this.fill({...values, ...(draft && draft.typed)});
    this.setBusy(false);
    if (draft) this.say('info', t('state.draft'));
    else this.say();
    if (this.section.loaded) this.section.loaded(this);
  }

  fill(values) {
    for (const {name} of this.fields) {
      const control = this.controls[name];
      if (control.show) control.show(this.clock);
      control.set(values[name]);
      control.fail();
    }
    this.refresh();
  }

  values() {
    return Object.fromEntries(this.fields.map((f) => [f.name, this.controls[f.name].get()]));
  }

  // What the user changed.
  typed() {
    const now = this.values();
    return Object.fromEntries(Object.entries(now).filter(([k, v]) => v !== this.base[k]));
  }

  edited(name) {
    this.controls[name].fail();
    if (this.section.edited) this.section.edited(name, this);
    this.keepDraft();
    this.refresh();
  }

  keepDraft() {
    const typed = this.typed();
    for (const field of this.fields) if (field.transient) delete typed[field.name];
    if (Object.keys(typed).length) saveDraft(this.key, {base: this.base, typed});
    else dropDraft(this.key);
  }

  discard() {
    dropDraft(this.key);
    this.fill(this.base);
    this.say();
    this.saveButton.focus();
  }

  // Hides what does not apply and offers to discard what was typed.
  refresh() {
    if (!this.base) return;
    const values = this.values();
    for (const field of this.fields)
      if (field.when) this.controls[field.name].block.hidden = !field.when(values);
    this.discardButton.hidden = this.busy || !Object.keys(this.typed()).length;
  }

  // The fields that count when two sets of values are compared.
  counted(values) {
    return this.fields.filter((f) => !f.live && !(f.when && !f.when(values)));
  }

  differences(a, b) {
    return this.counted(a).filter((f) => a[f.name] !== b[f.name]);
  }

  // Marks what is wrong and goes to the first of it; true when nothing is.
  validate(values) {
    const errors = {};
    for (const field of this.fields) {
      const found = check(field, values[field.name], values, this.base[field.name]);
      if (found) errors[field.name] = t(found.key, found.values);
    }
    return this.mark(errors);
  }

  mark(errors) {
    for (const {name} of this.fields) this.controls[name].fail(errors[name]);
    const first = this.fields.find((field) => errors[field.name]);
    if (!first) return true;
    this.say('bad', t('state.invalid'));
    this.controls[first.name].input.focus();
    return false;
  }
}

// Puts forms on a page and loads them one after the other.
export async function fillForms(main, forms) {
  main.append(el('div', {class: 'cards'}, forms.map((form) => form.node)));
  for (const form of forms) await form.load();
}
