// Settings by section, folded, so that a page of thousands stays quick: a section shows its rows
// when it is opened or when a search finds something in it, and a part of them at first.
import type {ComponentChildren} from 'preact';
import {useRef, useState} from 'preact/hooks';
import {groupsOf, type Group} from '../../model/everyField';
import type {Field} from '../../model/fields';
import {t} from '../../words';
import {sectionWords} from '../../words/settings';

const kFirst = 40;  // rows of a section
const kFound = 20;  // rows of all sections together while searching
const kMore = 100;

interface Props {
  fields: Field[];  // what the query finds, and what is marked
  marked?: Set<string>;  // paths of rows that are drawn in any case
  query: string;
  row: (field: Field) => ComponentChildren;
  mark: (group: Group) => ComponentChildren;  // in the section's heading
}

interface SectionProps extends Pick<Props, 'row' | 'mark'> {
  group: Group;
  open: boolean;
  drawn: Field[];
  onToggle: () => void;
  onMore: () => void;
}

function Section({group, open, drawn, row, mark, onToggle, onMore}: SectionProps) {
  const {name, fields} = group;
  const rest = fields.length - drawn.length;
  return <section class="group" data-group={name}>
    <div class="fold">
      <h3><button type="button" aria-expanded={open} onClick={onToggle}>
        <span>{sectionWords(name)}</span> <span class="raw"><code>{name}</code>
          <span class="hint">{fields.length}</span></span>
      </button></h3>
      {mark(group)}
    </div>
    {drawn.length > 0 && <div class="settings">{drawn.map(row)}</div>}
    {open && rest > 0 && <button type="button" class="quiet" data-action="more"
      onClick={onMore}>{t('all.more', {count: rest})}</button>}
  </section>;
}

// How many rows each section of a search may show, so that together they stay few.
function shares(groups: Group[], searching: boolean): number[] {
  let left = kFound;
  return groups.map(({fields}) => {
    const share = searching ? Math.min(left, fields.length) : kFirst;
    if (searching) left -= share;
    return share;
  });
}

const kNone = new Set<string>();

// What is wrong stays in sight while it is mended: until the next search, or a fold.
export function useMarked(query: string, paths: string[]): Set<string> {
  const kept = useRef({query, marked: new Set<string>()});
  if (kept.current.query !== query) kept.current = {query, marked: new Set()};
  for (const path of paths) kept.current.marked.add(path);
  return kept.current.marked;
}

export const drawnOf = ({fields}: Group, most: number, marked: Set<string>) =>
  fields.filter(({path}, i) => i < most || marked.has(path));

export function Groups({fields, query, row, mark, marked = kNone}: Props) {
  const [opened, setOpened] = useState<Record<string, boolean>>({});
  const [more, setMore] = useState<Record<string, number>>({});
  const searching = Boolean(query.trim());
  const groups = groupsOf(fields);
  const most = shares(groups, searching);
  return <>{groups.map((group, i) => {
    const key = `${group.name} ${query}`;
    const share = (most[i] || 0) + (more[key] || 0);
    const known = opened[key];
    const stands = group.fields.some(({path}) => marked.has(path));
    const open = known === undefined ? stands || (searching && share > 0) : known;
    const toggle = () => {
      for (const {path} of group.fields) marked.delete(path);
      setOpened({...opened, [key]: !open});
    };
    return <Section key={group.name} group={group} open={open}
      drawn={drawnOf(group, open ? share : 0, marked)} row={row} mark={mark} onToggle={toggle}
      onMore={() => setMore({...more, [key]: (more[key] || 0) + kMore})} />;
  })}</>;
}

interface FindProps { id: string; count: number; all: number; query: string;
  onQuery: (query: string) => void }

export const Find = ({id, count, all, query, onQuery}: FindProps) => <div class="field find">
  <label class="label" for={id}>{t('all.find')}</label>
  <input id={id} type="search" value={query} autoComplete="off" spellcheck={false}
    onInput={(event) => onQuery(event.currentTarget.value)} />
  <p class="hint" role="status">{t('all.count', {count, all})}</p>
</div>;
