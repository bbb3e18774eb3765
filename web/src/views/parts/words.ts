// Values and fields in the user's words.
import {nameOf} from '../../state/labels';
import {isOn, type Field, type Label} from '../../model/fields';
import {t} from '../../words';

export const wordOf = (label: Label) => typeof label === 'function' ? label() : t(label);

export function labelOf(field: Field): string {
  const label = wordOf(field.label);
  if (field.group) return `${field.group()} · ${label}`;
  const channel = field.labelValues && field.labelValues.channel;
  return channel === undefined ? label : t('ofChannel', {channel, label});
}

export function display(field: Field, value: string | undefined): string {
  if (value === undefined || value === '') return t('value.none');
  if (field.kind === 'secret') return t('value.hidden');
  if (field.kind === 'switch') return t(isOn(value) ? 'on' : 'off');
  if (field.kind === 'clock') return value === 'now' ? t('clock.now') : value;
  const option = (field.options || []).find(([known]) => known === value);
  const named = nameOf(field.path, value);
  return named === value && option ? t(option[1]) : named;
}

export const idOf = (path: string) => path.replace(/\W/g, '-');
