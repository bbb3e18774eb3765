// A value of the status as a text.
import {kBars, type Shown} from '../../model/status';
import {t} from '../../words';

function diskText(text: string, used: number | null): string {
  const [whole = '', free = ''] = text.split('/');
  return t('disk.words',
      {whole: whole.trim(), free: free.trim(), percent: Math.round((used || 0) * 100)});
}

export const stateText = (on: boolean) => t(on ? 'on' : 'off');

export function textOf(shown: Shown): string {
  switch (shown.kind) {
    case 'text': case 'place': return shown.text || t('value.none');
    case 'words': return t(shown.words);
    case 'signal': return t('status.signal', {bars: shown.bars, most: kBars, value: shown.value});
    case 'disk': return diskText(shown.text, shown.used);
    case 'inputs': return shown.states.map((on, i) => `${i + 1} ${stateText(on)}`).join(', ');
  }
}
