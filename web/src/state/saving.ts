// Saves a section: check, review, comparison with the recorder, sending, reading back, result.
import {clockText} from '../model/clock';
import {checkAll} from '../model/checks';
import {changesOf, meant, type Change, type Values} from '../model/fields';
import {merge} from '../model/merge';
import {messageFor} from '../model/message';
import {save, type Answer, type SaveEnd} from '../model/save';
import {sectionById, type Section, type SectionId} from '../model/sections';
import {printMessage} from '../recorder/config';
import {kindOf, type FaultKind} from '../recorder/fault';
import {send, sendConfig} from '../recorder/wire';
import {askUser} from './dialog';
import {propose} from './editing';
import {throughRestart} from './health';
import {dropDraft, keepDraft} from './memory';
import {followTo, kLocalIp, newOrigin, sendMove} from './move';
import {followRecorder} from './preferences';
import {readSection, shownFields, take} from './reading';
import {expire, renew} from './session';
import {patchSection, sectionState, shownValues, type Note, type SectionState, type Step}
  from './store';

const kUnchanged: Note = {kind: 'end', end: 'unchanged', rows: [], known: 'read'};
const kMoved: Note = {kind: 'end', end: 'moved', rows: [], known: 'unknown'};
const kNearMs = 60000;
const kTurn = {group: 'send', urgent: true};

const step = (id: SectionId, name: Step | null, where?: string) =>
  patchSection(id, {step: name && {name, since: Date.now(), where}});
const say = (id: SectionId, note: Note) => patchSection(id, {note});

// What a save would change, the clock included.
export function rowsOf({fields, held, typed}: SectionState): Change[] {
  const wanted = {...held, ...typed};
  const clock = fields.filter(({live, path}) => live && typed[path])
      .map((field) => ({field, from: held[field.path], to: typed[field.path] || ''}));
  return [...changesOf(fields, held, wanted), ...clock];
}

const momentOf = (text = '') => Date.parse(text.replace(' ', 'T'));

// What holds otherwise than it was sent. A clock goes on meanwhile.
function missed({fields, typed}: SectionState, from: Values, to: Values): Change[] {
  const near = (path: string) => Math.abs(momentOf(from[path]) - momentOf(to[path])) < kNearMs;
  const clocks = fields.filter(({live, path}) => live && typed[path] && !near(path))
      .map((field) => ({field, from: from[field.path], to: to[field.path] || ''}));
  return [...changesOf(fields, from, to), ...clocks];
}

function meantValues(state: SectionState): Values {
  const values = shownValues(state);
  for (const field of state.fields) {
    const value = state.typed[field.path];
    if (value !== undefined) values[field.path] = meant(field, value);
  }
  return values;
}

// Sends the changes in the way that loses nothing.
function transmit(section: Section, state: SectionState, values: Values): Promise<Answer> {
  const message = messageFor(section, state.fields, Object.keys(state.typed), values,
      () => clockText(new Date()));
  return throughRestart(() => 'endpoint' in message ? send(message.endpoint, message.form)
    : sendConfig(printMessage(message.config)));
}

function settle(section: Section, before: SectionState, sent: Values, end: SaveEnd,
    after: Values | null) {
  const {id} = section;
  const {fields} = before;
  const rows = end === 'partly' && after ? missed(before, after, sent)
      .map(({field, from, to}) => ({field, from: to, to: from || ''})) : [];
  const taken = end === 'applied' || end === 'partly';
  const former: Values = {};
  for (const {field, from} of rowsOf(before))
    if (!field.live && from !== undefined) former[field.path] = from;
  if (after) take(section, {fields, values: after});
  patchSection(id, {
    note: {kind: 'end', end, rows, known: after ? 'read' : 'unknown'},
    ...(taken && Object.keys(former).length ? {former} : {}),
    ...(after ? {base: after, conflicts: {}} : {}),
    ...(end === 'applied' ? {typed: {}} : {}),
  });
  const {base, typed} = sectionState(id);
  if (id === 'language' && end === 'applied') followRecorder(sent['stDisplay/strLanguage'] || '');
  if (end === 'applied') dropDraft(id);
  else keepDraft(id, fields, {base, typed});
}

