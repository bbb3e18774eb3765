import {bodies, cookie, local, moves, session, signedInTo} from './page';
import assert from 'node:assert/strict';
import test, {beforeEach} from 'node:test';
import {sectionById} from '../../src/model/sections';
import {answerDialog} from '../../src/state/dialog';
import {type} from '../../src/state/editing';
import {savePassword} from '../../src/state/password';
import {readSection, take} from '../../src/state/reading';
import {get, resetStore, sectionState} from '../../src/state/store';

const section = sectionById('password');
let held = 'admin123';

beforeEach(async () => {
  resetStore();
  held = 'admin123';
  signedInTo({
    get_UserSecurity: () => `{ "strAdminPasswd": "${held}", "strNormalPasswd": "" , "result": 1 }`,
    set_UserSecurity: () => {
      held = 'geheim&1';
      return '{"result": 1 }';
    },
  });
  take(section, await readSection(section));
});

async function change(current: string, fresh: string, repeat: string) {
  const values = {current, fresh, repeat};
  for (const field of sectionState('password').fields)
    type('password', field, values[field.path as keyof typeof values]);
  const done = savePassword();
  if (get().dialog) answerDialog(true);
  await done;
  const {note, problems} = sectionState('password');
  return note && note.kind === 'end' ? note.end : Object.keys(problems);
}

test('a new password is sent in entities and read back', async () => {
  assert.equal(await change('admin123', 'geheim&1', 'geheim&1'), 'applied');
  assert.deepEqual(bodies, ['strUserName=0&strConfirmPasswd=geheim%26amp%3B1']);
  assert.deepEqual(sectionState('password').typed, {});
});

test('what is wrong is told before anything is sent', async () => {
  const rows: [string, string, string, string[]][] = [
    ['admin123', '', '', ['fresh', 'repeat']], ['admin123', 'a', 'b', ['repeat']],
    ['wrong', 'a', 'a', ['current']], ['admin123', '😀', '😀', ['fresh', 'repeat']],
  ];
  for (const [current, fresh, repeat, problems] of rows)
    assert.deepEqual(await change(current, fresh, repeat), problems, `${current} ${fresh}`);
  assert.deepEqual(bodies, []);
});

test('no password reaches the browser’s memory', async () => {
  await change('admin123', 'geheim&1', 'geheim&1');
  assert.doesNotMatch(local.text() + session.text(), /admin123|geheim/);
});

test('nothing is sent once the session has ended', async () => {
  cookie.value = '';
  moves.length = 0;
  await change('admin123', 'b', 'b');
  assert.deepEqual(bodies, []);
  assert.match(moves.join(), /^login\.html/);
});
