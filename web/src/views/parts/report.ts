// A report for a support mail: what the status page knows, in its words. Settings have no place in
// it, and what names a subscriber stays out, so that nothing secret can get into it.
import {clockText} from '../../model/clock';
import {kPlots, stopsOf} from '../../model/history';
import {kCards, kSummary, shownOf, type Row} from '../../model/status';
import type {Values} from '../../model/fields';
import {steadyNow} from '../../state/history';
import {ownBuild} from '../../state/session';
import {get, type Health} from '../../state/store';
import {t} from '../../words';
import {endText} from './SectionNote';
import {textOf} from './shown';
import {silencesText, summaryOf} from './traces';

// As long as the number of a module or a SIM card; some modules tell theirs among other things.
const kSubscriber = /\d{15,}/g;

const line = (name: string, text: string) =>
  `${name}: ${text.replace(/\s+/g, ' ').replace(kSubscriber, '…')}`;

const facts = (rows: readonly Row[], values: Values) =>
  rows.filter(({personal, unless}) => !personal && !(unless && unless(values)))
      .map((row) => line(t(row.label), textOf(shownOf(row, values))));

const healthText = ({state}: Health) =>
  state === 'answers' ? t('login.answers') : t(`health.${state}`);

function head(): string[] {
  const now = new Date();
  const {userAgent, language} = navigator;
  return [
    t('report.title', {time: clockText(now), utc: now.toISOString()}),
    line(t('nav'), t('report.build', {origin: location.origin, build: ownBuild()})),
    line(t('report.browser'), `${userAgent}, ${language}, ${innerWidth} x ${innerHeight}`),
    healthText(get().health),
  ];
}

function statusLines(): string[] {
  const {status} = get();
  if (!status) return [];
  const {at, values} = status;
  return [
    t('status.moment', {time: clockText(new Date(at))}),
    ...facts(kSummary, values),
    ...kCards.reduce<string[]>((lines, [id, rows]) =>
      [...lines, '', t(`section.${id}`), ...facts(rows, values)], []),
  ];
}

function historyLines(): string[] {
  const stops = stopsOf(get().history, steadyNow());
  return kPlots.reduce<string[]>((lines, plot) => [...lines, ...summaryOf(plot, stops)],
      [silencesText(stops)]);
}

function endLines(): string[] {
  const {ends} = get();
  if (!ends.length) return [t('report.none')];
  return ends.map(({at, title, end, known}) =>
    line(`${clockText(new Date(at))} ${t(title)}`, endText({end, known})));
}

export const reportText = () => [
  ...head(), '', ...statusLines(), '',
  t('section.history'), ...historyLines(), '',
  t('report.ends'), ...endLines(), '',
].join('\n');
