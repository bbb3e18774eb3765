// Device: number, time zone, clock.
import {kSections} from './fields.js';
import {fillForms, SectionForm} from './form.js';
import {openPage} from './shell.js';

openPage('device', (main) =>
  fillForms(main, [new SectionForm('device', kSections.base)]));
