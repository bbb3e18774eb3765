// The last half hour as small plots. One moment is looked at in all of them: the one under the
// pointer, the one that the keys have gone to, or the latest.
import {useMemo, useState} from 'preact/hooks';
import {axisOf, kPlots, middleOf, stopAt, stopsOf, type Plot, type Stop} from '../model/history';
import {steadyNow} from '../state/history';
import {get} from '../state/store';
import {spoken, t} from '../words';
import {Card} from './parts/Card';
import {Trace, type Axis} from './parts/Trace';
import {readingText, silencesText, stopText, summaryOf, whenText} from './parts/traces';

const kMinuteMs = 60000;

type Look = (at: number | null) => void;
interface Props {
  plot: Plot;
  stops: readonly Stop[];
  axis: Axis;
  stop: Stop | undefined;
  mark: number | undefined;
  look: Look;
}

// The stop that a key leads to.
const kKeys: Record<string, (stops: readonly Stop[], i: number) => Stop | undefined> = {
  ArrowLeft: (stops, i) => stops[i - 1],
  ArrowDown: (stops, i) => stops[i - 1],
  ArrowRight: (stops, i) => stops[i + 1],
  ArrowUp: (stops, i) => stops[i + 1],
  PageDown: (stops, i) => stopAt(stops, middleOf(stops[i]!) - kMinuteMs),
  PageUp: (stops, i) => stopAt(stops, middleOf(stops[i]!) + kMinuteMs),
  Home: (stops) => stops[0],
  End: (stops) => stops[stops.length - 1],
};

function moved(event: KeyboardEvent, stops: readonly Stop[], stop: Stop | undefined): Stop | null {
  const key = kKeys[event.key];
  if (!key || !stop || event.altKey || event.ctrlKey || event.metaKey) return null;
  event.preventDefault();  // the page would scroll
  return key(stops, stops.indexOf(stop)) || null;
}

function PlotView({plot, stops, axis, stop, mark, look}: Props) {
  const {id, rows} = plot;
  const title = t(`history.${id}`);
  const summary = useMemo(() => summaryOf(plot, stops).join(' '), [stops, spoken()]);
  const point = (event: MouseEvent) => {
    const {left, width} = (event.currentTarget as HTMLElement).getBoundingClientRect();
    look(axis.from + (event.clientX - left) / width * (axis.to - axis.from));
  };
  // A window that only went behind another one is not left, nor is a plot for the pointer's sake.
  const leave = () => {
    const {activeElement} = document;
    if (!activeElement || !activeElement.hasAttribute('data-plot')) look(null);
  };
  const press = (event: KeyboardEvent) => {
    const next = moved(event, stops, stop);
    if (next) look(middleOf(next));
  };
  return <div>
    <h3>{title}</h3>
    <div class="plot" data-plot={id} role="slider" tabIndex={0} aria-label={title}
      aria-describedby={`plot-${id}`} aria-valuemin={0} aria-valuemax={stops.length - 1}
      aria-valuenow={stop ? stops.indexOf(stop) : 0} aria-valuetext={stopText(plot, stop)}
      onFocus={() => { if (stop) look(middleOf(stop)); }} onBlur={leave}
      onKeyDown={press} onMouseMove={point} onMouseLeave={leave}>
      {rows.map((line) => <Trace key={line.label} line={line} stops={stops} axis={axis}
        mark={mark} flat={id === 'links'} text={readingText(line, stop)} />)}
      <p class="axis">
        <span>{t('history.ago', {minutes: Math.round((axis.to - axis.from) / kMinuteMs)})}</span>
        <span>{t('history.now')}</span>
      </p>
    </div>
    <p class="unseen" id={`plot-${id}`}>{summary}</p>
  </div>;
}

export function History() {
  const {history, health} = get();
  const now = useMemo(steadyNow, [history, health]);
  const stops = useMemo(() => stopsOf(history, now), [history, now]);
  const axis = useMemo(() => ({from: now - axisOf(stops, now), to: now}), [stops, now]);
  const [at, look] = useState<number | null>(null);
  const stop = at === null ? stops[stops.length - 1] : stopAt(stops, at);
  const mark = at === null || !stop ? undefined : middleOf(stop);
  return <Card id="history" title="section.history" icon="status">
    <p class="hint">{t('history.help')}</p>
    <p class="when">{whenText(stop)}</p>
    <div class="plots">{kPlots.map((plot) => <PlotView key={plot.id} plot={plot} stops={stops}
      axis={axis} stop={stop} mark={mark} look={look} />)}</div>
    <p class="unseen">{silencesText(stops)}</p>
  </Card>;
}
