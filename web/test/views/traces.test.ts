import assert from 'node:assert/strict';
import test from 'node:test';
import {timeOfDay} from '../../src/model/clock';
import {kPlots, readingOf, stopsOf} from '../../src/model/history';
import {addWords, speak} from '../../src/words';
import {en} from '../../src/words/en';
import {login} from '../../src/words/en-login';
import {Trace} from '../../src/views/parts/Trace';
import {readingText, silencesText, stopText, summaryOf, whenText} from '../../src/views/parts/traces';
import {drawn} from './drawn';

addWords('en', {...login, ...en});
speak('en');

const kMinute = 60000;
const now = 100 * kMinute;
performance.now = () => now;
Date.now = () => Date.UTC(2026, 0, 31, 12);
const ago = (minutes: number) => timeOfDay(new Date(Date.UTC(2026, 0, 31, 12, -minutes)));

const reading = (minutes: number) => readingOf(now - minutes * kMinute,
    {ucFD_GNetExist: '1', uiFD_GNetSignal: '24', ucFD_WifiExist: '0'});
const stops = stopsOf([reading(9), {at: now - 6 * kMinute, silent: true}, reading(4),
  {at: now - 2 * kMinute, silent: true}], now);

test('times of day are reckoned from the clock as it stands now', () => {
  assert.deepEqual(stops.map(whenText), [`At ${ago(9)}`, `Not read from ${ago(9)} to ${ago(6)}`,
    `No answer from ${ago(6)} to ${ago(4)}`, `At ${ago(4)}`,
    `Not read from ${ago(4)} to ${ago(2)}`, `No answer from ${ago(2)} to ${ago(0)}`]);
  assert.equal(whenText(undefined), '');
});

test('a moment is told with what each line shows', () => {
  const [signals] = kPlots;
  assert.equal(stopText(signals!, stops[0]),
      `At ${ago(9)}; Mobile network: 4 of 5 bars (24); Wi-Fi: –`);
  assert.equal(readingText(signals!.rows[0]!, stops[2]), '–');
});

test('silences are counted and added up', () => {
  assert.equal(silencesText(stops), 'Without an answer: 2 times, 240 s together.');
  assert.equal(silencesText([{kind: 'silent', from: 0, to: 25 * kMinute}]),
      'Without an answer: 1 times, 1500 s together.');
});

test('what never changed is told as it is, as nothing was lost that was never there', () => {
  const at = (minutes: number, cms: string, signal: string) => readingOf(now - minutes * kMinute,
      {ucFD_CmsStatus: cms, ucFD_GB28181Status: '0', ucFD_GNetExist: '1', uiFD_GNetSignal: signal});
  const told = kPlots.flatMap((plot) =>
    summaryOf(plot, stopsOf([at(3, '1', '24'), at(2, '0', '12'), at(1, '1', '24')], now)));
  for (const line of ['GB28181: Not connected', 'Platform server: lost 1 times.',
    'Mobile network: 2 of 5 bars (12) to 4 of 5 bars (24).'])
    assert.ok(told.includes(line), told.join('\n'));
});

test('a state is drawn from its reading to the next one', () => {
  const at = (seconds: number, cms: string) =>
    readingOf(now - seconds * 1000, {ucFD_CmsStatus: cms});
  const [line] = kPlots[2]!.rows.filter(({label}) => label === 'platform.cms');
  const trace = drawn(Trace, {line: line!, axis: {from: now - 30000, to: now}, mark: undefined,
    stops: stopsOf([at(30, '1'), at(24, '1'), at(12, '0'), at(6, '1')], now), flat: true, text: ''});
  const paths = ['up', 'down'].map((name) => trace.all('class', name)[0]!.attributes.d);
  assert.deepEqual(paths, ['M0 50H200h.1M200 50H600h.1M800 50H800h.1', 'M600 50H800h.1']);
});
