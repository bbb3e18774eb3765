import {AccessPointCode} from './AccessPointCode';
import {SectionForm} from './parts/SectionForm';

export const Network = () => <div class="cards">
  <SectionForm id="wifi" icon="network" rows={5} />
  <AccessPointCode />
  <SectionForm id="mobile" icon="mobile" rows={5} />
  <SectionForm id="localEth0" icon="plug" help="localEth0.help" rows={4} />
  <SectionForm id="netMode" icon="platforms" rows={1} />
</div>;
