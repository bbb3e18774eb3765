// The only state of the pages. Views are functions of it; only the modules of this folder change
// it.
import type {Change, Field, Values} from '../model/fields';
import type {Problem, Problems} from '../model/checks';
import type {Entry} from '../model/history';
import type {SaveEnd} from '../model/save';
import type {PageId, SectionId} from '../model/sections';
import type {Labels, LabelsError} from '../model/labels';
import type {ImportRow, Line} from '../model/import';
import type {Run} from '../model/runs';
import type {FileError, Settings} from '../recorder/config';
import type {FaultKind} from '../recorder/fault';
import type {Lock} from '../recorder/lock';
import type {Language, WordKey} from '../words';

// Follows from what happens here alone.
export type Health =
    | {state: 'answers'}
    | {state: 'deviceSilent' | 'serviceSilent'; since: number; retryAt: number}
    | {state: 'restarting'; since: number};

// Scripts that come when a page needs them, and how far they are.
export type ScriptName = 'settings' | 'qr';
export type ScriptState = 'coming' | 'there' | 'failed';

export type Theme = 'auto' | 'light' | 'dark';

export type Loading = {state: 'waiting'} | {state: 'loaded'} | {state: 'failed'; why: FaultKind};

export type Step = 'session' | 'compare' | 'sending' | 'restarting' | 'reading' | 'moving';

// What is known about a save's values: read back, nothing, or that they were never sent.
export type Known = 'read' | 'unknown' | 'unsent';

// The status below a form.
export type Note =
    | {kind: 'end'; end: SaveEnd; rows: Change[]; known: Known}
    | {kind: 'elsewhere' | 'conflict'; rows: Change[]}
    | {kind: 'draft' | 'invalid' | 'arrived' | 'kept' | 'unsent'}
    | {kind: 'movedSilent'; where: string};

// What a save came to, until something new begins.
export const isPast = (note: Note | null) =>
  note !== null && ['end', 'arrived', 'kept', 'unsent'].includes(note.kind);

export interface SectionState {
  fields: Field[];
  held: Values;  // what the recorder holds, as last read
  base: Values;  // what it held when the user began to type
  typed: Values;
  conflicts: Values;  // what it holds instead where the user has typed, too
  problems: Problems;
  loading: Loading;
  step: {name: Step; since: number; where?: string} | null;  // a save is in progress
  note: Note | null;
  former: Values | null;  // what an accepted save replaced
}

export type Dialog =
    | {kind: 'review'; section: SectionId; rows: Change[]; move: string | null}
    | {kind: 'leave'; pages: PageId[]}
    | {kind: 'import'; count: number; move: string | null};

export interface LockState {
  lock: Lock | null;
  at: number;  // when it was read
  loading: Loading;
  busy: boolean;
  end: {end: SaveEnd; known: Known} | null;
}

// Which page a file was chosen on.
export type Purpose = 'file' | 'template';

// `password`: the one of the sign-in could never be entered.
export type TransferError = FileError | {error: 'read'; why: FaultKind}
    | {error: 'password'; problem: Problem};

export interface Transfer {
  exporting: boolean;
  exported: {name: string} | {why: FaultKind} | null;
  name: string | null;  // of the file that was chosen
  error: TransferError | null;
  rows: ImportRow[];
  changed: string[];  // paths of rows that were changed elsewhere while the user looked at them
  foreign: string | null;  // the file's device number, when it is another recorder's
  purpose: Purpose;
  file: Settings | null;  // all that it holds
  lines: Line[];  // what the recorder took of it
  step: SectionState['step'];
  end: {end: SaveEnd; rows: ImportRow[]; known: Known} | null;
  moving: {where: string; silent: boolean} | null;
  former: Settings | null;
}

// The template in the making, and what was applied where.
export interface Fleet {
  chosen: ReadonlySet<string>;  // paths
  name: string;
  saved: {name: string} | {used: number} | null;  // the file, or its bytes when it is too long
  runs: readonly Run[];
  unkept: number;  // of them, that are lost when the page is left
}

// A save that came to its end, whatever it was.
export interface Ended { at: number; title: WordKey; end: SaveEnd; known: Known }

export interface State {
  language: Language;
  theme: Theme;
  page: PageId;
  health: Health;
  sections: Partial<Record<SectionId, SectionState>>;
  status: {at: number; values: Values} | null;
  history: readonly Entry[];  // of the status, by the clock that only goes on
  ends: readonly Ended[];  // of saves, the latest last
  dialog: Dialog | null;
  lock: LockState;
  transfer: Transfer;
  labels: {names: Labels; error: LabelsError | null};  // of code numbers
  fleet: Fleet;
  scripts: Partial<Record<ScriptName, ScriptState>>;
  expired: boolean;  // the session has ended; the sign-in follows
}

const kStart: State = {
  language: 'en', theme: 'auto', page: 'status', health: {state: 'answers'},
  sections: {}, status: null, history: [], ends: [], dialog: null, expired: false,
  lock: {lock: null, at: 0, loading: {state: 'waiting'}, busy: false, end: null},
  transfer: {exporting: false, exported: null, name: null, error: null, rows: [],
    changed: [], foreign: null, purpose: 'file', file: null, lines: [], step: null, end: null, moving: null, former: null},
  labels: {names: new Map(), error: null},
  fleet: {chosen: new Set(), name: '', saved: null, runs: [], unkept: 0}, scripts: {},
};

let state = kStart;
const listeners = new Set<() => void>();

export const get = () => state;

// What is shown is not known to hold any more.
export const isSilent = ({health} = state) =>
  health.state === 'deviceSilent' || health.state === 'serviceSilent';

export function set(patch: Partial<State>) {
  state = {...state, ...patch};
  for (const listener of listeners) listener();
}

export function subscribe(listener: () => void): () => void {
  listeners.add(listener);
  return () => { listeners.delete(listener); };
}

// The initial state, for tests.
export function resetStore() {
  state = kStart;
  listeners.clear();
}

export const kEmptySection: SectionState = {
  fields: [], held: {}, base: {}, typed: {}, conflicts: {}, problems: {},
  loading: {state: 'waiting'}, step: null, note: null, former: null,
};

export const sectionState = (id: SectionId): SectionState => state.sections[id] || kEmptySection;

export function patchSection(id: SectionId, patch: Partial<SectionState>) {
  set({sections: {...state.sections, [id]: {...sectionState(id), ...patch}}});
}

// The values as a form shows them.
export const shownValues = ({held, typed}: SectionState): Values => ({...held, ...typed});
