// What the user types.
import type {Problems} from '../model/checks';
import {equal, type Field, type Values} from '../model/fields';
import {kSections, type PageId, type SectionId} from '../model/sections';
import {dropDraft, keepDraft, loadDraft} from './memory';
import {get, isPast, patchSection, sectionState, type Note, type SectionState} from './store';

const without = <T>(values: Record<string, T>, path: string): Record<string, T> => {
  const {[path]: _, ...rest} = values;
  return rest;
};

function keep(id: SectionId) {
  const {fields, base, typed} = sectionState(id);
  keepDraft(id, fields, {base, typed});
}

// Also what asks to correct or to choose, once nothing is marked any more.
function isOver(note: Note | null, problems: Problems, conflicts: Values): boolean {
  const kind = note && note.kind;
  const marked = kind === 'invalid' ? problems : kind === 'conflict' ? conflicts : null;
  return isPast(note) || (marked !== null && !Object.keys(marked).length);
}

export function type(id: SectionId, field: Field, value: string) {
  const state = sectionState(id);
  if (state.step) return;
  const {path} = field;
  const began = state.base[path];
  const back = !field.live && path in state.base && equal(field, value, began);
  const plain = field.live && value === '';
  const typed = back || plain ? without(state.typed, path) : {...state.typed, [path]: value};
  const base = path in state.typed || !(path in state.held) ? state.base
    : {...state.base, [path]: state.held[path] || ''};
  const problems = without(state.problems, path);
  const conflicts = back ? without(state.conflicts, path) : state.conflicts;
  const note = isOver(state.note, problems, conflicts) ? null : state.note;
  patchSection(id, {typed, base, problems, conflicts, note});
  keep(id);
}

// Resolves a field that somebody else has changed, too.
export function resolveConflict(id: SectionId, path: string, mine: boolean) {
  const state = sectionState(id);
  const conflicts = without(state.conflicts, path);
  patchSection(id, {
    conflicts,
    typed: mine ? state.typed : without(state.typed, path),
    base: {...state.base, [path]: state.held[path] || ''},
    note: Object.keys(conflicts).length ? state.note : null,
  });
  keep(id);
}

export function discard(id: SectionId) {
  const {held} = sectionState(id);
  patchSection(id, {typed: {}, conflicts: {}, problems: {}, base: held, note: null});
  dropDraft(id);
}

// Puts values into the form as if they had been typed.
export function propose(id: SectionId, values: Values) {
  const state = sectionState(id);
  const typed: Values = {};
  for (const field of state.fields) {
    const value = values[field.path];
    if (value !== undefined && !equal(field, value, state.held[field.path]))
      typed[field.path] = value;
  }
  patchSection(id, {typed, base: state.held, conflicts: {}, problems: {}, note: null});
  keep(id);
}

const countOf = (state: SectionState | undefined, id: SectionId) => {
  if (state && state.step && state.step.name === 'moving') return 0;  // sent
  if (state && state.fields.length) return Object.keys(state.typed).length;
  const draft = loadDraft(id);
  return draft ? Object.keys(draft.typed).length : 0;
};

// How many changes are waiting on each page, including drafts of pages that are not open.
export function waiting(): Partial<Record<PageId, number>> {
  const counts: Partial<Record<PageId, number>> = {};
  for (const {id, page} of kSections) {
    const count = countOf(get().sections[id], id);
    if (count) counts[page] = (counts[page] || 0) + count;
  }
  return counts;
}

// Whether something was typed that no draft keeps.
export const secretsWait = () => Object.values(get().sections).some((state) =>
  state && state.fields.some(({kind, path}) => kind === 'secret' && path in state.typed));
