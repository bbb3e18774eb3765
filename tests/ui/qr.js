// Reads a QR code with a decoder that has nothing to do with the pages.
import assert from 'node:assert/strict';
import {spawnSync} from 'node:child_process';

const kNothingFound = 4;

// The text of the code in a picture; null where there is none.
export function decode(picture) {
  const {status, stdout, stderr} = spawnSync('zbarimg', ['--quiet', '--raw', '-Sbinary', 'png:-'],
      {input: picture});
  if (status === kNothingFound) return null;
  assert.equal(status, 0, String(stderr));
  return stdout.toString('utf8').replace(/\n$/, '');
}
