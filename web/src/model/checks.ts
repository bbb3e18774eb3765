// Checks a value against its field, in the bytes that are stored and sent. The recorder's own
// values count as valid: only what the user changed is checked.
import {storedLength, unstorable, wireLength} from '../recorder/gbk';
import {applies, equal, meant, type Field, type Values} from './fields';
import type {WordKey} from '../words';

export interface Problem { key: WordKey; values: Record<string, string | number> }

const problem = (key: WordKey, values: Problem['values'] = {}): Problem => ({key, values});

const kIpv4 = /^(?:(?:25[0-5]|2[0-4]\d|1\d\d|[1-9]?\d)(?:\.(?!$)|$)){4}$/;
const kHost = /^(?!-)[a-z0-9-]{1,63}(?:\.[a-z0-9-]{1,63})*$/i;
const kMac = /^[0-9a-f]{2}(?:([:-])[0-9a-f]{2})(?:\1[0-9a-f]{2}){4}$|^[0-9a-f]{12}$/i;
const kClock = /^\d{4}-\d\d-\d\d \d\d:\d\d:\d\d$/;
const kDecimal = /^-?\d{1,9}(?:\.\d{1,6})?$/;
const kTime = /^(?:[01]?\d|2[0-3]):[0-5]?\d(?::[0-5]?\d)?$/;
const kHex = /^(?:0x)?((?:[0-9a-f]{2})*)$/i;
const kNone = '0.0.0.0';

export const isAddress = (text: string) => kIpv4.test(text);
const bitsOf = (address: string) =>
  address.split('.').reduce((bits, part) => bits * 256 + Number(part), 0);

// One bits, then zero bits.
export function isNetmask(text: string): boolean {
  if (!isAddress(text)) return false;
  const hosts = 0xffffffff - bitsOf(text);
  return text !== kNone && Math.log2(hosts + 1) % 1 === 0;
}

const networkOf = (address: string, mask: string) =>
  address.split('.').map((part, i) => Number(part) & Number(mask.split('.')[i])).join('.');

function checkText(field: Field, value: string): Problem | null {
  const char = unstorable(value);
  if (char) return problem('error.char', {char: char < ' ' ? `U+${char.charCodeAt(0)}` : char});
  const stored = storedLength(value);
  const least = field.least || 0;
  const most = field.most || field.bytes || Infinity;
  if (least && !value) return problem('error.empty');
  if (stored < least) return problem('error.short', {used: stored, limit: least});
  if (stored > most) return problem('error.long', {used: stored, limit: most});
  if (field.entities && field.bytes && wireLength(value) > field.bytes)
    return problem('error.entities', {used: wireLength(value), limit: field.bytes});
  return null;
}

function checkNumber(field: Field, value: string): Problem | null {
  const {min = 0, max = Infinity} = field;
  const number = Number(value);
  if (!/^\d{1,10}$/.test(value) || number < min || number > max)
    return problem('error.range', {min, max});
  return null;
}

// The rule covers all three: a gateway that became wrong by a change of the network is reported,
// too.
function checkAddress(field: Field, value: string, values: Values): Problem | null {
  if (!isAddress(value)) return problem('error.address');
  if (!field.inside || value === kNone) return null;
  const [address = '', mask = ''] = field.inside.map((path) => (values[path] || '').trim());
  if (!isAddress(address) || !isNetmask(mask)) return null;
  if (value === address) return problem('error.gatewaySame');
  if (networkOf(value, mask) !== networkOf(address, mask))
    return problem('error.gateway', {network: networkOf(address, mask), mask});
  return null;
}

const matches = (pattern: RegExp, key: WordKey) => (_: Field, value: string) =>
  pattern.test(value) ? null : problem(key);

function checkHex({bytes = Infinity}: Field, value: string): Problem | null {
  const digits = kHex.exec(value);
  const most = 2 * bytes;
  return digits && (digits[1] || '').length <= most ? null : problem('error.hex', {most});
}

// Only a moment that the calendar has comes back as it was written.
function isMoment(text: string): boolean {
  const iso = text.replace(' ', 'T');
  return kClock.test(text) && (new Date(`${iso}Z`).toJSON() || '').startsWith(iso);
}

type Check = (field: Field, value: string, values: Values) => Problem | null;
const kChecks: Record<Field['kind'], Check> = {
  text: checkText,
  secret: checkText,
  number: checkNumber,
  switch: () => null,
  choice: () => null,
  address: checkAddress,
  mask: (_, value) => isNetmask(value) ? null : problem('error.mask'),
  host: (field, value) =>
    checkText(field, value) || matches(kHost, 'error.host')(field, value),
  mac: (_, value) => value === '' || kMac.test(value) ? null : problem('error.mac'),
  clock: (_, value) => !value || value === 'now' || isMoment(value) ? null
    : problem('error.clock'),
  decimal: matches(kDecimal, 'error.decimal'),
  time: matches(kTime, 'error.time'),
  hex: checkHex,
};

// What is wrong with a field, or null.
export function check(field: Field, values: Values, held: Values): Problem | null {
  const value = values[field.path];
  if (!applies(field, values)) return null;
  if (value === undefined) return field.needed ? kChecks[field.kind](field, '', values) : null;
  const near = field.inside || [];
  const same = [field.path, ...near].every((path) => values[path] === held[path]);
  const shown = applies(field, held);
  if (same && shown) return null;
  if (equal(field, value, held[field.path]) && !near.length && shown) return null;
  return kChecks[field.kind](field, meant(field, value), values);
}

export type Problems = Record<string, Problem>;

export function checkAll(fields: Field[], values: Values, held: Values): Problems {
  const problems: Problems = {};
  for (const field of fields) {
    const found = check(field, values, held);
    if (found) problems[field.path] = found;
  }
  return problems;
}
