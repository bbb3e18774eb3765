import assert from 'node:assert/strict';
import test from 'node:test';
import {placeLink, placeText, readPlace} from '../../src/model/position';

test('a position is read as receivers write it', () => {
  const rows: [string, string][] = [
    ['N22.543096 E114.057865', '22.543096,114.057865'],
    ['113.9E,22.5N', '22.5,113.9'],
    ['22.5N 113.9E', '22.5,113.9'],
    ['S33.8675,W151.2070', '-33.8675,-151.207'],
    ['w70.5 s0', '0,-70.5'],
    [' N22.5°E114.1° ', '22.5,114.1'],
    ['2232.5858N,11403.4719E', '22.543097,114.057865'],
    ['0030.0000S,00006.0000W', '-0.5,-0.1'],
    ['22.5 114.1', '22.5,114.1'],
    ['-114.1,-22.5', '-22.5,-114.1'],
    ['N90 E180', '90,180'],
  ];
  for (const [text, decimal] of rows) {
    const place = readPlace(text);
    assert.equal(place && placeText(place), decimal, text);
    assert.equal(place && placeLink(place), `geo:${decimal}`, text);
  }
});

test('what is no position, or not for certain which one, is none', () => {
  const rows = ['', ' ', 'no fix', '22.5', '22.5,34.5', 'N0.000000 E0.000000', '0,0', 'N91 E10',
    'N10 E181', 'N22.5 S10', 'E1 W2', 'N22.5 E114.1 extra', '2299.0N,11403.0E', 'N1e1 E2',
    '95,100', '<b>N1 E2</b>', 'N22.5', '113.9E'];
  for (const text of rows) assert.equal(readPlace(text), null, text);
});
