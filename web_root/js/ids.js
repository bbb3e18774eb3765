// The channels' IDs stand in places: lens ID k in place k, alarm-input ID k in place k + 2.
// So lens ID k + 2 and alarm-input ID k share one, though the recorder may hold two there.

const kSubDevices = 8;
export const kShift = 2;

// Such a place carries both until the user has chosen.
const kMark = '\u0001';
const both = (lens, alarm) => kMark + lens + kMark + alarm;
export const isOpen = (value) => value.startsWith(kMark);
export const candidates = (value) => value.split(kMark).slice(1);

export const placeName = (k) => `place${k}`;

// [{lens, alarm}] per sub-device of an exported configuration; null without the section.
export function readIds(root) {
  const section = root.querySelector(':scope > stGB28181');
  if (!section) return null;
  return Array.from({length: kSubDevices}, (_, k) => {
    const node = section.querySelector(`:scope > stGB28181SubID > SUBDEVID_${k}`);
    const get = (name) => (node && node.getAttribute(name)) || '';
    return {lens: get('strFD_LensId'), alarm: get('strFD_AlarmInId')};
  });
}

export const rowCount = (channels) => Math.min(channels, kSubDevices);

export function toPlaces(ids, channels) {
  const rows = rowCount(channels);
  return Array.from({length: rows + kShift}, (_, k) => {
    if (k < kShift) return ids[k] && k < rows ? ids[k].lens : '';
    const alarm = ids[k - kShift].alarm;
    if (k >= rows || ids[k].lens === alarm) return alarm;
    return both(ids[k].lens, alarm);
  });
}

const list = (ids) => `*${ids.map((id) => `${id}*`).join('')}`;

// The two lists of a form: one ID per channel, in order.
export function toLists(places, channels) {
  const surplus = Array(Math.max(0, channels - kSubDevices)).fill('');
  const rows = rowCount(channels);
  return {
    strFD_LensId: list([...places.slice(0, rows), ...surplus]),
    strFD_AlarmInId: list([...places.slice(kShift, rows + kShift), ...surplus]),
  };
}

// IDs of sub-devices beyond the channels: a save overwrites them, so they are shown.
export function hiddenIds(ids, channels) {
  return ids.map(({lens, alarm}, k) => ({k, lens, alarm}))
      .filter(({k, lens, alarm}) => k >= rowCount(channels) && (lens || alarm));
}
