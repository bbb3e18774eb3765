// The change of the password: compared and read back like any other save, never kept anywhere.
import {checkAll, type Problem} from '../model/checks';
import {save} from '../model/save';
import {Fault, kindOf} from '../recorder/fault';
import {toEntities} from '../recorder/gbk';
import {query, send} from '../recorder/wire';
import {askUser} from './dialog';
import {throughRestart} from './health';
import {endOf} from './saving';
import {expire, renew} from './session';
import {patchSection, sectionState, type Step} from './store';

const kId = 'password';
const kFirstUser = '0';

const step = (name: Step | null) =>
  patchSection(kId, {step: name && {name, since: Date.now()}});

async function stored(): Promise<string> {
  const {result, values} = await query('get_UserSecurity', {group: 'send', urgent: true});
  if (!result) throw new Fault('deviceSilent');
  return values.strAdminPasswd || '';
}

function problemsOf(typed: Record<string, string>): Record<string, Problem> {
  const values = {current: '', fresh: '', repeat: '', ...typed};
  const {fields} = sectionState(kId);
  const problems = checkAll(fields, values, {});
  if (!problems.repeat && values.repeat !== values.fresh)
    problems.repeat = {key: 'error.repeat', values: {}};
  return problems;
}

const fail = (problems: Record<string, Problem>) =>
  patchSection(kId, {problems, note: {kind: 'invalid'}});

async function run(current: string, fresh: string) {
  step('session');
  await renew();
  step('compare');
  if (await stored() !== current) return fail({current: {key: 'error.current', values: {}}});
  const {end, after} = await save<string>({
    load: stored,
    send: () => throughRestart(() => send('set_UserSecurity',
        {strUserName: kFirstUser, strConfirmPasswd: toEntities(fresh)})),
    same: (a, b) => a === b, before: current, sent: fresh, progress: step,
  });
  patchSection(kId, {note: {kind: 'end', end, rows: [], known: after ? 'read' : 'unknown'},
    ...(end === 'applied' ? {typed: {}} : {})});
}

export async function savePassword() {
  const {typed, step: busy, fields} = sectionState(kId);
  if (busy) return;
  const problems = problemsOf(typed);
  if (Object.keys(problems).length) return fail(problems);
  const {current = '', fresh = ''} = typed;
  const rows = fields.filter(({path}) => path === 'fresh')
      .map((field) => ({field, from: current, to: fresh}));
  if (!await askUser({kind: 'review', section: kId, rows, move: null})) return;
  try {
    await run(current, fresh);
  } catch (caught) {
    const kind = kindOf(caught);
    if (kind === 'refused') return expire();
    patchSection(kId, {note: {kind: 'end', end: endOf(kind), rows: [], known: 'unsent'}});
  } finally {
    step(null);
  }
}

