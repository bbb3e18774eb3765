// The clipboard, as far as the browser gives it: pages from http:// have no `navigator.clipboard`.
function bySelection(text: string): boolean {
  const before = document.activeElement;
  const area = document.createElement('textarea');
  area.value = text;
  area.className = 'unseen';
  document.body.appendChild(area);
  area.select();
  const done = document.execCommand('copy');
  area.remove();
  if (before instanceof HTMLElement) before.focus();
  return done;
}

// False when the browser lets no page copy anything.
export async function copyText(text: string): Promise<boolean> {
  try {
    await navigator.clipboard.writeText(text);
    return true;
  } catch {
    return bySelection(text);
  }
}
