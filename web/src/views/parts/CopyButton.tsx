// A button that copies a text and says so; where the browser refuses, the text for copying by hand.
import {useState} from 'preact/hooks';
import {timeOfDay} from '../../model/clock';
import {t, type WordKey} from '../../words';
import {copyText} from './clipboard';
import {Notice} from './Notice';

interface Props { name: string; label: WordKey; text: () => string }
interface Copied { done: boolean; time: string; text: string }

function CopyNote({copied}: {copied: Copied | null}) {
  if (!copied) return <Notice />;
  if (copied.done)
    return <Notice tone="good" name="copied" text={t('copy.done', {time: copied.time})} />;
  return <Notice tone="warn" name="refused" text={t('copy.refused')}>
    <textarea readOnly rows={4} value={copied.text} aria-label={t('copy.text')}
      onFocus={(event) => event.currentTarget.select()} />
  </Notice>;
}

export function CopyButton({name, label, text}: Props) {
  const [copied, setCopied] = useState<Copied | null>(null);
  const copy = async () => {
    const wanted = text();
    setCopied({done: await copyText(wanted), time: timeOfDay(new Date()), text: wanted});
  };
  return <div class="copy">
    <button type="button" data-action={name} onClick={() => void copy()}>{t(label)}</button>
    <CopyNote copied={copied} />
  </div>;
}
