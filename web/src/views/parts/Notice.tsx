// The line with progress and result; screen readers announce it.
import type {ComponentChildren} from 'preact';
import {Icon, type IconName} from './Icon';

export type Tone = 'busy' | 'good' | 'warn' | 'bad' | 'info';

const kSigns: Record<Exclude<Tone, 'busy'>, IconName> =
    {good: 'done', bad: 'alert', warn: 'alert', info: 'info'};

// `name` tells scripts what `text` tells people.
interface Props { tone?: Tone; name?: string; text?: ComponentChildren; children?: ComponentChildren }

// It is in the page even while empty, otherwise screen readers would not announce it.
export function Notice({tone, name, text, children}: Props) {
  return <div class={`status ${tone || ''}`} role="status" data-note={name}>
    {tone && (tone === 'busy' ? <span class="spinner" /> : <Icon name={kSigns[tone]} />)}
    {tone && <div class="words">{text && <p>{text}</p>}{children}</div>}
  </div>;
}
