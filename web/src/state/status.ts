// The recorder's status, read again every few seconds while the page is visible.
import {Fault} from '../recorder/fault';
import {query, queue} from '../recorder/wire';
import {get, set} from './store';

const kPauseMs = 5000;

let timer: ReturnType<typeof setTimeout> | undefined;

// The versions on the maintenance page are read only once.
function wanted(): boolean {
  const {page, status, health} = get();
  const shown = page === 'status' || (page === 'maintenance' && !status);
  return shown && !document.hidden && health.state === 'answers';
}

// Reads repeatedly as long as the page is visible and the recorder answers; starts again when the
// recorder recovers.
export async function pollStatus() {
  clearTimeout(timer);
  if (!wanted()) return;
  try {
    const {result, values} = await query('get_SystemInfo', {group: 'poll'});
    if (result) set({status: {at: Date.now(), values}});
  } catch (caught) {
    if (!(caught instanceof Fault)) throw caught;
  }
  clearTimeout(timer);
  timer = setTimeout(() => void pollStatus(), kPauseMs);
}

export function watchVisibility() {
  document.addEventListener('visibilitychange', () => {
    if (document.hidden) queue.drop('poll');
    else void pollStatus();
  });
}
