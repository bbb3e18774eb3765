// What was applied where: the list of this browser, to and from a file.
import {useState} from 'preact/hooks';
import {clockText} from '../../model/clock';
import {kColumns, printCsv, type Run} from '../../model/runs';
import {addRuns, clearRuns} from '../../state/fleet';
import {get} from '../../state/store';
import {t} from '../../words';
import {Card} from '../parts/Card';
import {Notice} from '../parts/Notice';
import {offer} from '../parts/offer';

const counts = ({taken, same, left, kept}: Run) => t('runs.counts',
    {taken, same, left, kept: kept ? kept.split(' ').length : 0});

const Row = ({run}: {run: Run}) => <tr data-run={run.number} data-end={run.end}>
  <th scope="row">{run.number} {run.plate}</th>
  <td data-label={t('runs.at')}>{run.at}</td>
  <td data-label={t('runs.template')}>{run.template}
    {run.action === 'restore' && <span class="tag">{t('runs.restored')}</span>}</td>
  <td data-label={t('runs.end')}>{t(`run.${run.end}`)} {counts(run)}</td>
</tr>;

const Table = ({runs}: {runs: readonly Run[]}) =>
  <div class="scroll" tabIndex={0} role="region" aria-label={t('runs.end')}>
    <table class="lines">
      <thead><tr>
        <th scope="col">{t('runs.number')}</th><th scope="col">{t('runs.at')}</th>
        <th scope="col">{t('runs.template')}</th><th scope="col">{t('runs.end')}</th>
      </tr></thead>
      <tbody>{runs.map((run) => <Row key={Object.values(run).join()} run={run} />)}</tbody>
    </table>
  </div>;

function save() {
  const head = kColumns.map((name) => t(`runs.${name}`));
  offer(`applied-${clockText(new Date()).slice(0, 10)}.csv`, printCsv(head, get().fleet.runs),
      'text/csv;charset=utf-8');
}

export function Runs() {
  const [bad, setBad] = useState(false);
  const [sure, setSure] = useState(false);
  const {runs, unkept} = get().fleet;
  const take = async ({currentTarget: input}: {currentTarget: HTMLInputElement}) => {
    const file = input.files && input.files[0];
    if (!file) return;
    const text = await new Response(file).text();
    input.value = '';
    setBad(!addRuns(text));
  };
  return <Card id="runs" title="section.runs" icon="done" wide>
    <p class="hint">{t('runs.help')}</p>
    {runs.length > 0 && <Table runs={runs} />}
    {bad ? <Notice tone="bad" name="foreign" text={t('runs.foreign')} /> : <Notice />}
    {unkept > 0 ? <Notice tone="warn" name="unkept" text={t('runs.unkept', {count: unkept})} />
      : <Notice />}
    <div class="actions">
      {runs.length > 0 && <button type="button" class="main" onClick={save}>{t('runs.save')}</button>}
      <label class="file">
        <input type="file" accept=".csv,text/csv" onChange={(event) => void take(event)} />
        <span class="button">{t('runs.add')}</span>
      </label>
      {runs.length > 0 && <button type="button" class="quiet" data-action="clear"
        onClick={() => { if (sure) clearRuns(); setSure(!sure); }}
        onBlur={() => setSure(false)}>{t(sure ? 'runs.sure' : 'runs.clear')}</button>}
    </div>
  </Card>;
}
