// Video: main and sub stream, mirror of the first camera.
import {kSections} from './fields.js';
import {fillForms, SectionForm} from './form.js';
import {openPage} from './shell.js';

openPage('video', (main) => {
  const {mainStream, subStream, mirror} = kSections;
  return fillForms(main, [mainStream, subStream, mirror].map((s) => new SectionForm('video', s)));
});
