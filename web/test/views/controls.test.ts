// Controls as they are drawn, and what a user does with them.
import assert from 'node:assert/strict';
import test, {beforeEach} from 'node:test';
import {text, type Field} from '../../src/model/fields';
import {patchSection, resetStore, sectionState, type Step} from '../../src/state/store';
import {FieldRow} from '../../src/views/parts/FieldRow';
import {saveHere} from '../../src/views/parts/saveHere';
import {StepNote} from '../../src/views/parts/SectionNote';
import {display} from '../../src/views/parts/words';
import {addWords, speak} from '../../src/words';
import {en} from '../../src/words/en';
import {login} from '../../src/words/en-login';
import {drawn, drawnAnew, type Node} from './drawn';

addWords('en', {...login, ...en});

beforeEach(() => {
  resetStore();
  speak('en');
});

const kPath = 'stMobileGNet/strFD_Apn';
const apn = text(kPath, 'apn', 31);

// A row of a form that holds one value, and the controls in it.
function row(field: Field, value: string): [Node, Node[]] {
  patchSection('mobile', {fields: [field], held: {[field.path]: value}});
  const drawing = drawn(FieldRow, {section: 'mobile' as const, field});
  return [drawing, drawing.all('aria-describedby')];
}
const kinds = (nodes: Node[]) => nodes.map(({attributes}) => attributes.type);

test('a control says that it takes nothing while its form is saved', async () => {
  const [drawing, [input]] = row(apn, 'CMNET');
  assert.equal(input!.attributes['aria-disabled'], undefined);
  patchSection('mobile', {step: {name: 'sending', since: 0}});
  await drawnAnew();
  const [busy] = drawing.all('aria-disabled', 'true');
  assert.ok(busy && 'readOnly' in busy.attributes);
});

test('a password is hidden until somebody asks for it, and again', async () => {
  const [drawing, inputs] = row({...apn, kind: 'secret'}, 'card');
  const [reveal] = drawing.all('aria-pressed');
  assert.deepEqual(kinds(inputs), ['password']);
  await reveal!.does('click');
  assert.deepEqual(kinds(inputs), ['text']);
  await reveal!.does('click');
  assert.deepEqual(kinds(inputs), ['password']);
});

// what stands in the field when it is left, what that means
const kClocks = [
  ['2026-01-31 18:30', '2026-01-31 18:30:00'],
  ['2026-01-31 18:30:15', '2026-01-31 18:30:15'],
  ['2026-01-31 18', '2026-01-31 18'],
  ['', ' '],  // nothing at all would leave the clock alone
];

test('a time without seconds is the full minute', async () => {
  for (const [left, meant] of kClocks) {
    patchSection('mobile', {typed: {[kPath]: '2026-01-31 18:29:00'}});
    const [drawing] = row({...apn, kind: 'clock', live: true}, '');
    const [input] = drawing.all('placeholder');
    await input!.does('change', {currentTarget: {value: left}});
    assert.equal(sectionState('mobile').typed[kPath], meant, left);
  }
});

// what is pressed, whether that is the key for saving
const kPressed: [Partial<KeyboardEvent>, boolean][] = [
  [{key: 's', ctrlKey: true}, true], [{key: 'S', ctrlKey: true}, true],
  [{key: 's', metaKey: true}, true], [{key: 's'}, false],
  [{key: 'Control', ctrlKey: true}, false], [{key: 'c', ctrlKey: true}, false],
];

test('Ctrl and S together save, and neither alone', () => {
  for (const [pressed, saves] of kPressed) {
    let taken = false;
    saveHere({...pressed, preventDefault: () => { taken = true; }} as KeyboardEvent);
    assert.equal(taken, saves, JSON.stringify(pressed));
  }
});

// A field, its value, and how a list of changes shows it.
const kShown: [Partial<Field>, string | undefined, string][] = [
  [{}, undefined, '–'], [{}, '', '–'], [{}, 'fleet', 'fleet'],
  [{kind: 'secret'}, '', '–'], [{kind: 'secret'}, 'card', en['value.hidden']],
  [{kind: 'switch'}, '2', en.on], [{kind: 'switch'}, '0', en.off],
  [{kind: 'clock'}, 'now', en['clock.now']], [{kind: 'clock'}, '2026-01-31', '2026-01-31'],
  [{kind: 'choice', options: [['1', 'clock']]}, '1', en.clock],
];

test('a value is shown in words', () => {
  for (const [more, value, shown] of kShown)
    assert.equal(display({...apn, ...more}, value), shown, `${more.kind} ${value}`);
});

const kSteps: [Step, string][] = [
  ['session', 'Step 1 of 4. Checking the session…'],
  ['compare', 'Step 2 of 4. Comparing with the recorder…'],
  ['sending', 'Step 3 of 4. Sending…'],
  ['reading', 'Step 4 of 4. Reading back from the recorder…'],
  ['moving', 'Sent. Waiting for the recorder at http://192.168.1.90 …'],
];

test('the steps of a save are counted as far as they are known', () => {
  for (const [name, told] of kSteps) {
    const step = {name, since: Date.now(), where: 'http://192.168.1.90'};
    assert.equal(drawn(StepNote, {step}).textContent, told);
  }
  const step = {name: 'sending' as const, since: Date.now() - 1000};
  assert.equal(drawn(StepNote, {step}).textContent,
      `Step 3 of 4. ${en['step.restarting']} (1 s)`);
});
