// Text for the recorder, which stores GBK (code page 936): bytes, XML entities, form encoding. The
// service writes form values into XML unchanged, so `"`, `<` and `&` are sent as entities.

const kEntities: Record<string, string> = {'"': '&quot;', '<': '&lt;', '&': '&amp;'};

// Codes that browsers decode but code page 936 does not assign; an export cannot contain them.
const kFreeCodes: readonly (readonly [number, number])[] = [
  [0xa2e3, 0xa2e3], [0xa3a0, 0xa3a0], [0xa6d9, 0xa6df], [0xa6ec, 0xa6ed], [0xa6f3, 0xa6f3],
  [0xa8bc, 0xa8bc], [0xa8bf, 0xa8bf], [0xa989, 0xa995], [0xfe50, 0xfea0],
];
const isFree = (code: number) => kFreeCodes.some(([first, last]) => code >= first && code <= last);
const isPrivateUse = (char: string) => char >= '\ue000' && char <= '\uf8ff';

let codes: Map<string, number> | null = null;  // character -> two-byte code

function addRow(table: Map<string, number>, decoder: TextDecoder, lead: number) {
  const bytes: number[] = [];
  for (let trail = 0x40; trail <= 0xfe; trail++) bytes.push(lead, trail, 0x0a);
  const chars = decoder.decode(new Uint8Array(bytes)).split('\n');
  for (let trail = 0x40; trail <= 0xfe; trail++) {
    const char = chars[trail - 0x40] || '';
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

// The first character that the recorder cannot store, or null.
export function unstorable(text: string): string | null {
  for (const char of text) {
    if (char < ' ' || char === '\x7f') return char;
    if (char > '\x7f' && !reverseTable().has(char)) return char;
  }
  return null;
}

// GBK bytes of a text; characters without a code become '?' (see unstorable).
export function encodeGbk(text: string): Uint8Array {
  const bytes: number[] = [];
  for (const char of text) {
    const code = char <= '\x7f' ? char.charCodeAt(0) : reverseTable().get(char);
    if (code === undefined) bytes.push(0x3f);
    else if (code > 0xff) bytes.push(code >> 8, code & 0xff);
    else bytes.push(code);
  }
  return Uint8Array.from(bytes);
}

// A text as written inside an XML attribute of a message.
export const toEntities = (text: string) =>
  text.replace(/["<&]/g, (char) => kEntities[char] || char);

// Bytes that a value needs in transit (with entities) and in the recorder (plain).
export const wireLength = (text: string) => encodeGbk(toEntities(text)).length;
export const storedLength = (text: string) => encodeGbk(text).length;

// The dot is escaped, too: a request that names a guarded style sheet, even in a value, may never
// be answered.
export function percentEncode(bytes: Uint8Array): string {
  let out = '';
  for (const byte of bytes) {
    const char = String.fromCharCode(byte);
    const hex = byte.toString(16).toUpperCase();
    out += /[A-Za-z0-9]/.test(char) ? char : `%${hex.length < 2 ? '0' : ''}${hex}`;
  }
  return out;
}
