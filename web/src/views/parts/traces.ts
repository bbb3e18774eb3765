// The last half hour in words.
import {timeOfDay} from '../../model/clock';
import {rangeOf, shownAt, type Plot, type Stop} from '../../model/history';
import {steadyNow} from '../../state/history';
import {t} from '../../words';
import {textOf} from './shown';

// The time of day of a moment, by the clock as it stands now.
const clockAt = (at: number) => timeOfDay(new Date(Date.now() - (steadyNow() - at)));

export function whenText(stop: Stop | undefined): string {
  if (!stop) return '';
  const from = clockAt(stop.from);
  return stop.kind === 'reading' ? t('history.at', {time: from})
    : t(`history.${stop.kind}`, {from, to: clockAt(stop.to)});
}

export function readingText(line: Plot['rows'][0], stop: Stop | undefined): string {
  const shown = shownAt(line, stop);
  return shown ? textOf(shown) : t('value.none');
}

export const stopText = ({rows}: Plot, stop: Stop | undefined) => [whenText(stop),
  ...rows.map((line) => `${t(line.label)}: ${readingText(line, stop)}`)].join('; ');

// A sentence for each line of a plot that was ever read.
export function summaryOf({id, rows}: Plot, stops: readonly Stop[]): string[] {
  const texts: string[] = [];
  for (const line of rows) {
    const range = rangeOf(line, stops);
    const name = t(line.label);
    if (!range) continue;
    const [least, most] = [textOf(range.least), textOf(range.most)];
    if (least === most) texts.push(`${name}: ${most}`);
    else if (id === 'links') texts.push(t('history.falls', {name, count: range.falls}));
    else texts.push(t('history.range', {name, least, most}));
  }
  return texts;
}

export function silencesText(stops: readonly Stop[]): string {
  const silent = stops.filter(({kind}) => kind === 'silent');
  const ms = silent.reduce((sum, {from, to}) => sum + to - from, 0);
  return t('history.silences', {count: silent.length, seconds: Math.round(ms / 1000)});
}
