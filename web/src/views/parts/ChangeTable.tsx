// Changes in words: two values of each setting, and what they are.
import type {Change} from '../../model/fields';
import {t, type WordKey} from '../../words';
import {display, labelOf} from './words';

interface Props { rows: Change[]; from?: WordKey; to?: WordKey }

export const ChangeTable = ({rows, from = 'change.from', to = 'change.to'}: Props) =>
  <table class="changes">
    <thead><tr>
      <th scope="col">{t('change.setting')}</th>
      <th scope="col">{t(from)}</th>
      <th scope="col">{t(to)}</th>
    </tr></thead>
    <tbody>{rows.map(({field, ...values}) => <tr key={field.path} data-change={field.path}>
      <th scope="row">{labelOf(field)}</th>
      <td>{display(field, values.from)}</td>
      <td>{display(field, values.to)}</td>
    </tr>)}</tbody>
  </table>;
