// A dialog over the page: keeps the focus, Escape cancels, Enter confirms, and the focus returns.
import type {ComponentChildren} from 'preact';
import {useLayoutEffect, useRef} from 'preact/hooks';
import {t} from '../../words';

interface Props {
  title: string;
  go: string;
  onAnswer: (yes: boolean) => void;
  children: ComponentChildren;
}

const kFocusable = 'button:not([disabled]), input, select, [tabindex="0"]';

function keepInside(event: KeyboardEvent, box: HTMLElement) {
  const inside = [...box.querySelectorAll<HTMLElement>(kFocusable)];
  const first = inside[0];
  const last = inside[inside.length - 1];
  if (!first || !last) return;
  const at = document.activeElement;
  const leaves = event.shiftKey ? at === first || at === box : at === last;
  if (!leaves) return;
  event.preventDefault();
  (event.shiftKey ? last : first).focus();
}

export function Modal({title, go, onAnswer, children}: Props) {
  const box = useRef<HTMLDivElement>(null);
  const main = useRef<HTMLButtonElement>(null);
  useLayoutEffect(() => {
    const before = document.activeElement;
    if (main.current) main.current.focus();
    return () => { if (before instanceof HTMLElement) before.focus(); };
  }, []);
  const onKeyDown = (event: KeyboardEvent) => {
    if (event.key === 'Escape') onAnswer(false);
    if (event.key === 'Tab' && box.current) keepInside(event, box.current);
  };
  return <div class="veil">
    <div class="dialog" role="dialog" aria-modal="true" aria-labelledby="dialog-title" ref={box}
      onKeyDown={onKeyDown}>
      <h2 id="dialog-title">{title}</h2>
      <div class="scroll" tabIndex={0} role="region" aria-labelledby="dialog-title">{children}</div>
      <div class="actions">
        <button type="button" class="main" ref={main} onClick={() => onAnswer(true)}>{go}</button>
        <button type="button" class="quiet" onClick={() => onAnswer(false)}>{t('cancel')}</button>
      </div>
    </div>
  </div>;
}
