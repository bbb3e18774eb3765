// A button that has done its work may be gone: the focus goes on to what its card does next, so
// that neither the keyboard nor a screen reader begins anew.
let last: Element | null = null;
let card: Element | null = null;

export function noteFocus({target}: Event) {
  if (!(target instanceof Element)) return;
  last = target;
  card = target.closest('[data-section]') || card;
}

export function keepFocus() {
  if (document.activeElement !== document.body || !last || !card || last.isConnected) return;
  const next = card.querySelector<HTMLElement>('.main, [type=file]');
  last = null;
  if (next) next.focus({preventScroll: true});
}
