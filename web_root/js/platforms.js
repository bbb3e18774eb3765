// Platforms: server address, GB28181.
import {kSections} from './fields.js';
import {fillForms, SectionForm} from './form.js';
import {gb28181} from './gb28181.js';
import {openPage} from './shell.js';

openPage('platforms', (main) =>
  fillForms(main, [kSections.server, gb28181].map((s) => new SectionForm('platforms', s))));
