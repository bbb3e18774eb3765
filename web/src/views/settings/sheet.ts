// What is printed and copied: everything that the recorder holds, but no password.
import {clockText} from '../../model/clock';
import {groupsOf} from '../../model/everyField';
import type {Field, Values} from '../../model/fields';
import {kDeviceNo} from '../../model/import';
import {t} from '../../words';
import {sectionWords} from '../../words/settings';
import {display, wordOf} from '../parts/words';

const kPlate = 'stVehicle/strFD_LicensePlate';

export interface SheetRow { path: string; raw: string; name: string; value: string }
export interface SheetGroup { name: string; words: string; rows: SheetRow[] }

const rowOf = (held: Values) => (field: Field): SheetRow => ({
  path: field.path, raw: field.path.split('/').slice(1).join('/'), name: wordOf(field.label),
  value: display(field, held[field.path]),
});

export const sheetOf = (fields: Field[], held: Values): SheetGroup[] =>
  groupsOf(fields).map(({name, fields: list}) =>
    ({name, words: sectionWords(name), rows: list.map(rowOf(held))}));

export function headOf(held: Values, query: string): string[] {
  const head = [t('sheet.recorder', {number: held[kDeviceNo] || '–', plate: held[kPlate] || '–'}),
    t('sheet.time', {time: clockText(new Date())}), t('sheet.secrets')];
  return query.trim() ? [...head, t('sheet.part', {query: query.trim()})] : head;
}

export const sheetText = (fields: Field[], held: Values, query: string): string =>
  [...headOf(held, query), ...sheetOf(fields, held).map(({name, words, rows}) =>
    ['', `[${name}] ${words}`, ...rows.map((row) => `${row.raw}\t${row.name}\t${row.value}`)]
        .join('\n'))].join('\n');
