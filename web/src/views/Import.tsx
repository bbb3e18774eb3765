// The import of a file: compared in words, grouped by section, rows can be left out.
import {identifies, sectionOf, type ImportRow} from '../model/import';
import {isSecret} from '../recorder/config';
import type {FileError} from '../recorder/config';
import {chooseFile, chooseRows, importRows, restoreImported} from '../state/transfer';
import {get} from '../state/store';
import {t, type WordKey} from '../words';
import {attributeWords, itemWords, sectionWords} from '../words/settings';
import {Icon} from './parts/Icon';
import {Notice} from './parts/Notice';
import {NoteLine, StepNote} from './parts/SectionNote';

const shown = (path: string, value: string | null) =>
  value === null ? t('value.absent') : !value ? t('value.none')
    : isSecret(path) ? t('value.hidden') : value;

const nameOf = (path: string) => [itemWords(path), attributeWords(path)].filter(Boolean).join(' · ');

// What the recorder took otherwise than it was sent.
const Held = ({rows}: {rows: ImportRow[]}) => <table class="changes">
  <thead><tr>
    <th scope="col">{t('change.setting')}</th>
    <th scope="col">{t('import.file')}</th><th scope="col">{t('import.now')}</th>
  </tr></thead>
  <tbody>{rows.map(({path, from, to}) => <tr key={path} data-change={path}>
    <th scope="row" title={path}>{sectionWords(sectionOf(path))} · {nameOf(path)}</th>
    <td>{shown(path, from)}</td><td>{shown(path, to)}</td>
  </tr>)}</tbody>
</table>;

const Row = ({row}: {row: ImportRow}) => {
  const {path, from, to, chosen} = row;
  const id = `import-${path.replace(/\W/g, '-')}`;
  return <tr data-setting={path} class={chosen ? '' : 'out'}>
    <td><input type="checkbox" id={id} checked={chosen} class="tick"
      onClick={(event) => chooseRows([path], event.currentTarget.checked)} /></td>
    <th scope="row"><label for={id} title={path}>{nameOf(path)}</label>
      {identifies(path) && <span class="tag">{t('import.identity')}</span>}</th>
    <td data-label={t('import.now')}>{shown(path, from)}</td>
    <td data-label={t('import.file')}>{shown(path, to)}</td>
  </tr>;
};

function Group({name, rows}: {name: string; rows: ImportRow[]}) {
  const all = rows.every(({chosen}) => chosen);
  const id = `group-${name}`;
  return <tbody data-group={name}>
    <tr class="group">
      <td><input type="checkbox" id={id} class="tick" checked={all}
        onClick={() => chooseRows(rows.map(({path}) => path), !all)} /></td>
      <th scope="rowgroup" colSpan={3}><label for={id}>{sectionWords(name)}</label></th>
    </tr>
    {rows.map((row) => <Row key={row.path} row={row} />)}
  </tbody>;
}

function Rows({rows}: {rows: ImportRow[]}) {
  const groups = [...new Set(rows.map(({path}) => sectionOf(path)))];
  return <div class="scroll" tabIndex={0} role="region" aria-label={t('section.import')}>
    <table class="changes">
      <thead><tr>
        <th scope="col"><span class="unseen">{t('import.take')}</span></th>
        <th scope="col">{t('change.setting')}</th>
        <th scope="col">{t('import.now')}</th><th scope="col">{t('import.file')}</th>
      </tr></thead>
      {groups.map((name) => <Group key={name} name={name}
        rows={rows.filter(({path}) => sectionOf(path) === name)} />)}
    </table>
  </div>;
}

function errorText(error: FileError | {error: 'read'; why: string}): string {
  switch (error.error) {
    case 'read': return t('import.read');
    case 'char': return t('import.char', {char: error.char, name: nameOf(error.name)});
    case 'long': return t('import.long', {used: error.used});
    case 'repeated': return t('import.repeated', {name: error.name});
    case 'cut': case 'broken': return t(`import.${error.error}`, {line: error.line});
    default: return t(`import.${error.error}` as WordKey);
  }
}

function Progress() {
  const {step, end, error, moving} = get().transfer;
  if (moving) return <NoteLine
    note={{kind: moving.silent ? 'movedSilent' : 'moving', where: moving.where}} />;
  if (step) return <StepNote step={step} />;
  if (error) return <Notice tone="bad" text={errorText(error)} />;
  if (end && end.end === 'unchanged')
    return <Notice tone="info" name="unchanged" text={t('import.same')} />;
  return <NoteLine note={end && {kind: 'end', end: end.end, rows: [], known: end.known}} />;
}

const pick = async (event: {currentTarget: HTMLInputElement}) => {
  const {files} = event.currentTarget;
  const file = files && files[0];
  if (!file) return;
  const bytes = await new Response(file).arrayBuffer();
  await chooseFile(file.name, new Uint8Array(bytes));
};

export function Import() {
  const {name, rows, foreign, step, end, former} = get().transfer;
  const count = rows.filter(({chosen}) => chosen).length;
  const held = end && end.end === 'partly' ? end.rows : [];
  return <section class="card wide" data-section="import" aria-labelledby="import-title">
    <h2 id="import-title"><Icon name="maintenance" />{t('section.import')}</h2>
    <p class="hint">{t('import.help')}</p>
    <label class="file">
      <input type="file" accept=".xml,text/xml" onChange={(event) => void pick(event)} />
      <span class="button">{t('import.choose')}</span>
      <span class="hint">{name || t('import.none')}</span>
    </label>
    {foreign && <div class="notice" data-foreign={foreign}>
      <p>{t('import.foreignNumber', {number: foreign})}</p></div>}
    {rows.length > 0 && <><h3>{t('import.count', {count: rows.length})}</h3><Rows rows={rows} /></>}
    <Progress />
    {held.length > 0 && <Held rows={held} />}
    <div class="actions">
      {rows.length > 0 && <button type="button" class="main" onClick={() => void importRows()}
        aria-disabled={Boolean(step) || !count || undefined}>
        {t('import.goCount', {count})}</button>}
      {former && !rows.length && !step && <button type="button" class="quiet" data-action="restore"
        onClick={() => void restoreImported()}>{t('restore')}</button>}
    </div>
  </section>;
}
