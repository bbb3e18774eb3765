// The daemon's own records and attribute tables, read from its sources.
import {readdirSync, readFileSync} from 'node:fs';
import {join} from 'node:path';

declare const PROJECT: string;

const kConfig = join(PROJECT, 'config');

// `most` is a text's bytes without its end, or the largest number; `size` that of an array.
export interface Member { type: string; text: boolean; most: number; size: number }
export type Members = Map<string, Member>;

const kNumbers: Record<string, number> = {
  uint8_t: 0xff, uint16_t: 0xffff, uint32_t: 0xffffffff,
};

const sources = (name: RegExp) => readdirSync(kConfig).filter((file) => name.test(file))
    .map((file) => readFileSync(join(kConfig, file), 'utf8').replace(/\/\/.*/g, ''));

// The members of every record, by the record's name. A text keeps one byte for its end.
export function readRecords(): Map<string, Members> {
  const records = new Map<string, Members>();
  for (const source of sources(/^Records\w*\.h$/)) {
    for (const [, name = '', body = ''] of source.matchAll(/struct (\w+) \{([^]*?)\n\};/g)) {
      const members: Members = new Map();
      const declarations = body.matchAll(/^\s*(char|float|uint\d+_t) ([^;(]+);/gm);
      for (const [, type = '', list = ''] of declarations) {
        for (const declared of list.split(',')) {
          const [, member = '', sizes = ''] = /^\s*(\w+)((?:\[\d+\])*)\s*$/.exec(declared) || [];
          const last = /\[(\d+)\]$/.exec(sizes);
          const size = Number(last && last[1]);
          const text = type === 'char';
          members.set(member, {type, text, size, most: text ? size - 1 : kNumbers[type] || 0});
        }
      }
      records.set(name, members);
    }
  }
  return records;
}

// One row of an attribute table, under the section whose importer walks it.
export interface Row { section: string; record: string; name: string; store: string }

// Every row of every table that an importer walks.
export function readTables(): Row[] {
  return sources(/^Import\w*\.cpp$/).flatMap((source) => {
    const tables = new Map<string, Omit<Row, 'section'>[]>();
    for (const [, record = '', table = '', body = ''] of
      source.matchAll(/constexpr stAttr<(\w+)> (\w+)\[\] = \{([^;]*)\};/g)) {
      const rows = body.matchAll(/ATTR(?:_AS)?\(\w+, (\w+)(?:, (\w+))?\)|\{"(\w+)", (\w+)\}/g);
      tables.set(table, [...rows].map(([, member, as = 'Store', quoted, store]) =>
        ({record, name: member || quoted || '', store: store || as})));
    }
    const importers = source.matchAll(/::Import_(\w+)\([^]*?\n\}/g);
    return [...importers].flatMap(([body, section = '']) =>
      [...body.matchAll(/\bk[A-Z]\w+/g)].flatMap(([table]) =>
        (tables.get(table) || []).map((row) => ({section, ...row}))));
  });
}

// How long a device number must be and may be.
export function deviceNoLength(): number[] {
  const source = sources(/^ImportDevice/).join();
  const [, least, most] = /nLen < (\d+) \|\| nLen > (\d+)/.exec(source) || [];
  return [Number(least), Number(most)];
}
