// Fields of one kind in columns, one row per channel; a list on a phone.
import type {Field, Label} from '../../model/fields';
import type {SectionId} from '../../model/sections';
import {t, type WordKey} from '../../words';
import {FieldRow} from './FieldRow';
import {wordOf} from './words';

// `long`: values that need the whole width of a phone.
interface Props { section: SectionId; head: WordKey; fields: Field[]; long?: boolean }

const channelOf = (field: Field) => Number(field.labelValues && field.labelValues.channel);

export function FieldTable({section, head, fields, long}: Props) {
  const columns = [...new Set(fields.map(({label}) => label))];
  const channels = [...new Set(fields.map(channelOf))];
  const cell = (channel: number, label: Label) =>
    fields.find((field) => channelOf(field) === channel && field.label === label);
  return <table class={`grid${long ? ' long' : ''}`}>
    <thead><tr>
      <th scope="col">{t(head)}</th>
      {columns.map((label) => <th key={label} scope="col">{wordOf(label)}</th>)}
    </tr></thead>
    <tbody>{channels.map((channel) => <tr key={channel} data-channel={channel}>
      <th scope="row">{channel}</th>
      {columns.map((label) => {
        const field = cell(channel, label);
        return <td key={label} data-label={wordOf(label)}>
          {field && <FieldRow section={section} field={field} bare />}
        </td>;
      })}
    </tr>)}</tbody>
  </table>;
}
