// A field with label, help, limit, error and, if somebody else has changed it, too, the choice.
import {storedLength, wireLength} from '../../recorder/gbk';
import type {Field} from '../../model/fields';
import type {SectionId} from '../../model/sections';
import {resolveConflict, type} from '../../state/editing';
import {namesOf} from '../../state/labels';
import {sectionState} from '../../state/store';
import {sentences, t} from '../../words';
import {Control} from './Control';
import {display, idOf, labelOf, wordOf} from './words';

const kNearlyFull = 0.8;

// A form stays quiet about widths, which its counter tells in time.
export function limitText(section: SectionId, field: Field): string {
  const {kind, path, min, max, least = 0} = field;
  if (namesOf(path).length) return '';
  if (kind === 'number' && min !== undefined && max !== undefined)
    return t('limit.range', {min, max});
  const most = field.most || field.bytes;
  if (!most) return '';
  if (least > 1) return t('limit.between', {least, most});
  return section === 'all' ? t('limit.most', {most}) : '';
}

// The byte count is shown only when the field is nearly full.
function Counter({field, value}: {field: Field; value: string}) {
  const limit = field.most || field.bytes;
  if (!limit) return null;
  const used = field.entities ? wireLength(value) : storedLength(value);
  if (used < limit * kNearlyFull) return null;
  return <span class={used > limit ? 'count over' : 'count'}>
    {t('limit.count', {used, limit})}
  </span>;
}

function Conflict({section, field, held}: {section: SectionId; field: Field; held: string}) {
  const settle = (mine: boolean) => () => resolveConflict(section, field.path, mine);
  return <div class="conflict" role="group" aria-label={t('conflict.title')}>
    <p>{t('conflict.text', {value: display(field, held)})}</p>
    <div class="actions">
      <button type="button" data-take="theirs" onClick={settle(false)}>
        {t('conflict.theirs')}
      </button>
      <button type="button" data-take="mine" onClick={settle(true)}>{t('conflict.mine')}</button>
    </div>
  </div>;
}

interface Props { section: SectionId; field: Field; bare?: boolean }

export function FieldRow({section, field, bare}: Props) {
  const state = sectionState(section);
  const {path} = field;
  const value = field.live || path in state.typed ? state.typed[path] : state.held[path];
  const id = idOf(path);
  const problem = state.problems[path];
  const conflict = state.conflicts[path];
  const help = !bare && sentences(field.help && t(field.help), limitText(section, field));
  const changed = path in state.typed;
  return <div class={`field ${field.kind}${changed ? ' changed' : ''}`} data-field={path}>
    {bare ? null : <label class="label" for={id}>{wordOf(field.label)}</label>}
    <Control field={field} id={id} value={value} held={state.held[path] || ''}
      name={bare ? labelOf(field) : undefined} invalid={Boolean(problem)} busy={Boolean(state.step)}
      describedBy={`${id}-hint ${id}-error`} onValue={(next) => type(section, field, next)} />
    <p class="hint" id={`${id}-hint`}>
      {help && <span>{help}</span>}
      {value !== undefined && <Counter field={field} value={value} />}
    </p>
    <p class="error" id={`${id}-error`}>{problem && t(problem.key, problem.values)}</p>
    {conflict !== undefined && <Conflict section={section} field={field} held={conflict} />}
  </div>;
}
