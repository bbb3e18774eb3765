// The settings on paper, for the file of a workshop. Made when it is printed and no sooner, as
// thousands of rows would slow the page down.
import {render} from 'preact';
import {useEffect, useRef} from 'preact/hooks';
import type {Field, Values} from '../../model/fields';
import {t} from '../../words';
import {headOf, sheetOf} from './sheet';

interface Props { fields: Field[]; held: Values; query: string }

const Paper = ({fields, held, query}: Props) => <>
  <h2>{t('sheet.title')}</h2>
  {headOf(held, query).map((line) => <p key={line}>{line}</p>)}
  <table>
    <thead><tr>
      <th scope="col">{t('change.setting')}</th><th scope="col">{t('sheet.raw')}</th>
      <th scope="col">{t('sheet.value')}</th>
    </tr></thead>
    {sheetOf(fields, held).map(({name, words, rows}) => <tbody key={name}>
      <tr><th scope="rowgroup" colSpan={3}>{words} ({name})</th></tr>
      {rows.map((row) => <tr key={row.path}>
        <th scope="row">{row.name}</th><td>{row.raw}</td><td>{row.value}</td>
      </tr>)}
    </tbody>)}
  </table>
  <p class="sign">{t('sheet.sign')}</p>
</>;

// Not every browser tells that it prints.
export function printSheet() {
  window.dispatchEvent(new Event('beforeprint'));
  window.print();
}

export function Sheet(props: Props) {
  const box = useRef<HTMLDivElement>(null);
  const last = useRef(props);
  last.current = props;
  useEffect(() => {
    const place = box.current!;
    const fill = () => {
      render(<Paper {...last.current} />, place);
      place.parentElement!.classList.add('printing');
    };
    const empty = () => {
      render(null, place);
      place.parentElement!.classList.remove('printing');
    };
    window.addEventListener('beforeprint', fill);
    window.addEventListener('afterprint', empty);
    return () => {
      window.removeEventListener('beforeprint', fill);
      window.removeEventListener('afterprint', empty);
    };
  }, []);
  return <div class="sheet" ref={box} />;
}
