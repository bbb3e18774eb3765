// A template to this recorder, and line by line what it took.
import {sectionOf, type Line, type Took} from '../../model/import';
import {kNotTaken} from '../../model/runs';
import {applyTemplate, noteUnchanged, restoreTemplate} from '../../state/fleet';
import {settingName} from '../../state/names';
import {get} from '../../state/store';
import {t} from '../../words';
import {sectionWords} from '../../words/settings';
import {FileCard} from '../parts/FileCard';
import {shown} from '../parts/FileRows';

const kOrder: readonly Took[] = ['kept', 'other', 'absent', 'unknown', 'taken', 'same', 'left'];

const Result = ({path, from, to, now, took}: Line) => <tr data-line={path} data-took={took}
  class={kNotTaken.includes(took) ? 'wrong' : took === 'taken' ? '' : 'out'}>
  <th scope="row" title={path}>{sectionWords(sectionOf(path))} · {settingName(path)}</th>
  <td data-label={t('line.before')}>{shown(path, from)}</td>
  <td data-label={t('import.file')}>{shown(path, to)}</td>
  <td data-label={t('change.from')}>{now === undefined ? t('took.unknown') : shown(path, now)}</td>
  <td>{t(`took.${took}`)}</td>
</tr>;

const Lines = ({lines}: {lines: Line[]}) => <>
  <h3>{t('line.title')}</h3>
  <div class="scroll" tabIndex={0} role="region" aria-label={t('line.title')}>
    <table class="lines">
      <thead><tr>
        <th scope="col">{t('change.setting')}</th><th scope="col">{t('line.before')}</th>
        <th scope="col">{t('import.file')}</th><th scope="col">{t('change.from')}</th>
        <th scope="col">{t('runs.end')}</th>
      </tr></thead>
      <tbody>{kOrder.map((took) => lines.filter((line) => line.took === took).map((line) =>
        <Result key={line.path} {...line} />))}</tbody>
    </table>
  </div>
</>;

export function Apply() {
  const {lines} = get().transfer;
  return <FileCard id="apply" purpose="template" choose="apply.choose"
    go="apply.go" onChosen={noteUnchanged} onGo={applyTemplate} onRestore={restoreTemplate}>
    {lines.length > 0 && <Lines lines={lines} />}
  </FileCard>;
}
