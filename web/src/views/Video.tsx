import {sectionState} from '../state/store';
import {t} from '../words';
import {FieldTable} from './parts/FieldTable';
import {SectionForm} from './parts/SectionForm';

function Cameras() {
  const {fields} = sectionState('cameras');
  const channels = new Set(fields.map(({labelValues}) => labelValues && labelValues.channel)).size;
  return <>
    {channels < 2 && <p class="hint">{t('cameras.firstOnly')}</p>}
    <FieldTable section="cameras" head="camera" fields={fields} />
  </>;
}

export const Video = () => <div class="cards">
  <SectionForm id="cameras" icon="video" help="cameras.help" rows={8} wide layout={Cameras} />
  <SectionForm id="subStream" icon="video" help="subStream.help" rows={2} wide />
</div>;
