// The sign-in page.
import {useLayoutEffect, useRef, useState} from 'preact/hooks';
import {timeText} from '../recorder/lock';
import {patch, signIn, submitPassword, type SignInNote} from '../state/signIn';
import {t} from '../words';
import {secondsUntil, useNow} from './parts/hooks';
import {Icon} from './parts/Icon';
import {Notice} from './parts/Notice';
import {LanguageSwitch, ThemeSwitch} from './parts/Switches';

function Line({note, now}: {note: SignInNote | null; now: number}) {
  if (!note) return <Notice />;
  switch (note.kind) {
    case 'checking': case 'counting':
      return <Notice tone="busy" text={t(`login.${note.kind}`)} />;
    case 'wrong': return <Notice tone="bad" name="wrong" text={t('login.wrong', {left: note.left})} />;
    case 'fault': {
      const why = note.why === 'dropped' || note.why === 'refused' ? 'lost' : note.why;
      return <Notice tone="bad" name={why}
        text={why === 'deviceSilent' ? t('login.silent') : t(`load.${why}`)} />;
    }
    case 'locked': {
      const left = secondsUntil(note.until, now);
      return left ? <Notice tone="bad" name="locked" text={t('login.locked')}>
        <p class="left" aria-hidden="true">{t('login.left', {time: timeText(left)})}</p>
      </Notice> : <Notice tone="info" name="open" text={t('login.open')} />;
    }
    case 'moved': case 'open': return <Notice tone="info" name={note.kind} text={t(`login.${note.kind}`)} />;
    default: return <Notice tone="bad" name={note.kind} text={t(`login.${note.kind}`)} />;
  }
}

function Recorder() {
  const {deviceNo, reached} = signIn();
  return <p class={`recorder ${reached}`} data-reached={reached}>
    <span class="lamp" aria-hidden="true" />
    {reached === 'asking' && t('login.asking')}
    {reached === 'silent' && t('login.noAnswer')}
    {reached === 'answers' && (deviceNo ? t('login.recorder', {number: deviceNo}) : t('login.answers'))}
  </p>;
}

export function Login({go, prefetch}: {go: () => void; prefetch: () => void}) {
  const [password, setPassword] = useState('');
  const [shown, setShown] = useState(false);
  const input = useRef<HTMLInputElement>(null);
  const {busy, note} = signIn();
  const locked = Boolean(note && note.kind === 'locked');
  const now = useNow(locked);
  useLayoutEffect(() => { if (input.current) input.current.focus(); }, []);
  const waits = busy || (note && note.kind === 'locked' && note.until > now) || false;
  const submit = async (event: Event) => {
    event.preventDefault();
    await submitPassword(password, go);
    const {note: end} = signIn();
    if (end && end.kind === 'wrong' && input.current) input.current.select();
  };
  const typed = (event: {currentTarget: HTMLInputElement}) => {
    prefetch();
    setPassword(event.currentTarget.value);
    const {note: old} = signIn();
    if (old && old.kind === 'wrong') patch({note: null});
  };
  return <main class="login">
    <div class="brand"><Icon name="recorder" /><span>{t('brand')}</span></div>
    <h1>{t('login.title')}</h1>
    <form noValidate onSubmit={(event) => void submit(event)}>
      <Recorder />
      <input type="text" autoComplete="username" value="admin" hidden readOnly />
      <div class="field" data-field="password">
        <label for="password" class="label">{t('password')}</label>
        <div class="reveals">
          <input id="password" ref={input} type={shown ? 'text' : 'password'} value={password}
            autoComplete="current-password" autoCapitalize="none" spellcheck={false}
            readOnly={waits} onInput={typed} />
          <button type="button" class="quiet" aria-pressed={shown} aria-controls="password"
            onClick={() => setShown(!shown)}>{t('reveal')}</button>
        </div>
      </div>
      <button type="submit" class="main" aria-disabled={waits || undefined}>{t('login.go')}</button>
      <Line note={note} now={now} />
    </form>
    <div class="tools"><LanguageSwitch /><ThemeSwitch /></div>
  </main>;
}
