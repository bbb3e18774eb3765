// Status: what the recorder is doing. Problems stand out; outdated values are grey.
import {timeOfDay} from '../model/clock';
import type {Values} from '../model/fields';
import {placeLink, placeText, type Place} from '../model/position';
import {kBars, kCards, kSummary, shownOf, type CardId, type Row, type Shown} from '../model/status';
import {get, isSilent} from '../state/store';
import {t} from '../words';
import {History} from './History';
import {Card, Fact} from './parts/Card';
import {CopyButton} from './parts/CopyButton';
import type {IconName} from './parts/Icon';
import {reportText} from './parts/report';
import {Skeleton} from './parts/SectionForm';
import {stateText, textOf} from './parts/shown';

const kIcons: Record<CardId, IconName> = {gps: 'pin', mobile: 'mobile', wifi: 'network',
  platforms: 'platforms', disks: 'disk', io: 'plug', versions: 'chip'};

const Bars = ({bars}: {bars: number}) => <span class="bars" aria-hidden="true">
  {Array.from({length: kBars}, (_, i) => <i key={i} class={i < bars ? 'full' : ''} />)}
</span>;

const Inputs = ({states}: {states: boolean[]}) => <ul class="inputs">
  {states.map((on, i) => <li key={i} class={on ? 'full' : ''}>
    <b>{i + 1}</b> {stateText(on)}
  </li>)}
</ul>;

const Used = ({used}: {used: number | null}) => <meter class="disk" min={0} max={100}
  value={Math.round((used || 0) * 100)} aria-hidden="true" />;

const Position = ({text, place}: {text: string; place: Place}) => <>
  {text}
  <div class="place">
    <a class="button" href={placeLink(place)}>{t('gps.open')}</a>
    <CopyButton name="copy-position" label="gps.copy" text={() => placeText(place)} />
  </div>
</>;

function Value({shown}: {shown: Shown}) {
  switch (shown.kind) {
    case 'signal': return <><Bars bars={shown.bars} />{textOf(shown)}</>;
    case 'disk': return <><Used used={shown.used} /><span>{textOf(shown)}</span></>;
    case 'inputs': return <Inputs states={shown.states} />;
    case 'place': return shown.place ? <Position text={shown.text} place={shown.place} />
      : <>{textOf(shown)}</>;
    default: return <>{textOf(shown)}</>;
  }
}

export const Rows = ({rows, values, kind}: {rows: readonly Row[]; values: Values; kind: string}) =>
  <dl class={kind}>{rows.filter(({unless}) => !unless || !unless(values)).map((row) => {
    const shown = shownOf(row, values);
    const tone = 'tone' in shown ? shown.tone : '';
    return <Fact key={row.label} id={row.keys[0]} name={t(row.label)}
      tone={`is-${shown.kind} ${tone}`.trim()}><Value shown={shown} /></Fact>;
  })}</dl>;

export function Status() {
  const {status} = get();
  if (!status) return <Skeleton rows={6} />;
  const time = timeOfDay(new Date(status.at));
  return <div class="live">
    <Rows rows={kSummary} values={status.values} kind="summary" />
    <div class="cards">{kCards.map(([id, rows]) =>
      <Card key={id} id={id} title={`section.${id}` as const} icon={kIcons[id]}>
        <Rows rows={rows} values={status.values} kind="facts" />
      </Card>)}</div>
    <History />
    <p class="moment">{t(isSilent() ? 'status.stale' : 'status.moment', {time})}</p>
    <CopyButton name="copy-report" label="report.copy" text={reportText} />
  </div>;
}
