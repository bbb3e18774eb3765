// The IDs of the GB28181 channels. The interface keeps them in one row of places: lens ID k is place
// k, alarm-input ID k is place k + 2, so lens ID k + 2 and alarm-input ID k are one place. The
// recorder itself may hold two different IDs there. Pure functions.

const kSubDevices = 8;
export const kShift = 2;

// A place where the recorder holds two different IDs carries both until the user has chosen.
const kMark = '\u0001';
const both = (lens, alarm) => kMark + lens + kMark + alarm;
export const isOpen = (value) => value.startsWith(kMark);
export const candidates = (value) => value.split(kMark).slice(1);

export const placeName = (k) => `place${k}`;

// IDs per sub-device out of an exported configuration: [{lens, alarm}], missing ones empty; null
// without the section.
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

// The value of each place for a recorder with that many channels.
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

// IDs of sub-devices beyond the channels: a save writes over them, so the page shows them.
export function hiddenIds(ids, channels) {
  return ids.map(({lens, alarm}, k) => ({k, lens, alarm}))
      .filter(({k, lens, alarm}) => k >= rowCount(channels) && (lens || alarm));
}
