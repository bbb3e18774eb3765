// Text for the recorder: GBK bytes, XML entities, form encoding. The recorder keeps its settings in
// GBK (code page 936) and the service writes form values into XML as they come, so the pages send
// `"`, `<` and `&` as entities. Pure functions; the reverse table is built at its first use.

const kEntities = {'"': '&quot;', '<': '&lt;', '&': '&amp;'};

// Two-byte codes that browsers decode but code page 936 leaves free; the configuration export
// cannot carry them. Single codes first, then ranges.
const kFreeCodes = new Set([
  0xa2e3, 0xa3a0, 0xa6d9, 0xa6da, 0xa6db, 0xa6dc, 0xa6dd, 0xa6de, 0xa6df, 0xa6ec, 0xa6ed, 0xa6f3,
  0xa8bc, 0xa8bf,
]);
const isFree = (code) => kFreeCodes.has(code) || (code >= 0xa989 && code <= 0xa995) ||
    (code >= 0xfe50 && code <= 0xfea0);
const isPrivateUse = (char) => char >= '\ue000' && char <= '\uf8ff';

let codes = null;  // character -> two-byte code

function addRow(table, decoder, lead) {
  const bytes = [];
  for (let trail = 0x40; trail <= 0xfe; trail++) bytes.push(lead, trail, 0x0a);
  const chars = decoder.decode(new Uint8Array(bytes)).split('\n');
  for (let trail = 0x40; trail <= 0xfe; trail++) {
    const char = chars[trail - 0x40];
    const code = (lead << 8) | trail;
    if (char.length !== 1 || char === '\ufffd' || isPrivateUse(char) || isFree(code)) continue;
    if (!table.has(char)) table.set(char, code);
  }
}

function reverseTable() {
  if (codes) return codes;
  codes = new Map();
  const decoder = new TextDecoder('gbk');
  for (let lead = 0x81; lead <= 0xfe; lead++) addRow(codes, decoder, lead);
  return codes;
}

// The first character that the recorder cannot store, or null: control characters and whatever has
// no code.
export function unstorable(text) {
  for (const char of text) {
    if (char < ' ' || char === '\x7f') return char;
    if (char > '\x7f' && !reverseTable().has(char)) return char;
  }
  return null;
}

// GBK bytes of a text; characters without a code become '?' (see unstorable).
export function encodeGbk(text) {
  const bytes = [];
  for (const char of text) {
    const code = char <= '\x7f' ? char.charCodeAt(0) : reverseTable().get(char);
    if (code === undefined) bytes.push(0x3f);
    else if (code > 0xff) bytes.push(code >> 8, code & 0xff);
    else bytes.push(code);
  }
  return Uint8Array.from(bytes);
}

// A text as it stands inside an XML attribute of a message.
export const toEntities = (text) => text.replace(/["<&]/g, (char) => kEntities[char]);

// Bytes that a value takes on its way (entities) and in the recorder (plain).
export const wireLength = (text) => encodeGbk(toEntities(text)).length;
export const storedLength = (text) => encodeGbk(text).length;

// Everything but letters and digits is escaped, the dot too: the service leaves a request alone
// whose text names one of its guarded style sheets, even inside a value.
export function percentEncode(bytes) {
  let out = '';
  for (const byte of bytes) {
    const char = String.fromCharCode(byte);
    out += /[A-Za-z0-9]/.test(char) ? char : '%' + byte.toString(16).padStart(2, '0').toUpperCase();
  }
  return out;
}