async function sendAndRead(section: Section, values: Values) {
  const {id} = section;
  const before = sectionState(id);
  keepDraft(id, before.fields, {base: before.base, typed: before.typed, sent: true});
  const sent = {...values};
  for (const {path, kind} of before.fields)
    if (kind === 'clock' && values[path] === 'now') sent[path] = clockText(new Date());
  const {end, after} = await save<Values>({
    load: async () => (await readSection(section, kTurn)).values,
    send: () => transmit(section, before, values),
    same: (a, b) => !missed(before, a, b).length, before: before.held, sent,
    progress: (name) => step(id, name),
  });
  settle(section, before, sent, end, after);
}

async function moveAway(section: Section, values: Values, origin: string) {
  const {id} = section;
  const before = sectionState(id);
  step(id, 'sending');
  const still = async () => (await readSection(section, kTurn)).values;
  const moved = await sendMove(() => transmit(section, before, values), still,
      before.held[kLocalIp] || '');
  if (moved !== 'waiting') {
    const read = moved === 'deviceSilent' ? null : before.held;
    return settle(section, before, values, moved, read);
  }
  step(id, 'moving', origin);
  dropDraft(id);
  if (!await followTo(origin)) return say(id, {kind: 'movedSilent', where: origin});
  return patchSection(id, {held: values, base: values, typed: {}, note: kMoved});
}

// Compares the recorder's current values: true when they are what the user has seen.
async function compare(section: Section): Promise<boolean> {
  const {id} = section;
  const seen = sectionState(id);
  const fresh = await readSection(section, kTurn);
  const {conflicts, elsewhere, typed} = merge(seen.fields, seen.base, fresh.values, seen.typed);
  take(section, fresh);
  if (Object.keys(conflicts).length) say(id, {kind: 'conflict', rows: []});
  else if (elsewhere.length) say(id, {kind: 'elsewhere', rows: elsewhere});
  else if (!Object.keys(typed).length) say(id, kUnchanged);
  else return true;
  return false;
}

async function run(section: Section) {
  const {id} = section;
  step(id, 'session');
  await renew();
  step(id, 'compare');
  if (!await compare(section)) return;
  const state = sectionState(id);
  const values = meantValues(state);
  const origin = newOrigin(state.held[kLocalIp], values[kLocalIp]);
  if (origin) await moveAway(section, values, origin);
  else await sendAndRead(section, values);
}

export const endOf = (kind: FaultKind): SaveEnd =>
  kind === 'deviceSilent' || kind === 'serviceSilent' ? kind : 'lost';

// True when there is something valid to send; otherwise reports why not.
function prepare(id: SectionId): boolean {
  const state = sectionState(id);
  if (Object.keys(state.conflicts).length) return false;
  if (!rowsOf(state).length) {
    say(id, kUnchanged);
    return false;
  }
  const values = meantValues(state);
  const problems = checkAll(shownFields(state, values), values, state.held);
  patchSection(id, {problems});
  if (!Object.keys(problems).length) return true;
  say(id, {kind: 'invalid'});
  return false;
}

// Asks, then saves. What was typed stays in any case.
export async function saveSection(id: SectionId) {
  const state = sectionState(id);
  if (state.step || !state.fields.length || !prepare(id)) return;
  const move = newOrigin(state.held[kLocalIp], meantValues(state)[kLocalIp]);
  if (!await askUser({kind: 'review', section: id, rows: rowsOf(state), move})) return;
  try {
    await run(sectionById(id));
  } catch (caught) {
    const kind = kindOf(caught);
    if (kind === 'refused') return expire();
    say(id, {kind: 'end', end: endOf(kind), rows: [], known: 'unsent'});
  } finally {
    step(id, null);
  }
}

// Puts the former values into the form, to be reviewed and sent like any others.
export async function restoreFormer(id: SectionId) {
  const {former, step: busy} = sectionState(id);
  if (!former || busy) return;
  propose(id, former);
  await saveSection(id);
}
