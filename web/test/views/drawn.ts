// A view drawn without a browser: of a document it has what drawing needs.
import '../state/page';
import {after} from 'node:test';
import {h, render, type ComponentType} from 'preact';
import {useStore} from '../../src/views/parts/hooks';

type Listener = (event: object) => void;

export class Node {
  childNodes: Node[] = [];
  parentNode: Node | null = null;
  attributes: Record<string, string> = {};
  listeners: Record<string, Listener> = {};

  constructor(readonly localName: string, public data = '') {}
  get nodeType() { return this.localName ? 1 : 3; }
  get firstChild(): Node | null { return this.childNodes[0] || null; }
  get nextSibling(): Node | null {
    const all = this.parentNode ? this.parentNode.childNodes : [];
    return all[all.indexOf(this) + 1] || null;
  }
  insertBefore(node: Node, next: Node | null) {
    if (node.parentNode) node.parentNode.removeChild(node);
    this.childNodes.splice(next ? this.childNodes.indexOf(next) : this.childNodes.length, 0, node);
    node.parentNode = this;
  }
  removeChild(node: Node) {
    this.childNodes.splice(this.childNodes.indexOf(node), 1);
    node.parentNode = null;
  }
  setAttribute(name: string, value: unknown) { this.attributes[name] = String(value); }
  removeAttribute(name: string) { delete this.attributes[name]; }
  focus() {}
  select() {}
  // Names of events that a node does not announce come as they stand in the view.
  addEventListener(type: string, listener: Listener) {
    this.listeners[type.toLowerCase()] = (event) => listener.call(this, {...event, type});
  }

  get textContent(): string {
    return this.data + this.childNodes.map(({textContent}) => textContent).join('');
  }
  // All below with an attribute, or with this value of it.
  all(name: string, value?: string): Node[] {
    return this.childNodes.flatMap((node) => {
      const own = node.attributes[name];
      const has = own !== undefined && (value === undefined || own === value);
      return [...has ? [node] : [], ...node.all(name, value)];
    });
  }
  // What a user does, and the drawing anew that follows.
  async does(type: string, event: object = {}) {
    this.listeners[type]!({currentTarget: this, preventDefault() {}, ...event});
    await drawnAnew();
  }
}

Object.assign(document, {
  createElementNS: (_: string, name: string) => new Node(name),
  createTextNode: (text: string) => new Node('', text),
});
Object.assign(globalThis, {window: {addEventListener() {}, removeEventListener() {}}});

export const drawnAnew = () => new Promise((done) => setTimeout(done));

// A view that is not taken away would tick on.
const roots: Element[] = [];
after(() => roots.forEach((root) => render(null, root)));

// Follows the store.
export function drawn<Props extends object>(view: ComponentType<Props>, props: Props): Node {
  const root = new Node('main');
  const Whole = () => {
    useStore();
    return h(view, props);
  };
  roots.push(root as unknown as Element);
  render(h(Whole, {}), root as unknown as Element);
  return root;
}
