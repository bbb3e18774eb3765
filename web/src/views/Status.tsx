// Status: what the recorder is doing. What is wrong stands out; what is no longer known is grey.
import {kBars, kCards, kSummary, shownOf, type CardId, type Row, type Shown} from '../model/status';
import {timeOfDay} from '../model/clock';
import type {Values} from '../model/fields';
import {get} from '../state/store';
import {t} from '../words';
import {Card, Fact} from './parts/Card';
import type {IconName} from './parts/Icon';
import {Skeleton} from './parts/SectionForm';

const kIcons: Record<CardId, IconName> = {gps: 'pin', mobile: 'mobile', wifi: 'network',
  platforms: 'platforms', disks: 'disk', io: 'plug', versions: 'chip'};

const Bars = ({bars}: {bars: number}) => <span class="bars" aria-hidden="true">
  {Array.from({length: kBars}, (_, i) => <i key={i} class={i < bars ? 'full' : ''} />)}
</span>;

const Inputs = ({states}: {states: boolean[]}) => <ul class="inputs">
  {states.map((on, i) => <li key={i} class={on ? 'full' : ''}>
    <b>{i + 1}</b> {t(on ? 'on' : 'off')}
  </li>)}
</ul>;

function Disk({text, used}: {text: string; used: number | null}) {
  const [whole = '', free = ''] = text.split('/');
  const percent = Math.round((used || 0) * 100);
  return <>
    <meter class="disk" min={0} max={100} value={percent} aria-hidden="true" />
    <span>{t('disk.words', {whole: whole.trim(), free: free.trim(), percent})}</span>
  </>;
}

function Value({shown}: {shown: Shown}) {
  switch (shown.kind) {
    case 'text': return <>{shown.text || t('value.none')}</>;
    case 'words': return <>{t(shown.words)}</>;
    case 'signal': return <><Bars bars={shown.bars} />
      {t('status.signal', {bars: shown.bars, most: kBars, value: shown.value})}</>;
    case 'disk': return <Disk text={shown.text} used={shown.used} />;
    case 'inputs': return <Inputs states={shown.states} />;
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
  const {status, health} = get();
  if (!status) return <Skeleton rows={6} />;
  const fresh = health.state === 'answers' || health.state === 'restarting';
  const time = timeOfDay(new Date(status.at));
  return <div class="live">
    <Rows rows={kSummary} values={status.values} kind="summary" />
    <div class="cards">{kCards.map(([id, rows]) =>
      <Card key={id} id={id} title={`section.${id}` as const} icon={kIcons[id]}>
        <Rows rows={rows} values={status.values} kind="facts" />
      </Card>)}</div>
    <p class="moment">{t(fresh ? 'status.moment' : 'status.stale', {time})}</p>
  </div>;
}
