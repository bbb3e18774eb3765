// The whole configuration as the recorder exports and imports it: one VariCfgSec document.
import {query} from './api.js';
import {toEntities, unstorable} from './gbk.js';

// What the service takes.
export const kImportBytes = 30719;
const kDepth = 32;

export const isSecret = (name) => /pass|pwd/i.test(name);

// The document's root element, or null when the text is no configuration.
function readConfig(text) {
  const begin = text.indexOf('<VariCfgSec');
  if (begin < 0) return null;
  const parsed = new DOMParser().parseFromString(text.slice(begin), 'application/xml');
  const root = parsed.documentElement;
  return parsed.querySelector('parsererror') || root.tagName !== 'VariCfgSec' ? null : root;
}

const attributes = (node) => [...node.attributes].map((a) => [a.name, a.value]);

// The recorder's configuration: {result, root}; root is null when there is no usable one.
export async function fetchConfig() {
  const {result, strFD_CfgPara} = await query('export_CfgFile');
  return {result, root: result ? readConfig(strFD_CfgPara) : null};
}

// A section's own attributes as an object, or null.
export function sectionOf(root, name) {
  const found = [...root.children].find((child) => child.tagName === name);
  return found ? Object.fromEntries(attributes(found)) : null;
}

const escape = (value) => toEntities(value).replace(/[\x00-\x1f]/g, (char) =>
  `&#x${char.charCodeAt(0).toString(16).toUpperCase().padStart(2, '0')};`);

// A document as text: elements and attributes only, one line, or indented for an editor.
export function printConfig(node, indent = null, depth = 0) {
  const line = indent === null ? '' : '\n';
  const pad = indent === null ? '' : indent.repeat(depth);
  const start = node.tagName + attributes(node).map(([k, v]) => ` ${k}="${escape(v)}"`).join('');
  const children = [...node.children];
  if (!children.length) return `${pad}<${start}/>${line}`;
  const inside = children.map((child) => printConfig(child, indent, depth + 1)).join('');
  return `${pad}<${start}>${line}${inside}${pad}</${node.tagName}>${line}`;
}

// Every setting by its path below the root: "stWifi strFD_SSID" -> value.
export function settings(root) {
  const found = new Map();
  const walk = (node, path) => {
    for (const child of node.children) {
      const below = [...path, child.tagName];
      for (const [name, value] of attributes(child)) found.set([...below, name].join(' '), value);
      walk(child, below);
    }
  };
  walk(root, []);
  return found;
}

// What an import would change; from is null where the recorder lacks a setting of the file. What
// only the recorder has stays.
export function changes(now, file) {
  const rows = [];
  for (const [path, to] of file) {
    const from = now.has(path) ? now.get(path) : null;
    if (from !== to) rows.push({path, from, to});
  }
  return rows;
}

const depthOf = (node) => 1 + Math.max(0, ...[...node.children].map(depthOf));

// A file's bytes as {root, xml}, xml ready to be sent, or {error, values} with a text key.
export function openConfigFile(bytes) {
  let text;
  try {
    text = new TextDecoder('utf-8', {fatal: true}).decode(bytes);
  } catch {
    text = new TextDecoder('gbk').decode(bytes);
  }
  const root = readConfig(text);
  if (!root) return {error: 'import.foreign'};
  if (!root.children.length) return {error: 'import.empty'};
  if (depthOf(root) > kDepth) return {error: 'import.deep', values: {limit: kDepth}};
  for (const [path, value] of settings(root)) {
    const char = unstorable(value.replace(/[\x00-\x1f]/g, ''));
    if (char) return {error: 'import.char', values: {char, path}};
  }
  const xml = printConfig(root);
  const used = new TextEncoder().encode(xml).length;
  if (used > kImportBytes) return {error: 'import.long', values: {used, limit: kImportBytes}};
  return {root, xml};
}
