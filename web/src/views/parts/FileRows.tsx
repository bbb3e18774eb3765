// A file against the recorder: compared in words, grouped by section, rows can be left out; and
// how its import goes and ends.
import {kSignInPassword, sectionOf, type ImportRow} from '../../model/import';
import {identifies} from '../../model/schema';
import {isSecret} from '../../recorder/config';
import {nameOf} from '../../state/labels';
import {settingName} from '../../state/names';
import {chooseFile, chooseRows} from '../../state/transfer';
import {get, type Purpose, type TransferError} from '../../state/store';
import {t, type WordKey} from '../../words';
import {sectionWords} from '../../words/settings';
import {Notice} from './Notice';
import {NoteLine, StepNote} from './SectionNote';

export const shown = (path: string, value: string | null) =>
  value === null ? t('value.absent') : !value ? t('value.none')
    : isSecret(path) ? t('value.hidden') : nameOf(path, value);

// What the recorder took otherwise than it was sent.
export const Held = ({rows}: {rows: ImportRow[]}) => <table class="changes">
  <thead><tr>
    <th scope="col">{t('change.setting')}</th>
    <th scope="col">{t('import.file')}</th><th scope="col">{t('change.from')}</th>
  </tr></thead>
  <tbody>{rows.map(({path, from, to}) => <tr key={path} data-change={path}>
    <th scope="row" title={path}>{sectionWords(sectionOf(path))} · {settingName(path)}</th>
    <td>{shown(path, from)}</td><td>{shown(path, to)}</td>
  </tr>)}</tbody>
</table>;

const Row = ({row}: {row: ImportRow}) => {
  const {path, from, to, chosen} = row;
  const id = `import-${path.replace(/\W/g, '-')}`;
  return <tr data-setting={path} class={chosen ? '' : 'out'}>
    <td><input type="checkbox" id={id} checked={chosen} class="tick"
      onClick={(event) => chooseRows([path], event.currentTarget.checked)} /></td>
    <th scope="row"><label for={id} title={path}>{settingName(path)}</label>
      {identifies(path) && <span class="tag">{t('import.identity')}</span>}
      {path === kSignInPassword && <span class="tag">{t('import.signIn')}</span>}
      {get().transfer.changed.includes(path) &&
        <span class="tag" data-changed={path}>{t('conflict.title')}</span>}</th>
    <td data-label={t('change.from')}>{shown(path, from)}</td>
    <td data-label={t('import.file')}>{shown(path, to)}</td>
  </tr>;
};

// The password of the sign-in is not ticked together with others.
function Group({name, rows}: {name: string; rows: ImportRow[]}) {
  const others = rows.filter(({path}) => path !== kSignInPassword);
  const many = others.length ? others : rows;
  const all = many.every(({chosen}) => chosen);
  const id = `group-${name}`;
  return <tbody data-group={name}>
    <tr class="group">
      <td><input type="checkbox" id={id} class="tick" checked={all}
        onClick={() => chooseRows((all ? rows : many).map(({path}) => path), !all)} /></td>
      <th scope="rowgroup" colSpan={3}><label for={id}>{sectionWords(name)}</label></th>
    </tr>
    {rows.map((row) => <Row key={row.path} row={row} />)}
  </tbody>;
}

export function Rows({rows}: {rows: ImportRow[]}) {
  const groups = [...new Set(rows.map(({path}) => sectionOf(path)))];
  return <div class="scroll" tabIndex={0} role="region" aria-label={t('change.setting')}>
    <table class="changes lines rows">
      <thead><tr>
        <th scope="col"><span class="unseen">{t('import.take')}</span></th>
        <th scope="col">{t('change.setting')}</th>
        <th scope="col">{t('change.from')}</th><th scope="col">{t('import.file')}</th>
      </tr></thead>
      {groups.map((name) => <Group key={name} name={name}
        rows={rows.filter(({path}) => sectionOf(path) === name)} />)}
    </table>
  </div>;
}

function errorText(error: TransferError): string {
  if (error.error === 'password')
    return `${settingName(kSignInPassword)}: ${t(error.problem.key, error.problem.values)}`;
  const named = error.error === 'char' ? {...error, name: settingName(error.name)} : error;
  return t(`import.${error.error}`, {...named});
}

export function Progress() {
  const {step, end, error, moving, changed} = get().transfer;
  if (step) return <StepNote step={step} />;
  if (moving) return <NoteLine note={moving.silent ? {kind: 'movedSilent', where: moving.where}
    : {kind: 'end', end: 'moved', rows: [], known: 'unknown'}} />;
  if (error) return <Notice tone="bad" text={errorText(error)} />;
  if (changed.length)
    return <NoteLine note={{kind: 'conflict', rows: []}} />;
  if (end && end.end === 'unchanged')
    return <Notice tone="info" name="unchanged" text={t('import.same')} />;
  return <NoteLine note={end && {kind: 'end', end: end.end, rows: [], known: end.known}} />;
}

// A file that is chosen a second time is read again.
const pick = (purpose: Purpose, after: () => void) =>
  async ({currentTarget: input}: {currentTarget: HTMLInputElement}) => {
    const file = input.files && input.files[0];
    if (!file) return;
    const bytes = await new Response(file).arrayBuffer();
    input.value = '';
    await chooseFile(file.name, new Uint8Array(bytes), purpose);
    after();
  };

interface PickProps { purpose: Purpose; button: WordKey; name: string | null; after?: () => void }

export const Pick = ({purpose, button, name, after = () => {}}: PickProps) => {
  const read = pick(purpose, after);
  return <label class="file">
    <input type="file" accept=".xml,text/xml" onChange={(event) => void read(event)} />
    <span class="button">{t(button)}</span>
    <span class="hint">{name || t('import.none')}</span>
  </label>;
};
