// Every setting of the recorder: found, changed in place, reviewed and saved as one import.
import {Component} from 'preact';
import {useState} from 'preact/hooks';
import type {Problem} from '../../model/checks';
import type {Group} from '../../model/everyField';
import type {Field} from '../../model/fields';
import {found} from '../../state/everySetting';
import {get, sectionState} from '../../state/store';
import {t, type Language} from '../../words';
import {Card} from '../parts/Card';
import {CopyButton} from '../parts/CopyButton';
import {FieldRow} from '../parts/FieldRow';
import {SectionForm} from '../parts/SectionForm';
import {display, wordOf} from '../parts/words';
import {Find, Groups, useMarked} from './Groups';
import {printSheet, Sheet} from './Paper';
import {sheetText} from './sheet';

// A long one continues on the next line behind a slash.
const Raw = ({path}: Field) => <code>{path.split('/').slice(1)
    .map((name, i) => <>{i > 0 && <>/<wbr /></>}{name}</>)}</code>;

interface RowProps {
  field: Field;
  value: string | undefined;
  problem: Problem | undefined;
  conflict: string | undefined;
  busy: boolean;
  language: Language;
}

// Drawn again only when something that it shows has changed.
class Row extends Component<RowProps> {
  override shouldComponentUpdate(next: RowProps) {
    return (Object.keys(next) as (keyof RowProps)[]).some((name) => next[name] !== this.props[name]);
  }

  override render({field, value}: RowProps) {
    return <div class="setting" data-setting={field.path}>
      {field.fixed ? <dl class="field"><dt>{wordOf(field.label)}</dt>
        <dd>{display(field, value)} {field.help && <span class="hint">{t(field.help)}</span>}</dd></dl> : <FieldRow section="all" field={field} />}
      <Raw {...field} />
    </div>;
  }
}

function row(field: Field) {
  const {typed, held, problems, conflicts, step} = sectionState('all');
  const {path} = field;
  return <Row key={path} field={field} value={path in typed ? typed[path] : held[path]}
    problem={problems[path]} conflict={conflicts[path]} busy={Boolean(step)}
    language={get().language} />;
}

function mark({fields}: Group) {
  const {typed} = sectionState('all');
  const count = fields.filter(({path}) => path in typed).length;
  return count > 0 && <b class="badge" title={t('badge', {count})}>
    {count}<span class="unseen"> {t('badge.unit')}</span></b>;
}

// A search finds, and the sections show, all but what does not fit its words. What is to be
// corrected or decided is shown in any case.
export function AllSettings() {
  const [query, setQuery] = useState('');
  const {fields, held, problems, conflicts} = sectionState('all');
  const marked = useMarked(query, [...Object.keys(problems), ...Object.keys(conflicts)]);
  const some = found(fields, held, query);
  const fitting = new Set(some);
  const listed = fields.filter((field) => fitting.has(field) || marked.has(field.path));
  return <div class="cards">
    {fields.length > 0 && <Card id="find" title="section.find" icon="settings" wide>
      <div class="search">
        <Find id="find-setting" count={some.length} all={fields.length} query={query}
          onQuery={setQuery} />
        <div class="actions">
          <button type="button" data-action="print" onClick={printSheet}>{t('sheet.print')}</button>
          <CopyButton name="copy" label="sheet.copy" text={() => sheetText(some, held, query)} />
        </div>
      </div>
    </Card>}
    <SectionForm id="all" icon="settings" help="all.help" rows={10} wide layout={() =>
      <div><Groups fields={listed} query={query} marked={marked} row={row} mark={mark} /></div>} />
    <Sheet fields={some} held={held} query={query} />
  </div>;
}
