// The recorder's own network as a code for a phone's camera, as the form beside it has it. It shows
// the password, so it is seen only when asked for, and never on paper.
import {useState} from 'preact/hooks';
import {checkAll} from '../model/checks';
import {drawingOf, joinText} from '../model/joinCode';
import {isAccessPoint, kApName, kApPassword} from '../model/sections';
import {squaresOf} from '../state/encoder';
import {bring} from '../state/scripts';
import {get, sectionState, shownValues} from '../state/store';
import {t} from '../words';
import {Card} from './parts/Card';
import {Notice} from './parts/Notice';

const kQuiet = 4;  // squares of white around a code, as readers want it

const Invalid = () => <Notice tone="info" name="invalid" text={t('ap.invalid')} />;

function Picture({name, password}: {name: string; password: string}) {
  const squares = squaresOf(joinText(name, password));
  if (!squares) return <Invalid />;
  const side = squares.size + 2 * kQuiet;
  return <svg class="code" role="img" aria-label={t('ap.picture', {name})}
    viewBox={`${-kQuiet} ${-kQuiet} ${side} ${side}`}>
    <rect x={-kQuiet} y={-kQuiet} width={side} height={side} fill="#fff" />
    <path d={drawingOf(squares)} fill="#000" />
  </svg>;
}

const kLeast = 8;  // letters of a password, for a phone
const kPaths = [kApName, kApPassword];

function Hints({name, password}: {name: string; password: string}) {
  const {typed} = sectionState('wifi');
  return <>
    {Object.keys(typed).length > 0 && <p class="hint" data-hint="unsaved">{t('ap.unsaved')}</p>}
    {!password && <p class="hint" data-hint="open">{t('ap.open')}</p>}
    {password && password.length < kLeast && <p class="hint" data-hint="short">{t('ap.short')}</p>}
    {/[^ -~]/.test(name) && <p class="hint" data-hint="letters">{t('ap.letters')}</p>}
  </>;
}

const fetchEncoder = () => { bring('qr').catch(() => {}); };  // the store tells that it failed

const Failed = () => <Notice tone="bad" name="failed" text={t('load.lost')}>
  <button type="button" class="quiet" onClick={fetchEncoder}>{t('again')}</button>
</Notice>;

function Code({name, password}: {name: string; password: string}) {
  const state = sectionState('wifi');
  const fields = state.fields.filter(({path}) => kPaths.includes(path));
  const wrong = Object.keys(checkAll(fields, shownValues(state), state.held)).length;
  const {qr} = get().scripts;
  if (!name || wrong) return <Invalid />;
  if (qr === 'failed') return <Failed />;
  if (qr !== 'there') return <Notice tone="busy" text={t('ap.coming')} />;
  return <><Picture name={name} password={password} /><Hints name={name} password={password} /></>;
}

export function AccessPointCode() {
  const [asked, ask] = useState(false);
  const values = shownValues(sectionState('wifi'));
  const [name, password] = [values[kApName], values[kApPassword]];
  if (!isAccessPoint(values) || name === undefined || password === undefined) return null;
  const toggle = () => {
    ask(!asked);
    if (!asked) fetchEncoder();
  };
  return <Card id="accessPoint" title="section.accessPoint" icon="mobile">
    <p class="hint">{t('ap.help')}</p>
    {asked && <Code name={name} password={password} />}
    <div class="actions">
      <button type="button" data-action="code" aria-expanded={asked} onClick={toggle}>
        {t(asked ? 'ap.hide' : 'ap.show')}
      </button>
    </div>
  </Card>;
}
