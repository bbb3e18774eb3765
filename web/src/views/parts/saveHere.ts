// Ctrl-S saves the form that has the focus, or the first one of the page with changes.
import {sectionsOf, type SectionId} from '../../model/sections';
import {get, sectionState} from '../../state/store';
import {save} from './SectionForm';

function here(): SectionId | undefined {
  const sections = sectionsOf(get().page).map(({id}) => id);
  const focused = document.activeElement && document.activeElement.closest('[data-section]');
  const name = focused && focused.getAttribute('data-section');
  return sections.find((id) => id === name) ||
      sections.find((id) => Object.keys(sectionState(id).typed).length);
}

export function saveHere(event: KeyboardEvent) {
  if (!(event.ctrlKey || event.metaKey) || event.key.toLowerCase() !== 's') return;
  event.preventDefault();
  const section = here();
  if (section && !get().dialog) save(section);
}
