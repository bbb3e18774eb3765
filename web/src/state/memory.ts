// The browser's storage: language, theme, drafts. Without it only convenience is lost. Secrets are
// never stored.
import type {Field, Values} from '../model/fields';
import type {SectionId} from '../model/sections';

function attempt<T>(work: () => T, otherwise: T): T {
  try {
    return work();
  } catch {
    return otherwise;
  }
}

// Whether it is kept.
export const remember = (key: string, value: string) => attempt(() => {
  localStorage.setItem(key, value);
  return true;
}, false);
export const recall = (key: string) => attempt(() => localStorage.getItem(key), null);

// `sent`: the values were being sent when the page was left.
export interface Draft { base: Values; typed: Values; sent?: boolean }

const kDraft = 'draft.';

function open(values: Values, fields: Field[]): Values {
  const left: Values = {};
  for (const {path, kind} of fields) {
    const value = values[path];
    if (kind !== 'secret' && value !== undefined) left[path] = value;
  }
  return left;
}

// Keeps what was typed, without secrets; removes the draft when nothing is left.
export function keepDraft(id: SectionId, fields: Field[], draft: Draft) {
  const typed = open(draft.typed, fields);
  if (!Object.keys(typed).length) return dropDraft(id);
  const base: Values = {};
  for (const path of Object.keys(typed)) {
    const began = draft.base[path];
    if (began !== undefined) base[path] = began;
  }
  const kept: Draft = {base, typed, sent: draft.sent};
  attempt(() => sessionStorage.setItem(kDraft + id, JSON.stringify(kept)), undefined);
}

export const dropDraft = (id: SectionId) =>
  attempt(() => sessionStorage.removeItem(kDraft + id), undefined);

const isTexts = (value: unknown): value is Values =>
  typeof value === 'object' && value !== null &&
  Object.values(value).every((text) => typeof text === 'string');

function openDraft(text: string | null): Draft | null {
  const draft: unknown = text && attempt(() => JSON.parse(text), null);
  const {base, typed, sent} = (draft || {}) as Partial<Draft>;
  return isTexts(base) && isTexts(typed) ? {base, typed, sent: sent === true} : null;
}

// The menu counts drafts each time it is drawn: what is the same text is opened once.
const opened: Partial<Record<SectionId, {text: string | null; draft: Draft | null}>> = {};

export function loadDraft(id: SectionId): Draft | null {
  const text = attempt(() => sessionStorage.getItem(kDraft + id), null);
  const known = opened[id];
  if (known && known.text === text) return known.draft;
  const draft = openDraft(text);
  opened[id] = {text, draft};
  return draft;
}

const drafts = () => attempt(() => Object.keys(sessionStorage), [])
    .filter((key) => key.startsWith(kDraft));

export const draftsWait = () => drafts().length > 0;

export function dropAllDrafts() {
  for (const key of drafts()) sessionStorage.removeItem(key);
}
