// Network: mode, local Ethernet, Wi-Fi, mobile network.
import {fetchConfig, sectionOf} from './config.js';
import {kSections} from './fields.js';
import {confirmMove, follow} from './follow.js';
import {fillForms, SectionForm} from './form.js';
import {openPage} from './shell.js';
import {t} from './i18n.js';

const kAccessPoint = '2';

// The service reads only the working mode's name and password; the other's come from an export.
async function showOtherMode(form) {
  const mode = form.controls.ucFD_WorkMode.get();
  form.say('busy', t('state.loading'));
  form.setBusy(true);
  let record = null;
  try {
    const {root} = await fetchConfig();
    record = root && sectionOf(root, mode === kAccessPoint ? 'stWifiAp' : 'stWifi');
  } catch {
    // Said below, as for a configuration without that section.
  }
  form.setBusy(false);
  if (!record) return form.say('warn', t('wifi.unknown'));
  for (const {name} of form.fields)
    if (name !== 'ucFD_WorkMode' && record[name] !== undefined)
      form.controls[name].set(record[name]);
  form.keepDraft();
  form.refresh();
  return form.say('info', t(mode === kAccessPoint ? 'wifi.ap' : 'wifi.station'));
}

const wifi = {
  ...kSections.wifi,
  loaded: (form) => { form.shownMode = form.controls.ucFD_WorkMode.get(); },
  edited(name, form) {
    const mode = form.controls.ucFD_WorkMode.get();
    const crossed = (mode === kAccessPoint) !== (form.shownMode === kAccessPoint);
    form.shownMode = mode;
    if (name === 'ucFD_WorkMode' && crossed) showOtherMode(form);
  },
};

const localNet = {...kSections.localNet, confirm: confirmMove, transmit: follow};

openPage('network', (main) =>
  fillForms(main, [wifi, kSections.mobile, localNet, kSections.netMode].map((section) =>
    new SectionForm('network', section))));
