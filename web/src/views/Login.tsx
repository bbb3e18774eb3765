// The sign-in page.
import {useLayoutEffect, useRef, useState} from 'preact/hooks';
import {timeText} from '../recorder/lock';
import {signIn, submitPassword, type SignInNote} from '../state/signIn';
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
    case 'wrong':
      return <Notice tone="bad" name="wrong" text={t('login.wrong', {left: note.left})} />;
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
    case 'moved': case 'open': case 'kept':
      return <Notice tone="info" name={note.kind} text={t(`login.${note.kind}`)} />;
    default: return <Notice tone="bad" name={note.kind} text={t(`login.${note.kind}`)} />;
  }
}

function Recorder() {
  const {deviceNo, reached} = signIn();
  return <p class={`recorder ${reached}`} data-reached={reached}>
    <span class="lamp" aria-hidden="true" />
    {reached === 'asking' && t('login.asking')}
    {reached === 'silent' && t('login.noAnswer')}
    {reached === 'answers' &&
      (deviceNo ? t('login.recorder', {number: deviceNo}) : t('login.answers'))}
  </p>;
}

const kInput = 'password';

function Password({typed, busy}: {typed: () => void; busy: boolean}) {
  const [shown, setShown] = useState(false);
  const input = useRef<HTMLInputElement>(null);
  const {note} = signIn();
  const wrong = note && (note.kind === 'wrong' || note.kind === 'empty') ? note : null;
  useLayoutEffect(() => { if (input.current) input.current.focus(); }, []);
  useLayoutEffect(() => { if (wrong && input.current) input.current.select(); }, [wrong]);
  return <div class="field" data-field="password">
    <label for={kInput} class="label">{t('password')}</label>
    <div class="reveals">
      <input id={kInput} ref={input} type={shown ? 'text' : 'password'} readOnly={busy}
        autoComplete="current-password" autoCapitalize="none" spellcheck={false}
        onInput={typed} />
      <button type="button" class="quiet" aria-pressed={shown} aria-controls={kInput}
        onClick={() => setShown(!shown)}>{t('reveal')}</button>
    </div>
  </div>;
}

export function Login({go, prefetch}: {go: () => void; prefetch: () => void}) {
  const {busy, note} = signIn();
  const locked = note && note.kind === 'locked' ? note.until : 0;
  const now = useNow(locked > 0);
  const waits = busy || locked > now;
  // Read at submission: a password filled in by the browser may cause no event.
  const submit = (event: Event) => {
    event.preventDefault();
    const input = document.getElementById(kInput) as HTMLInputElement;
    void submitPassword(input.value, go);
  };
  return <main class="login">
    <div class="brand"><Icon name="recorder" /><span>{t('brand')}</span></div>
    <h1>{t('login.title')}</h1>
    <form noValidate onSubmit={submit}>
      <Recorder />
      <input type="text" autoComplete="username" value="admin" hidden readOnly />
      <Password typed={prefetch} busy={waits} />
      <button type="submit" class="main" aria-disabled={waits || undefined}>{t('login.title')}</button>
      <Line note={note} now={now} />
    </form>
    <div class="tools"><LanguageSwitch /><ThemeSwitch /></div>
  </main>;
}
