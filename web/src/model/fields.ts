// A setting as data: where the recorder keeps it, which values it allows, what it is called.
import type {Settings} from '../recorder/config';
import type {WordKey} from '../words';

// Texts by path, as the recorder has them. A missing path is unknown.
export type Values = Record<string, string>;

// What was read for a section: the endpoint's values, the whole configuration where it needs it.
export interface Read { reply: Values; settings: Settings | null }

// A word of the pages, or one that is made from the setting's name.
export type Label = WordKey | (() => string);

export interface Field {
  path: string;  // in the configuration, and its name everywhere in the pages
  wire?: string;  // its variable in the section's own endpoints
  kind: 'text' | 'secret' | 'number' | 'switch' | 'choice' | 'address' | 'mask' | 'host' | 'mac'
    | 'clock' | 'decimal' | 'time' | 'hex';
  label: Label;
  group?: () => string;  // what a label that is made belongs to
  labelValues?: Record<string, string | number>;
  help?: WordKey;
  bytes?: number;  // capacity of the recorder's record
  least?: number;  // bytes
  most?: number;  // bytes, where fewer than the record's are allowed
  min?: number;
  max?: number;
  options?: readonly (readonly [string, WordKey])[];
  when?: (values: Values) => boolean;  // shown, checked, compared and sent only then
  live?: boolean;  // changes by itself, so it is never compared
  inside?: readonly [string, string];  // paths of the address and mask of its network
  needed?: boolean;  // must be known before it is sent
  fixed?: boolean;  // told by the recorder, or changed elsewhere
  apart?: boolean;  // belongs to this recorder: nothing for another one
  entities?: boolean;  // the value is sent with entities, which must fit, too
}

type More = Partial<Field>;
type Make = (path: string, label: WordKey, more?: More) => Field;

export const text = (path: string, label: WordKey, bytes: number, more: More = {}): Field =>
  ({path, kind: 'text', label, bytes, ...more});
export const secret = (path: string, label: WordKey, bytes: number, more: More = {}): Field =>
  ({path, kind: 'secret', label, bytes, ...more});
const number = (min: number, max: number, help?: WordKey): Make => (path, label, more) =>
  ({path, kind: 'number', label, min, max, ...(help ? {help} : {}), ...more});
export const code = number(0, 255, 'help.code');
export const port = number(1, 65535);
export const frameRate = number(1, 60, 'help.frameRate');
export const bitRate = number(16, 32768, 'help.bitRate');
export const onOff: Make = (path, label, more) => ({path, kind: 'switch', label, ...more});
export const address: Make = (path, label, more) => ({path, kind: 'address', label, ...more});
export const netmask: Make = (path, label, more) => ({path, kind: 'mask', label, ...more});

const kTrimmed = new Set(['number', 'address', 'mask', 'host', 'mac', 'decimal', 'time', 'hex']);

// The value meant by what was typed.
export const meant = (field: Field, value: string) =>
  kTrimmed.has(field.kind) ? value.trim() : value;

export const isOn = (value: string | undefined) => Number(value) > 0;

// Whether two values are the same setting: any switch value above 0 is on.
export function equal(field: Field, a: string | undefined, b: string | undefined): boolean {
  if (a === undefined || b === undefined) return a === b;
  if (field.kind === 'switch') return isOn(a) === isOn(b);
  if (field.kind === 'number' && /^\d+$/.test(a) && /^\d+$/.test(b)) return Number(a) === Number(b);
  return a === b;
}

export const applies = (field: Field, values: Values) => !field.when || field.when(values);

export interface Change { field: Field; from: string | undefined; to: string }

// The differences, among the fields that apply to the wanted values and do not change by
// themselves.
export function changesOf(fields: Field[], from: Values, to: Values): Change[] {
  const changes: Change[] = [];
  for (const field of fields) {
    const wanted = to[field.path];
    if (field.live || wanted === undefined || !applies(field, to)) continue;
    if (!equal(field, from[field.path], wanted))
      changes.push({field, from: from[field.path], to: wanted});
  }
  return changes;
}
