// A card that takes a file to the recorder. A file belongs to the page on which it was chosen.
import type {ComponentChildren} from 'preact';
import {get, type Purpose} from '../../state/store';
import {t, type WordKey} from '../../words';
import {Card} from './Card';
import {Held, Pick as PickFile, Progress, Rows} from './FileRows';

interface Props {
  id: 'import' | 'apply';
  purpose: Purpose;
  choose: WordKey;
  go: WordKey;
  onChosen?: () => void;
  onGo: () => Promise<void>;
  onRestore: () => Promise<void>;
  children?: ComponentChildren;
}

function Actions({go, onGo, onRestore}: Pick<Props, 'go' | 'onGo' | 'onRestore'>) {
  const {rows, step, former} = get().transfer;
  const count = rows.filter(({chosen}) => chosen).length;
  return <div class="actions">
    {rows.length > 0 && <button type="button" class="main" onClick={() => void onGo()}
      aria-disabled={Boolean(step) || !count || undefined}>{t(go, {count})}</button>}
    {former && !rows.length && !step && <button type="button" class="quiet" data-action="restore"
      onClick={() => void onRestore()}>{t('restore')}</button>}
  </div>;
}

function Opened({children, ...actions}: Omit<Props, 'id' | 'purpose' | 'choose'>) {
  const {rows, foreign, end} = get().transfer;
  return <>
    {foreign && <div class="notice" data-foreign={foreign}>
      <p>{t('import.foreignNumber', {number: foreign})}</p></div>}
    {rows.length > 0 && <><h3>{t('import.count', {count: rows.length})}</h3><Rows rows={rows} /></>}
    <Progress />
    {children || end && end.end === 'partly' && <Held rows={end.rows} />}
    <Actions {...actions} />
  </>;
}

export function FileCard({id, purpose, choose, onChosen, ...opened}: Props) {
  const {name, purpose: whose} = get().transfer;
  const mine = whose === purpose;
  return <Card id={id} title={`section.${id}` as const} icon="maintenance" wide>
    <p class="hint">{t('import.help')}</p>
    <PickFile purpose={purpose} button={choose} name={mine ? name : null} after={onChosen} />
    {mine && <Opened {...opened} />}
  </Card>;
}
