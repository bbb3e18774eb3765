// The line that says what goes on and how it ended; screen readers hear it.
import type {ComponentChildren} from 'preact';
import {Icon, type IconName} from './Icon';

export type Tone = 'busy' | 'good' | 'warn' | 'bad' | 'info';

const kSigns: Record<Exclude<Tone, 'busy'>, IconName> =
    {good: 'done', bad: 'alert', warn: 'alert', info: 'info'};

// `name` says for scripts what `text` says for people.
interface Props { tone?: Tone; name?: string; text?: string; children?: ComponentChildren }

// It stands in the page before it has something to say, or it would not be heard.
export function Notice({tone, name, text, children}: Props) {
  return <div class={`status ${tone || ''}`} role="status" data-note={name}>
    {tone && (tone === 'busy' ? <span class="spinner" /> : <Icon name={kSigns[tone]} />)}
    {tone && <div class="words">{text && <p>{text}</p>}{children}</div>}
  </div>;
}
