// The recorder's status, read again every few seconds while the page is visible.
import {Fault} from '../recorder/fault';
import {query, queue} from '../recorder/wire';
import {get, set} from './store';

const kPauseMs = 5000;
const kRestartPauseMs = 1000;  // asks nobody

let timer: ReturnType<typeof setTimeout> | undefined;

// The versions on the maintenance page are read only once.
function shown(): boolean {
  const {page, status} = get();
  return !document.hidden && (page === 'status' || (page === 'maintenance' && !status));
}

async function readStatus() {
  try {
    const {result, values} = await query('get_SystemInfo', {group: 'poll'});
    if (result) set({status: {at: Date.now(), values}});
  } catch (caught) {
    if (!(caught instanceof Fault)) throw caught;
  }
}

// Reads repeatedly as long as the page is visible and the recorder answers, and waits for a restart
// to end; starts again when the recorder recovers.
export async function pollStatus() {
  clearTimeout(timer);
  const {state} = get().health;
  if (!shown() || (state !== 'answers' && state !== 'restarting')) return;
  if (state === 'answers') await readStatus();
  clearTimeout(timer);
  timer = setTimeout(() => void pollStatus(), state === 'answers' ? kPauseMs : kRestartPauseMs);
}

export function watchVisibility() {
  document.addEventListener('visibilitychange', () => {
    if (document.hidden) queue.drop('poll');
    else void pollStatus();
  });
}
