// Scripts that come when a page first needs them, so that the others stay small.
import {Fault} from '../recorder/fault';
import {get, set, type ScriptName, type ScriptState} from './store';

let addresses: DOMStringMap = {};
const coming: Partial<Record<ScriptName, Promise<void>>> = {};

// The document's own script names where the others are.
export const setScripts = (own: DOMStringMap) => { addresses = own; };

function fetchScript(name: ScriptName): Promise<void> {
  return new Promise((arrived, failed) => {
    const script = document.createElement('script');
    script.src = addresses[name] || '';
    script.onload = () => arrived();
    script.onerror = () => {
      script.remove();
      failed(new Fault('lost'));
    };
    document.head.appendChild(script);
  });
}

const note = (name: ScriptName, state: ScriptState) =>
  set({scripts: {...get().scripts, [name]: state}});

// Fetches a script once; again after a failure.
export function bring(name: ScriptName): Promise<void> {
  const known = coming[name];
  if (known) return known;
  note(name, 'coming');
  const arrival = fetchScript(name).then(() => note(name, 'there'), (caught) => {
    delete coming[name];
    note(name, 'failed');
    throw caught;
  });
  coming[name] = arrival;
  return arrival;
}
