// A small parser for the recorder's documents: only elements and attributes matter. It is strict
// about structure, because a file may be cut, and lenient about `<` and `&` in values, as recorders
// are.

export interface Element { name: string; attributes: [string, string][]; children: Element[] }

export type XmlError =
    | {error: 'deep'}
    | {error: 'cut' | 'broken'; line: number}
    | {error: 'repeated'; name: string; line: number};

const kDepth = 32;  // more than any recorder's, less than a browser's stack holds
const kNamed: Record<string, string> = {lt: '<', gt: '>', amp: '&', quot: '"', apos: "'"};
const kName = /[A-Za-z_][\w.-]*/y;
const kAttribute = /\s+([A-Za-z_][\w.-]*)\s*=\s*(?:"([^"]*)"|'([^']*)')/y;
const kTagEnd = /\s*(\/?)>/y;
const kSkipped = /(?:<!--[^]*?-->|<\?[^]*?\?>|<!\[CDATA\[[^]*?\]\]>|[^<]+)+/y;
const kClosing = /<\/([A-Za-z_][\w.-]*)\s*>/y;

function decode(text: string): string {
  return text.replace(/&(?:#x([0-9a-f]{1,6})|#(\d{1,7})|(\w+));/gi, (all, hex, dec, name) => {
    if (name) return kNamed[name] || all;
    const code = hex ? parseInt(hex, 16) : Number(dec);
    return code > 0 && code <= 0x10ffff ? String.fromCodePoint(code) : all;
  });
}

class Reader {
  private at = 0;
  constructor(private readonly text: string, private readonly strict: boolean) {}

  private take(pattern: RegExp): RegExpExecArray | null {
    pattern.lastIndex = this.at;
    const match = pattern.exec(this.text);
    if (match) this.at = pattern.lastIndex;
    return match;
  }

  // An error at the end means that the file was cut; anywhere else the document is broken.
  private fail(): never {
    const line = this.text.slice(0, this.at).split('\n').length;
    const rest = this.text.slice(this.at).trim();
    const cut = !rest || !/>/.test(rest) || /^<[^>]*$/.test(rest);
    throw {error: cut ? 'cut' : 'broken', line};
  }

  private attributes(element: Element) {
    const known = new Set<string>();
    for (let match = this.take(kAttribute); match; match = this.take(kAttribute)) {
      const name = match[1] || '';
      if (known.has(name)) {
        const line = this.text.slice(0, this.at).split('\n').length;
        if (this.strict) throw {error: 'repeated', name, line};
        continue;
      }
      known.add(name);
      element.attributes.push([name, decode(match[2] !== undefined ? match[2] : match[3] || '')]);
    }
  }

  skip() { this.take(kSkipped); }

  get rest() { return this.text.slice(this.at); }

  element(depth = 1): Element {
    if (depth > kDepth) throw {error: 'deep'};
    if (this.text[this.at] !== '<') this.fail();
    this.at++;
    const name = this.take(kName);
    if (!name) this.fail();
    const element: Element = {name: name[0], attributes: [], children: []};
    this.attributes(element);
    const end = this.take(kTagEnd);
    if (!end) this.fail();
    if (end[1]) return element;
    for (;;) {
      this.skip();
      const closing = this.take(kClosing);
      if (closing && closing[1] === element.name) return element;
      if (closing) this.fail();
      element.children.push(this.element(depth + 1));
    }
  }
}

// The text's first element and everything below it.
export function readXml(text: string, strict: boolean): Element | XmlError {
  const reader = new Reader(text, strict);
  try {
    reader.skip();
    const root = reader.element();
    reader.skip();
    if (strict && reader.rest) return {error: 'broken', line: text.split('\n').length};
    return root;
  } catch (caught) {
    if (caught && typeof caught === 'object' && 'error' in caught) return caught as XmlError;
    throw caught;
  }
}

const escape = (value: string) => value
    .replace(/&/g, '&amp;').replace(/</g, '&lt;').replace(/"/g, '&quot;')
    .replace(/[\x00-\x1f]/g, (char) =>
      `&#x${char.charCodeAt(0) < 16 ? '0' : ''}${char.charCodeAt(0).toString(16).toUpperCase()};`);

// An element as text: one line, or indented for an editor.
export function printXml(element: Element, indent: string | null = null, depth = 0): string {
  const line = indent === null ? '' : '\n';
  const pad = indent === null ? '' : indent.repeat(depth);
  const start = element.name + element.attributes.map(([k, v]) => ` ${k}="${escape(v)}"`).join('');
  if (!element.children.length) return `${pad}<${start}/>${line}`;
  const inside = element.children.map((child) => printXml(child, indent, depth + 1)).join('');
  return `${pad}<${start}>${line}${inside}${pad}</${element.name}>${line}`;
}
