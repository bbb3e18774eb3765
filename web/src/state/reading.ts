// Reads the sections of a page. Sections that need the whole configuration share one read.
import {applies, type Read, type Values} from '../model/fields';
import {merge} from '../model/merge';
import {readOn, valuesOf, type PageId, type Section} from '../model/sections';
import {fetchConfig, type Settings} from '../recorder/config';
import {Fault, kindOf} from '../recorder/fault';
import {query, queue, type Turn} from '../recorder/wire';
import {kSilenceMs} from './health';
import {dropDraft, keepDraft, loadDraft} from './memory';
import {get, patchSection, sectionState, type Note, type SectionState} from './store';

type Whole = () => Promise<Settings | null>;

// Do not wait 5 s for an answer that will not come.
function requireHealth() {
  const {state} = get().health;
  if (state === 'deviceSilent' || state === 'serviceSilent') throw new Fault(state);
}

export interface Fresh { fields: SectionState['fields']; values: Values }

// A configuration that is too long for the service gets no answer; it is requested again only when
// something has changed, or somebody wants it.
let tooLong = false;
export const tryWhole = () => { tooLong = false; };

async function wholeConfig(turn: Turn): Promise<Settings | null> {
  if (tooLong) return null;
  try {
    return (await fetchConfig(turn)).settings;
  } catch (caught) {
    if (kindOf(caught) !== 'unreadable') throw caught;
    tooLong = true;
    return null;
  }
}

// What the recorder holds in a section, or a Fault.
export async function readSection(section: Section, turn: Turn = {},
    whole: Whole = () => wholeConfig(turn)): Promise<Fresh> {
  const settings = section.whole ? await whole() : null;
  const read: Read = {reply: {}, settings};
  if (section.get && !settings) {
    if (section.whole) requireHealth();
    const {result, values, ms} = await query(section.get, turn);
    if (!result) throw new Fault(ms < kSilenceMs ? 'unreadable' : 'deviceSilent');
    read.reply = values;
  }
  if (section.whole && !section.get && !settings) {
    requireHealth();
    throw new Fault('unreadable');
  }
  const fields = section.fields(read);
  return {fields, values: valuesOf(section, read, fields)};
}

const count = (values: Values) => Object.keys(values).length;

// A save that ended in silence is told anew by a read that came later.
function retold({note, typed: before}: SectionState, typed: Values): Note | null {
  if (!note || note.kind !== 'end') return note;
  if (note.known === 'unsent') return {kind: 'unsent'};
  if (note.known === 'read' || !count(before)) return note;
  if (!count(typed)) return {kind: 'arrived'};
  return count(typed) === count(before) ? {kind: 'kept'} : note;
}

function noteOf(section: SectionState, typed: Values, sent: boolean | undefined,
    conflicts: Values, first: boolean): Note | null {
  if (count(conflicts)) return {kind: 'conflict', rows: []};
  if (!first) return retold(section, typed);
  if (count(typed)) return {kind: 'draft'};
  return sent ? {kind: 'arrived'} : null;
}

// Applies a read, with what the user typed on top of it.
export function take(section: Section, {fields, values}: Fresh) {
  const state = sectionState(section.id);
  const first = !state.fields.length;
  const draft = first ? loadDraft(section.id) : null;
  const {typed} = draft || state;
  const began = draft ? draft.base : state.base;
  const merged = merge(fields, count(typed) ? began : values, values, typed);
  const base = {...values, ...pick(began, merged.typed)};
  patchSection(section.id, {
    fields, held: values, base, typed: merged.typed, conflicts: merged.conflicts,
    loading: {state: 'loaded'},
    note: noteOf(state, merged.typed, draft ? draft.sent : false, merged.conflicts, first),
  });
  if (draft) keepDraft(section.id, fields, {base, typed: merged.typed});
  else if (!count(merged.typed)) dropDraft(section.id);
}

function pick(from: Values, paths: Values): Values {
  const picked: Values = {};
  for (const path of Object.keys(paths)) {
    const value = from[path];
    if (value !== undefined) picked[path] = value;
  }
  return picked;
}

async function load(section: Section, whole: Whole) {
  const {id, get: asked, whole: exported} = section;
  const {step, fields} = sectionState(id);
  if (step || (fields.length && !asked && !exported)) return;
  try {
    requireHealth();
    const fresh = await readSection(section, {group: 'page'}, whole);
    if (!sectionState(id).step) take(section, fresh);
  } catch (caught) {
    const why = kindOf(caught);
    if (why === 'dropped' && get().health.state === 'answers') return;
    patchSection(id, {loading: {state: 'failed', why: why === 'dropped' ? 'deviceSilent' : why}});
  }
}

let visit = 0;

// Gives up what a page that is left still wants.
export function dropReads() {
  visit++;
  for (const group of ['page', 'poll']) queue.drop(group);
}

// Reads what a page shows, in the order in which it shows it.
export async function loadPage(page: PageId) {
  const own = ++visit;
  const sections = readOn(page);
  let config: Promise<Settings | null> | null = null;
  const whole = () => config || (config = wholeConfig({group: 'page'}));
  for (const section of sections) {
    const {loading} = sectionState(section.id);
    if (loading.state === 'failed') patchSection(section.id, {loading: {state: 'waiting'}});
  }
  for (const section of sections) if (own === visit) await load(section, whole);
}

// The fields that count now.
export const shownFields = (state: SectionState, values: Values) =>
  state.fields.filter((field) => applies(field, values));
