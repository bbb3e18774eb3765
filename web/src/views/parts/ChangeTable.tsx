// Changes in words: old and new values.
import type {Change} from '../../model/fields';
import {t} from '../../words';
import {display, labelOf} from './words';

export const ChangeTable = ({rows}: {rows: Change[]}) => <table class="changes">
  <thead><tr>
    <th scope="col">{t('change.setting')}</th>
    <th scope="col">{t('change.from')}</th>
    <th scope="col">{t('change.to')}</th>
  </tr></thead>
  <tbody>{rows.map(({field, from, to}) => <tr key={field.path} data-change={field.path}>
    <th scope="row">{labelOf(field)}</th>
    <td>{display(field, from)}</td>
    <td>{display(field, to)}</td>
  </tr>)}</tbody>
</table>;
