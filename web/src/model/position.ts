// A position as receivers write it, in degrees. Letters say which number is the latitude; without
// them only a number above 90 does, as that is a longitude.
export interface Place { latitude: number; longitude: number }

const kNumber = '(\\d+(?:\\.\\d+)?)\\s*°?';
const kLetter = '([NSEW])\\s*:?\\s*';
const kGap = '\\s*[,;/]?\\s*';
const kLettersFirst = new RegExp(`^${kLetter}${kNumber}${kGap}${kLetter}${kNumber}$`, 'i');
const kLettersLast = new RegExp(`^${kNumber}\\s*([NSEW])${kGap}${kNumber}\\s*([NSEW])$`, 'i');
const kBare = /^([+-]?\d+(?:\.\d+)?)\s*[,;/\s]\s*([+-]?\d+(?:\.\d+)?)$/;
const kMostLatitude = 90;
const kMostLongitude = 180;
const kDecimals = 6;  // a tenth of a metre

// Four digits or five before the point are degrees and minutes, as satellite receivers count.
function degrees(text: string): number {
  const number = Number(text);
  if (!/^\d{4,5}(?:\.|$)/.test(text)) return number;
  const whole = Math.floor(number / 100);
  const minutes = number - whole * 100;
  return minutes < 60 ? whole + minutes / 60 : NaN;
}

const rounded = (number: number) => Number(number.toFixed(kDecimals));

// A receiver that has found nothing reports zero north and zero east.
function placeOf(latitude: number, longitude: number): Place | null {
  const inside = Math.abs(latitude) <= kMostLatitude && Math.abs(longitude) <= kMostLongitude;
  const found = latitude !== 0 || longitude !== 0;
  return inside && found ? {latitude: rounded(latitude), longitude: rounded(longitude)} : null;
}

function byLetters(a: [string, string], b: [string, string]): Place | null {
  const [north, east] = /[NS]/i.test(a[0]) ? [a, b] : [b, a];
  if (!/[NS]/i.test(north[0]) || !/[EW]/i.test(east[0])) return null;
  return placeOf(degrees(north[1]) * (/S/i.test(north[0]) ? -1 : 1),
      degrees(east[1]) * (/W/i.test(east[0]) ? -1 : 1));
}

// Null where a text is no position, or does not say for certain which one.
export function readPlace(text: string): Place | null {
  const trimmed = text.trim();
  const [, l1 = '', n1 = '', l2 = '', n2 = ''] = kLettersFirst.exec(trimmed) || [];
  if (l1) return byLetters([l1, n1], [l2, n2]);
  const [, m1 = '', k1 = '', m2 = '', k2 = ''] = kLettersLast.exec(trimmed) || [];
  if (m1) return byLetters([k1, m1], [k2, m2]);
  const [, first = '', second = ''] = kBare.exec(trimmed) || [];
  if (Math.abs(Number(second)) > kMostLatitude) return placeOf(Number(first), Number(second));
  if (Math.abs(Number(first)) > kMostLatitude) return placeOf(Number(second), Number(first));
  return null;
}

export const placeText = ({latitude, longitude}: Place) => `${latitude},${longitude}`;
export const placeLink = (place: Place) => `geo:${placeText(place)}`;
