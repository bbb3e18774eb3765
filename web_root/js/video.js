// Video: mirror, main and sub stream of the first camera.
import {kSections} from './fields.js';
import {fillForms, SectionForm} from './form.js';
import {openPage} from './shell.js';

openPage('video', ['page.css', 'sets.css'], (main) => {
  const {mirror, mainStream, subStream} = kSections;
  return fillForms(main, [mirror, mainStream, subStream].map((s) => new SectionForm('video', s)));
});
