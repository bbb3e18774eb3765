// A template in the making: settings of this recorder that others are to have, too. What names this
// recorder, and what is secret, is added one by one.
import {useState} from 'preact/hooks';
import type {Group} from '../../model/everyField';
import type {Field} from '../../model/fields';
import {choosePaths, chosenSettings, nameTemplate, saveTemplate, transferable}
  from '../../state/fleet';
import {found} from '../../state/everySetting';
import {get, sectionState} from '../../state/store';
import {t} from '../../words';
import {Card} from '../parts/Card';
import {Notice} from '../parts/Notice';
import {offer} from '../parts/offer';
import {Failed, Skeleton} from '../parts/SectionForm';
import {display, idOf, wordOf} from '../parts/words';
import {Find, Groups} from '../settings/Groups';

const byHand = ({apart, kind}: Field) => apart || kind === 'secret';

function Row({field}: {field: Field}) {
  const {path, kind, apart} = field;
  const id = `take-${idOf(path)}`;
  return <div class="take" data-setting={path}>
    <input type="checkbox" class="tick" id={id} checked={get().fleet.chosen.has(path)}
      onClick={(event) => choosePaths([path], event.currentTarget.checked)} />
    <label for={id}>{wordOf(field.label)}</label>
    <span>{display(field, sectionState('all').held[path])}</span>
    {apart && <span class="tag">{t('import.identity')}</span>}
    {kind === 'secret' && <span class="tag">{t('template.secret')}</span>}
  </div>;
}

// Ticks a section as far as that is done for many at once.
function Mark({name, fields}: Group) {
  const {chosen} = get().fleet;
  const many = fields.filter((field) => !byHand(field)).map(({path}) => path);
  const count = fields.filter(({path}) => chosen.has(path)).length;
  const all = many.length > 0 && many.every((path) => chosen.has(path));
  const id = `take-all-${name}`;
  return <span class="all">
    {count > 0 && <b class="hint">{t('template.some', {count})}</b>}
    <input type="checkbox" class="tick" id={id} checked={all}
      onClick={() => choosePaths(all ? fields.map(({path}) => path) : many, !all)} />
    <label for={id}>{t('template.all')}</label>
  </span>;
}

function Saved() {
  const {saved} = get().fleet;
  if (!saved) return <Notice />;
  return 'name' in saved
    ? <Notice tone="good" name="saved" text={t('export.done', {name: saved.name})} />
    : <Notice tone="bad" name="long" text={t('import.long', {used: saved.used})} />;
}

// What the file says of this recorder, before it goes to others.
function Told() {
  const {fields} = sectionState('all');
  const {chosen} = get().fleet;
  const apart = fields.filter((field) => chosen.has(field.path) && byHand(field)).length;
  return <>
    <p class="chosen">{t('template.count', {count: chosenSettings().length})}</p>
    {apart > 0 && <div class="notice" data-apart={apart}>
      <p>{t('template.apart', {count: apart})}</p></div>}
  </>;
}

function Chooser() {
  const [query, setQuery] = useState('');
  const {fields, held} = sectionState('all');
  const {name} = get().fleet;
  const all = fields.filter(transferable);
  const some = found(all, held, query);
  const none = !chosenSettings().length;
  return <>
    <Find id="find-template" count={some.length} all={all.length} query={query}
      onQuery={setQuery} />
    <div class="list"><Groups fields={some} query={query}
      row={(field) => <Row key={field.path} field={field} />}
      mark={(group) => <Mark {...group} />} /></div>
    <Told />
    <div class="field"><label class="label" for="template-name">{t('template.name')}</label>
      <input id="template-name" value={name} maxLength={40} autoComplete="off"
        onInput={(event) => nameTemplate(event.currentTarget.value)} /></div>
    <Saved />
    <div class="actions">
      <button type="button" class="main" aria-disabled={none || undefined}
        onClick={() => { if (!none) saveTemplate(offer); }}>{t('template.save')}</button>
    </div>
  </>;
}

export function Template() {
  const {fields, loading} = sectionState('all');
  return <Card id="template" title="section.template" icon="fleet" wide>
    <p class="hint">{t('template.help')}</p>
    {fields.length ? <Chooser />
      : loading.state === 'failed' ? <Failed id="all" /> : <Skeleton rows={4} />}
  </Card>;
}
