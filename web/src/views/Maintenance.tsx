// The configuration to and from a file, and the versions.
import {kCards} from '../model/status';
import {exportFile} from '../state/transfer';
import {get} from '../state/store';
import {t} from '../words';
import {Import} from './Import';
import {Card} from './parts/Card';
import {Notice} from './parts/Notice';
import {offer} from './parts/offer';
import {Skeleton} from './parts/SectionForm';
import {Rows} from './Status';

function ExportNote() {
  const {exporting, exported} = get().transfer;
  if (exporting) return <Notice tone="busy" text={t('export.busy')} />;
  if (!exported) return <Notice />;
  if ('name' in exported)
    return <Notice tone="good" text={t('export.done', {name: exported.name})} />;
  const why = exported.why === 'dropped' || exported.why === 'refused' ? 'lost' : exported.why;
  return <Notice tone="bad" text={t(`load.${why}`)} />;
}

const Export = () => <Card id="export" title="section.export" icon="out">
  <p class="hint">{t('export.help')}</p>
  <ExportNote />
  <div class="actions">
    <button type="button" class="main" aria-disabled={get().transfer.exporting || undefined}
      onClick={() => void exportFile(offer)}>{t('export.go')}</button>
  </div>
</Card>;

function Versions() {
  const {status} = get();
  const rows = kCards.filter(([id]) => id === 'versions').map(([, list]) => list)[0] || [];
  return <Card id="versions" title="section.versions" icon="chip">
    {status ? <Rows rows={rows} values={status.values} kind="facts" /> : <Skeleton rows={6} />}
  </Card>;
}

export const Maintenance = () => <div class="cards">
  <Export />
  <Versions />
  <Import />
</div>;
