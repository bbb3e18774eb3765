import {SectionForm} from './parts/SectionForm';

export const Device = () => <div class="cards">
  <SectionForm id="base" icon="device" help="base.help" rows={4} />
  <SectionForm id="language" icon="info" rows={1} />
</div>;
