// The platform's server, and GB28181 with its IDs as a table.
import {sectionState, shownValues} from '../state/store';
import {shownFields} from '../state/reading';
import {t} from '../words';
import {FieldRow} from './parts/FieldRow';
import {FieldTable} from './parts/FieldTable';
import {SectionForm} from './parts/SectionForm';

function Gb28181() {
  const state = sectionState('gb28181');
  const fields = shownFields(state, shownValues(state));
  const ids = fields.filter(({labelValues}) => labelValues);
  const plain = fields.filter(({labelValues}) => !labelValues);
  return <>
    <div class="fields many">
      {plain.map((field) => <FieldRow key={field.path} section="gb28181" field={field} />)}
    </div>
    <h3>{t('id.title')}</h3>
    <p class="hint">{t('id.help')}</p>
    <FieldTable section="gb28181" head="id.channel" fields={ids} long />
  </>;
}

export const Platforms = () => <div class="cards">
  <SectionForm id="server" icon="platforms" help="server.help" rows={3} wide />
  <SectionForm id="gb28181" icon="video" rows={10} wide layout={Gb28181} />
</div>;
