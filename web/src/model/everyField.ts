// A field for each setting of a configuration: as the forms know it, else from the recorder's own
// tables, else from its name and value.
import type {Settings} from '../recorder/config';
import {isSecret} from '../recorder/config';
import type {Field} from './fields';
import {isAddress} from './checks';
import {kSignInPassword} from './import';
import {attributeOf, identifies, isLive, isStatus, type Attribute} from './schema';
import {kSections} from './sections';

type Kind = Pick<Field, 'kind' | 'min' | 'max' | 'bytes' | 'least' | 'most' | 'options' | 'inside'
    | 'help' | 'live'>;
export type Name = Pick<Field, 'label' | 'group'>;

// Numbers by the letters that their names begin with.
const kMost: Record<string, number> = {uc: 0xff, us: 0xffff, ui: 0xffffffff};
const kNumber = /^(u[csi])[A-Z]/;

// What the forms know of a setting, by its path.
function formFields(settings: Settings): Map<string, Field> {
  const known = new Map<string, Field>();
  for (const {id, page, fields} of kSections) {
    if (page === 'settings' || id === 'password') continue;
    for (const field of fields({reply: {}, settings})) known.set(field.path, field);
  }
  return known;
}

// A switch that holds more than on and off is shown as the number that it is.
function ofNumber({min, max, onOff}: Attribute, value: string): Kind {
  return onOff && (value === '0' || value === '1') ? {kind: 'switch'} : {kind: 'number', min, max};
}

function ofAttribute(attribute: Attribute, value: string): Kind {
  const {kind, secret, width, least, most} = attribute;
  if (kind === 'number') return ofNumber(attribute, value);
  if (kind === 'text') return {kind: secret ? 'secret' : 'text', bytes: width, least, most};
  return {kind, bytes: width};
}

// Settings that the recorder's tables lack.
function guess(path: string, value: string): Kind {
  if (isSecret(path)) return {kind: 'secret'};
  const name = path.split('/').pop() || '';
  const [, letters = ''] = kNumber.exec(name.replace('FD_', '')) || [];
  if (letters === 'ui' && isAddress(value)) return {kind: 'address'};
  if (letters && /^\d+$/.test(value)) return {kind: 'number', min: 0, max: kMost[letters]};
  return {kind: 'text'};
}

function kindOf(path: string, value: string, form: Field | undefined): Kind {
  if (form) {
    const {kind, min, max, bytes, least, most, options, inside, help, live} = form;
    return {kind, min, max, bytes, least, most, options, inside, help, live};
  }
  const attribute = attributeOf(path);
  return attribute ? ofAttribute(attribute, value) : guess(path, value);
}

// In the order of the configuration. What changes by itself is shown as it is; the clock can be set.
// The password of the sign-in is changed only where the present one is asked for.
export function everyField(settings: Settings, nameOf: (path: string) => Name): Field[] {
  const forms = formFields(settings);
  const fields: Field[] = [];
  for (const [path, value] of settings) {
    const kind = kindOf(path, value, forms.get(path));
    const moves = isStatus(path) || isLive(path);
    const signsIn = path === kSignInPassword;
    fields.push({path, ...kind, ...nameOf(path), live: moves, apart: identifies(path),
      fixed: signsIn || moves && kind.kind !== 'clock',
      ...(signsIn ? {help: 'help.signIn' as const} : {})});
  }
  return fields;
}

export const sectionName = (path: string) => path.split('/')[0] || '';

export interface Group { name: string; fields: Field[] }

// By section, in the order in which the sections come.
export function groupsOf(fields: Field[]): Group[] {
  const groups = new Map<string, Field[]>();
  for (const field of fields) {
    const name = sectionName(field.path);
    const group = groups.get(name);
    if (group) group.push(field);
    else groups.set(name, [field]);
  }
  return [...groups].map(([name, list]) => ({name, fields: list}));
}
