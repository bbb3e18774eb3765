// Checks a value against its field, in the bytes that are stored and that travel.
import {storedLength, unstorable, wireLength} from './gbk.js';

const kIpv4 = /^(?:(?:25[0-5]|2[0-4]\d|1\d\d|[1-9]?\d)(?:\.(?!$)|$)){4}$/;
const kHost = /^(?!-)[a-z0-9-]{1,63}(?:\.[a-z0-9-]{1,63})*$/i;
const kMac = /^[0-9a-f]{2}(?:([:-])[0-9a-f]{2})(?:\1[0-9a-f]{2}){4}$|^[0-9a-f]{12}$/i;

const problem = (key, values = {}) => ({key, values});

function checkText(field, value) {
  const char = unstorable(value);
  if (char) return problem('error.char', {char: char < ' ' ? `U+${char.charCodeAt(0)}` : char});
  const stored = storedLength(value);
  const wire = wireLength(value);
  const least = field.least || 0;
  const most = field.most || field.bytes;
  if (least && !value) return problem('error.empty');
  if (stored < least) return problem('error.short', {used: stored, limit: least});
  if (stored > most) return problem('error.long', {used: stored, limit: most});
  if (wire > field.bytes) return problem('error.entities', {used: wire, limit: field.bytes});
  return null;
}

function checkNumber(field, value) {
  const number = Number(value);
  if (!/^\d{1,10}$/.test(value) || number < field.min || number > field.max)
    return problem('error.range', {min: field.min, max: field.max});
  return null;
}

function checkHost(field, value, values) {
  if (field.numeric(values)) return kIpv4.test(value) ? null : problem('error.ipv4');
  return checkText(field, value) || (kHost.test(value) ? null : problem('error.host'));
}

function checkMac(field, value) {
  if (value === '' || kMac.test(value)) return null;
  return problem('error.mac');
}

const kClock = /^(?:now|\d{4}-\d\d-\d\d \d\d:\d\d:\d\d)?$/;

const kChecks = {
  text: checkText,
  secret: checkText,
  number: checkNumber,
  toggle: () => null,
  choice: () => null,
  ipv4: (field, value) => kIpv4.test(value) ? null : problem('error.ipv4'),
  host: checkHost,
  mac: checkMac,
  clock: (field, value) => kClock.test(value) ? null : problem('error.clock'),
};

// null, or the text key and values of what is wrong. What the recorder itself holds is right in
// form; only its length is checked.
export function check(field, value, values, loaded) {
  if (field.when && !field.when(values)) return null;
  const special = field.check && field.check(value, values);
  if (special) return special;
  if (value === loaded && !field.least) return field.bytes ? checkText(field, value) : null;
  return kChecks[field.kind](field, value, values);
}
