// One control per kind of field. Values are the recorder's own texts.
import {useState} from 'preact/hooks';
import {isOn, type Field} from '../../model/fields';
import {clockText} from '../../model/clock';
import {namesOf, sameCode} from '../../state/labels';
import {t} from '../../words';

export interface ControlProps {
  field: Field;
  id: string;
  value: string | undefined;
  name?: string;  // where no label is visible
  invalid: boolean;
  busy: boolean;
  describedBy: string;
  onValue: (value: string) => void;
}

const kModes: Partial<Record<Field['kind'], string>> =
    {number: 'numeric', address: 'decimal', mask: 'decimal', host: 'url'};
const kAutocomplete: Record<string, string> =
    {current: 'current-password', fresh: 'new-password', repeat: 'new-password'};

const valueOf = (event: Event) => (event.currentTarget as HTMLInputElement).value;

const common = ({id, name, invalid, busy, describedBy}: ControlProps) => ({
  id, 'aria-label': name, 'aria-invalid': invalid || undefined, 'aria-disabled': busy || undefined,
  'aria-describedby': describedBy,
});

function TextControl(props: ControlProps & {hidden?: boolean}) {
  const {field, value, busy, hidden, onValue} = props;
  const unknown = value === undefined && !field.needed;
  return <input {...common(props)} type={hidden ? 'password' : 'text'} value={value || ''}
    inputMode={kModes[field.kind]} readOnly={busy} autoCapitalize="none" spellcheck={false}
    autoComplete={kAutocomplete[field.path] || 'off'}
    placeholder={unknown ? t('value.unknown') : undefined}
    onInput={(event) => onValue(valueOf(event))} />;
}

function SecretControl(props: ControlProps) {
  const [shown, setShown] = useState(false);
  return <div class="reveals">
    <TextControl {...props} hidden={!shown} />
    <button type="button" class="quiet" aria-pressed={shown} aria-controls={props.id}
      onClick={() => setShown(!shown)}>{t('reveal')}</button>
  </div>;
}

const SwitchControl = (props: ControlProps) => <input {...common(props)} type="checkbox"
  role="switch" class="switch" checked={isOn(props.value)}
  onClick={(event) => {
    const {checked} = event.currentTarget;
    if (props.busy) event.preventDefault();
    else props.onValue(checked ? '1' : '0');
  }} />;

// The deployment's names go before the field's own. The recorder's value and the one that is chosen
// can be chosen in any case, as they are where nothing names them.
function optionsOf({field, value = '', held}: ControlProps & {held: string}) {
  const options = namesOf(field.path);
  const add = (option: string, text: string) => {
    if (!options.some(([known]) => sameCode(known, option))) options.push([option, text]);
  };
  for (const [option, label] of field.options || []) add(option, t(label));
  for (const other of held ? [held, value] : [value])
    add(other, other ? t('choice.other', {value: other}) : t('value.none'));
  return options;
}

function ChoiceControl(props: ControlProps & {held: string}) {
  const {value = ''} = props;
  const options = optionsOf(props);
  const [chosen = value] = options.find(([option]) => sameCode(option, value)) || [];
  return <select {...common(props)} value={chosen} disabled={false}
    onChange={(event) => props.onValue(event.currentTarget.value)}>
    {options.map(([option, text]) => <option key={option} value={option}>{text}</option>)}
  </select>;
}

const kPicked = /^\d{4}-\d\d-\d\d \d\d:\d\d(?::\d\d)?$/;

// '' leaves the clock alone; 'now' becomes this device's time when it is sent. Date and time are a
// text field, because not every browser has a 24-hour control for them.
function ClockControl(props: ControlProps & {held: string}) {
  const {value = '', onValue} = props;
  const mode = value === '' ? 'keep' : value === 'now' ? 'now' : 'set';
  const choose = (next: string) =>
    onValue(next === 'keep' ? '' : next === 'now' ? 'now' : clockText(new Date()));
  const finish = (text: string) =>
    onValue(kPicked.test(text) && text.length === 16 ? `${text}:00` : text || ' ');
  return <div class="clocks">
    <output for={props.id}>{props.held}</output>
    <select {...common(props)} value={mode}
      onChange={(event) => choose(event.currentTarget.value)}>
      {(['keep', 'now', 'set'] as const).map((each) =>
        <option key={each} value={each}>{t(`clock.${each}`)}</option>)}
    </select>
    {mode === 'set' && <input type="text" aria-label={t('clock.chosen')} value={value.trim()}
      placeholder="2026-01-31 18:30:00" readOnly={props.busy}
      onInput={(event) => onValue(valueOf(event) || ' ')}
      onChange={(event) => finish(valueOf(event))} />}
  </div>;
}

export function Control(props: ControlProps & {held: string}) {
  const {kind, path} = props.field;
  if (kind === 'number' && namesOf(path).length) return <ChoiceControl {...props} />;
  switch (kind) {
    case 'secret': return <SecretControl {...props} />;
    case 'switch': return <SwitchControl {...props} />;
    case 'choice': return <ChoiceControl {...props} />;
    case 'clock': return <ClockControl {...props} />;
    default: return <TextControl {...props} />;
  }
}
