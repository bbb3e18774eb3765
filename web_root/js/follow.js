// Changing the recorder's own address: says beforehand where it goes, and follows it there.
import {answers, send} from './api.js';
import {askUser} from './dialog.js';
import {el} from './dom.js';
import {toEntities} from './gbk.js';
import {t} from './i18n.js';

const kTries = 30;
const kPauseMs = 2000;
const kRestartMs = 1900;  // an accepted set takes at least that

// Where the pages will be, or null when this page does not move with the recorder's address.
function newOrigin(values, before) {
  const from = before.strFD_LocalIp;
  const to = values.strFD_LocalIp;
  if (from === to || location.hostname !== from) return null;
  return location.origin.replace(from, to);
}

export function confirmMove(form, values, before) {
  const origin = newOrigin(values, before);
  if (!origin) return true;
  return askUser(t('move.title'), el('div', {}, el('p', {}, t('move.text', {origin})),
      el('p', {}, t('move.hint'))), t('move.go'));
}

async function waitThere(form, origin) {
  const bar = el('progress', {'aria-label': t('state.progress')});
  form.say('busy', t('move.waiting', {origin}), bar);
  for (let left = kTries; left > 0; left--) {
    if (await answers(origin)) return location.assign(`${origin}/login.html#moved`);
    await new Promise((resume) => { setTimeout(resume, kPauseMs); });
  }
  return form.say('warn', t('move.silent'), el('a', {href: origin}, origin));
}

// What became of a set whose answer did not come: the recorder may have moved already.
async function stillHere(form, before) {
  const {result, values} = await form.read().catch(() => ({}));
  return result && values.strFD_LocalIp === before.strFD_LocalIp;
}

async function moveTo(form, values, before, origin) {
  form.say('busy', t('state.sending'));
  const variables = Object.entries(values).map(([name, value]) => [name, toEntities(value)]);
  let fault = null;
  const reply = await send(form.section.set, Object.fromEntries(variables)).catch((thrown) => {
    fault = thrown.kind;
  });
  if (reply && !reply.result) return {end: 'silent', values: null};
  if (reply && reply.ms < kRestartMs) return {end: 'refused', values: before};
  if (fault && await stillHere(form, before)) return {end: fault, values: null};
  await waitThere(form, origin);
  return {end: 'moved', values: null};
}

// Sends the addresses and goes after the recorder. Null leaves the save to the engine.
export function follow(form, values, before) {
  const origin = newOrigin(values, before);
  return origin && moveTo(form, values, before, origin);
}
