import assert from 'node:assert/strict';
import test from 'node:test';
import {gbFields, idPath} from '../../src/model/gb28181';
import type {Read} from '../../src/model/fields';

const read = (settings: [string, string][] | null, count = ''): Read =>
  ({reply: {iVideoChnCount: count}, settings: settings && new Map(settings)} as Read);

const channelsOf = (fields: ReturnType<typeof gbFields>) =>
  fields.filter(({path}) => path.includes('SUBDEVID_'))
      .map(({path, labelValues}) => [path, labelValues && labelValues.channel]);

test('each channel has a lens and an alarm input, counted from 1', () => {
  const ids = (k: number) =>
    ['strFD_LensId', 'strFD_AlarmInId'].map((name) => [idPath(k, name), k + 1]);
  assert.deepEqual(channelsOf(gbFields(read([['stVersion/VideoCnt', '3']]))),
      [...ids(0), ...ids(1), ...ids(2)]);
});

test('channels are those that are named or counted, eight at most, one without a file', () => {
  const rows: [[string, string][] | null, string, number][] = [
    [null, '8', 1], [[], '', 1], [[], '4', 4], [[], '9', 8],
    [[[idPath(4, 'strFD_LensId'), 'x']], '2', 5], [[[idPath(7, 'strFD_AlarmInId'), '']], '', 8],
    [[[idPath(8, 'strFD_LensId'), 'x']], '', 1],
  ];
  for (const [settings, count, channels] of rows)
    assert.equal(channelsOf(gbFields(read(settings, count))).length, 2 * channels,
        `${settings} ${count}`);
});
