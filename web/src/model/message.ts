// What is sent for a section: its form, or an import of only the changes.
import {toEntities, wireLength} from '../recorder/gbk';
import {configOf} from '../recorder/config';
import type {Element} from '../recorder/xml';
import {applies, isOn, meant, type Field, type Values} from './fields';
import type {Section} from './sections';

export type Message =
    | {endpoint: string; form: Record<string, string>}
    | {config: Element};

function formOf(endpoint: string, fields: Field[], values: Values): Message {
  const form: Record<string, string> = {};
  for (const field of fields)
    if (field.wire && applies(field, values))
      form[field.wire] = toEntities(meant(field, values[field.path] || ''));
  return {endpoint, form};
}

// A form cuts a value whose entities are longer than the field; an import does not.
const fits = (fields: Field[], values: Values) => fields.every(({path, wire, bytes}) =>
  !wire || !bytes || wireLength(values[path] || '') <= bytes);

// A message about cameras names the first one that it is about, as the service's own do.
function startOf(paths: string[]): [string, string][] {
  const cameras = paths.map((path) => /^stMainStream\/stVideoPara\/VChn_(\d+)\//.exec(path))
      .filter((match) => match).map((match) => Number(match![1]));
  return cameras.length ? [['stMainStream/StartChn', String(Math.min(...cameras))]] : [];
}

// Switches are sent as 0 and 1.
const sent = (field: Field, value: string) =>
  field.kind === 'switch' ? (isOn(value) ? '1' : '0') : meant(field, value);

// `changed` are paths that the user changed, `values` all of the section's.
export function messageFor(section: Section, fields: Field[], changed: string[], values: Values,
    clock: () => string): Message {
  if (section.set && fits(fields, values))
    return formOf(section.set, withWires(fields, values), values);
  const wanted: Values = {};
  for (const field of fields) {
    const value = values[field.path];
    if (value === undefined || !changed.includes(field.path) || !applies(field, values)) continue;
    wanted[field.path] = value === 'now' && field.kind === 'clock' ? clock() : sent(field, value);
  }
  const settings = Object.entries(section.wanted ? section.wanted(wanted, values) : wanted);
  return {config: configOf(settings, startOf(settings.map(([path]) => path)))};
}

// The platform's address is sent under one name, whichever of its two fields applies.
function withWires(fields: Field[], values: Values): Field[] {
  return fields.map((field) => {
    if (field.path !== 'stCMS/uiFD_IP' && field.path !== 'stCMS/strFD_Domain') return field;
    return applies(field, values) ? {...field, wire: 'strFD_Address'} : field;
  });
}
