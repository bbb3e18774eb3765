// The status below a form: the step of a save, its result, other events.
import type {SaveEnd} from '../../model/save';
import type {Known, Note, SectionState, Step} from '../../state/store';
import {sentences, t} from '../../words';
import {ChangeTable} from './ChangeTable';
import {secondsSince, useNow} from './hooks';
import {Notice, type Tone} from './Notice';

const kSteps: readonly Step[] = ['session', 'compare', 'sending', 'reading'];
const kTones: Partial<Record<SaveEnd, Tone>> =
    {applied: 'good', unchanged: 'info', moved: 'good', partly: 'warn'};
const kRestartAfter = 1;  // seconds: an accepted set takes longer than that

export function StepNote({step}: {step: NonNullable<SectionState['step']>}) {
  const seconds = secondsSince(step.since, useNow(true));
  const name = step.name === 'sending' && seconds >= kRestartAfter ? 'restarting' : step.name;
  const number = kSteps.indexOf(step.name) + 1;
  const count = number ? t('step.count', {number, of: kSteps.length}) : '';
  const since = seconds ? t('step.seconds', {seconds}) : '';
  const text = sentences(count, t(`step.${name}`, {where: step.where || ''}));
  // Seconds are not read out, each anew.
  const rest = sentences(text, since).slice(text.length);
  return <Notice tone="busy" text={<>{text}<span aria-hidden="true">{rest}</span></>}>
    <progress aria-label={t('step.progress')} max={kSteps.length} value={number || undefined} />
  </Notice>;
}

const kTold = new Set<SaveEnd>(['applied', 'partly', 'unchanged', 'refused', 'moved']);

export function endText({end, known}: {end: SaveEnd; known: Known}): string {
  if (kTold.has(end)) return t(`end.${end}`);
  if (known !== 'unsent') return sentences(t(`end.${end}`), t(`known.${known}`));
  const why = end === 'deviceSilent' || end === 'serviceSilent' ? end : 'lost';
  return sentences(t(`load.${why}`), t('note.unsent'));
}

const kPlain = {invalid: 'bad', conflict: 'warn', draft: 'info', arrived: 'good', kept: 'bad',
  unsent: 'info'} as const;

export function NoteLine({note}: {note: Note | null}) {
  if (!note) return <Notice />;
  switch (note.kind) {
    case 'end':
      return <Notice tone={kTones[note.end] || 'bad'} name={note.end} text={endText(note)}>
        {note.rows.length > 0 &&
          <ChangeTable rows={note.rows} from="change.to" to="change.from" />}
      </Notice>;
    case 'elsewhere':
      return <Notice tone="warn" name={note.kind} text={t('note.elsewhere')}>
        <ChangeTable rows={note.rows} from="line.before" to="change.from" />
        <p>{t('note.elsewhereNext')}</p>
      </Notice>;
    case 'movedSilent':
      return <Notice tone="warn" name={note.kind} text={t('note.movedSilent')}>
        <a href={note.where}>{note.where}</a>
      </Notice>;
    default:
      return <Notice tone={kPlain[note.kind]} name={note.kind} text={t(`note.${note.kind}`)} />;
  }
}
