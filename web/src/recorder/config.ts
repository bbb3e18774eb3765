// The whole configuration as the recorder exports and imports it: one VariCfgSec document. A
// setting has a path below the root: "stWifi/strFD_SSID", or with items on the way,
// "stMainStream/stVideoPara/VChn_0/ucFD_Gop".
import {unstorable} from './gbk';
import {query, type Turn} from './wire';
import {printXml, readXml, type Element, type XmlError} from './xml';

// What the service accepts.
export const kImportBytes = 30719;
const kFileBytes = 1 << 20;  // with all the blanks and comments of an editor
const kRoot = 'VariCfgSec';

export type Settings = Map<string, string>;

// The names of settings whose values let somebody in.
const kSecret = /(?:pass(?:wd|word)?|pwd|psw|psk|key|secret|token)_?\d*$|Authentication$/i;
export const isSecret = (path: string) => kSecret.test(path);

export type FileError = XmlError | {error: 'foreign' | 'empty'}
    | {error: 'char'; char: string; name: string} | {error: 'long'; used: number};

// Every setting by its path; `repeated` is called for a path that occurs twice.
export function settingsOf(root: Element, repeated: (path: string) => void = () => {}): Settings {
  const found: Settings = new Map();
  const walk = (element: Element, path: string) => {
    for (const child of element.children) {
      const below = `${path}${child.name}/`;
      for (const [name, value] of child.attributes) {
        if (found.has(below + name)) repeated(below + name);
        found.set(below + name, value);
      }
      walk(child, below);
    }
  };
  walk(root, '');
  return found;
}

// A document with only these settings. `extra` are attributes of a message, not settings.
export function configOf(settings: Iterable<[string, string]>, extra: [string, string][] = []) {
  const root: Element = {name: kRoot, attributes: [], children: []};
  for (const [path, value] of [...extra, ...settings]) {
    const parts = path.split('/');
    const attribute = parts.pop() || '';
    let element = root;
    for (const name of parts) {
      const known = element.children.find((child) => child.name === name);
      const child = known || {name, attributes: [], children: []};
      if (!known) element.children.push(child);
      element = child;
    }
    element.attributes.push([attribute, value]);
  }
  return root;
}

export const printMessage = (root: Element) => printXml(root);
export const printFile = (root: Element) =>
  `<?xml version="1.0" encoding="UTF-8"?>\n${printXml(root, '  ')}`;

export const byteLength = (text: string) => new TextEncoder().encode(text).length;

// The recorder's configuration; settings are null when there is no usable one.
export async function fetchConfig(turn: Turn = {}) {
  const {result, values} = await query('export_CfgFile', turn);
  const text = values.strFD_CfgPara || '';
  const begin = text.indexOf(`<${kRoot}`);
  const root = result && begin >= 0 ? readXml(text.slice(begin), false) : null;
  if (!root || 'error' in root || root.name !== kRoot) return {result, root: null, settings: null};
  return {result, root, settings: settingsOf(root)};
}

function decodeFile(bytes: Uint8Array): string {
  try {
    return new TextDecoder('utf-8', {fatal: true}).decode(bytes);
  } catch {
    return new TextDecoder('gbk').decode(bytes);
  }
}

function check(root: Element): FileError | null {
  if (!root.children.length) return {error: 'empty'};
  let twice = '';
  const settings = settingsOf(root, (path) => { twice = path; });
  if (twice) return {error: 'repeated', name: twice, line: 0};
  for (const [name, value] of settings) {
    const char = unstorable(value.replace(/[\x00-\x1f]/g, ''));
    if (char) return {error: 'char', char, name};
  }
  const used = byteLength(printMessage(root));
  return used > kImportBytes ? {error: 'long', used} : null;
}

// A file's settings, or the reason why the recorder could not use it.
export function openFile(bytes: Uint8Array): {settings: Settings} | FileError {
  if (bytes.length > kFileBytes) return {error: 'long', used: bytes.length};
  const text = decodeFile(bytes);
  const begin = text.indexOf(`<${kRoot}`);
  if (begin < 0) return {error: 'foreign'};
  const root = readXml(text.slice(begin), true);
  if ('error' in root) return root;
  if (root.name !== kRoot) return {error: 'foreign'};
  return check(root) || {settings: settingsOf(root)};
}
