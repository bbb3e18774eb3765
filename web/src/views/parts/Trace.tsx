// One line of a plot: its name, what it shows at the moment that is looked at, and its course.
import {useMemo} from 'preact/hooks';
import {piecesOf, type Point, type Stop} from '../../model/history';
import type {Row} from '../../model/status';
import {t} from '../../words';

export interface Axis { from: number; to: number }

const kWide = 1000;
const kHigh = 100;
const kEdge = 8;  // room for the stroke

const tenths = (number: number) => Math.round(number * 10) / 10;
const yOf = (height: number) => tenths(kHigh - kEdge - height * (kHigh - 2 * kEdge));

type X = (at: number) => number;

// A piece of one reading is a dot.
const course = (piece: Point[], x: X) => `M${piece.map(({at, height}) =>
  `${x(at)} ${yOf(height)}`).join('L')}h.1`;

// What holds for a state lasts until the next reading.
function strip(piece: Point[], x: X, state: number): string {
  return piece.map(({at, height}, i) => height !== state ? ''
    : `M${x(at)} ${kHigh / 2}H${x((piece[i + 1] || {at}).at)}h.1`).join('');
}

interface Props {
  line: Row;
  stops: readonly Stop[];
  axis: Axis;
  mark: number | undefined;
  flat: boolean;  // on and off only
  text: string;
}

function Course({line, stops, axis, flat, x}: Omit<Props, 'mark' | 'text'> & {x: X}) {
  const [up, down] = useMemo(() => {
    const pieces = piecesOf(line, stops);
    const all = (draw: (piece: Point[]) => string) => pieces.map(draw).join('');
    return flat ? [all((piece) => strip(piece, x, 1)), all((piece) => strip(piece, x, 0))]
      : [all((piece) => course(piece, x)), ''];
  }, [line, stops, axis]);
  return <><path class={flat ? 'up' : 'course'} d={up} /><path class="down" d={down} /></>;
}

export function Trace({line, stops, axis, mark, flat, text}: Props) {
  const x = (at: number) => tenths((at - axis.from) / (axis.to - axis.from) * kWide);
  return <div class={flat ? 'trace flat' : 'trace'} data-line={line.label}>
    <span>{t(line.label)}</span> <b>{text}</b>
    <svg viewBox={`0 0 ${kWide} ${kHigh}`} preserveAspectRatio="none" aria-hidden="true">
      {stops.filter(({kind}) => kind === 'silent').map(({from, to}) => <rect key={from}
        class="silent" x={x(from)} width={Math.max(1, x(to) - x(from))} height={kHigh} />)}
      <Course line={line} stops={stops} axis={axis} flat={flat} x={x} />
      {mark !== undefined && <path class="mark" d={`M${x(mark)} 0V${kHigh}`} />}
    </svg>
  </div>;
}
