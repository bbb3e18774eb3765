// The form of one section: skeleton, fields, progress, actions.
import type {ComponentChildren} from 'preact';
import {sectionById, type SectionId} from '../../model/sections';
import {discard} from '../../state/editing';
import {savePassword} from '../../state/password';
import {readAgain} from '../../state/route';
import {restoreFormer, saveSection} from '../../state/saving';
import {get, isSilent, sectionState, shownValues} from '../../state/store';
import {shownFields} from '../../state/reading';
import {t, type WordKey} from '../../words';
import {Card} from './Card';
import {FieldRow} from './FieldRow';
import type {IconName} from './Icon';
import {Notice} from './Notice';
import {NoteLine, StepNote} from './SectionNote';
import {idOf} from './words';

const Awaited = () => <Notice tone="info" text={t('load.waiting')} />;

// Nothing comes from a silent recorder, so nothing looks as if it were coming.
export function Skeleton({rows}: {rows: number}) {
  if (isSilent()) return <Awaited />;
  return <div class="skeleton" role="status" aria-label={t('loading')}>
    {Array.from({length: rows}, (_, i) => <span key={i} />)}
  </div>;
}

export function Failed({id}: {id: SectionId}) {
  const {loading, fields} = sectionState(id);
  if (loading.state !== 'failed') return null;
  if (get().health.state !== 'answers')
    return fields.length ? null : <Awaited />;
  const why = loading.why === 'dropped' || loading.why === 'refused' ? 'lost' : loading.why;
  return <Notice tone="bad" text={t(`load.${why}`)}>
    <button type="button" class="quiet" onClick={readAgain}>{t('again')}</button>
  </Notice>;
}

async function saveAndShow(id: SectionId) {
  await (id === 'password' ? savePassword() : saveSection(id));
  const {problems, conflicts} = sectionState(id);
  const [path] = Object.keys({...problems, ...conflicts});
  const input = path && document.getElementById(idOf(path));
  if (input) input.focus();
}
export const save = (id: SectionId) => void saveAndShow(id);

function Actions({id}: {id: SectionId}) {
  const state = sectionState(id);
  const busy = Boolean(state.step);
  const typed = Object.keys(state.typed).length;
  return <div class="actions">
    <button type="submit" class="main" aria-disabled={busy || undefined}>{t('save')}</button>
    {typed > 0 && !busy &&
      <button type="button" class="quiet" data-action="discard"
        onClick={() => discard(id)}>{t('discard')}</button>}
    {state.former && !typed && !busy &&
      <button type="button" class="quiet" data-action="restore"
        onClick={() => void restoreFormer(id)}>{t('restore')}</button>}
  </div>;
}

interface Props {
  id: SectionId;
  icon: IconName;
  help?: WordKey;
  rows?: number;  // of the skeleton
  layout?: () => ComponentChildren;  // otherwise a row for each field
  wide?: boolean;
}

export function SectionForm({id, icon, help, rows = 3, layout, wide}: Props) {
  const state = sectionState(id);
  const {fields, loading, step, note} = state;
  const submit = (event: Event) => { event.preventDefault(); save(id); };
  return <Card id={id} title={sectionById(id).title} icon={icon} wide={wide}>
    {help && <p class="hint">{t(help)}</p>}
    {loading.state === 'waiting' && !fields.length && <Skeleton rows={rows} />}
    {loading.state === 'failed' && <Failed id={id} />}
    {(loading.state === 'loaded' || fields.length > 0) &&
      <form noValidate autoComplete="off" onSubmit={submit}>
        <div class={`fields${layout ? '' : ' many'}`}>
          {layout ? layout() : shownFields(state, shownValues(state)).map((field) =>
            <FieldRow key={field.path} section={id} field={field} />)}
        </div>
        <div class="foot">
          {step ? <StepNote step={step} /> : <NoteLine note={note} />}
          <Actions id={id} />
        </div>
      </form>}
  </Card>;
}
