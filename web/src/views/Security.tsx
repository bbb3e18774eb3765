// The password, and the lock after wrong passwords.
import {kWrongEntries, timeText} from '../recorder/lock';
import {loadLock, resetLock} from '../state/passwordLock';
import {get, isSilent} from '../state/store';
import {t} from '../words';
import {Card, Fact} from './parts/Card';
import {secondsSince, useNow} from './parts/hooks';
import {Notice} from './parts/Notice';
import {SectionForm, Skeleton} from './parts/SectionForm';
import {NoteLine} from './parts/SectionNote';

function LockFacts() {
  const {lock, at} = get().lock;
  const now = useNow(Boolean(lock && lock.left));
  if (!lock) return null;
  const left = Math.max(0, lock.left - secondsSince(at, now));
  return <dl class="facts">
    <Fact id="count" name={t('lock.count')}>
      {t('lock.of', {count: lock.count, most: kWrongEntries})}
    </Fact>
    <Fact id="state" name={t('lock.state')} tone={left ? 'warn' : ''}>
      {left ? t('lock.locked', {time: timeText(left)}) : t('lock.open')}
    </Fact>
  </dl>;
}

function LockCard() {
  const {lock, loading, busy, end} = get().lock;
  const note = end && {kind: 'end' as const, rows: [], ...end};
  return <Card id="lock" title="section.lock" icon="security">
    <p class="hint">{t('lock.help')}</p>
    {!lock && (loading.state === 'waiting' || isSilent()) && <Skeleton rows={2} />}
    {loading.state === 'failed' && get().health.state === 'answers' &&
      <Notice tone="bad" text={t('load.deviceSilent')}>
        <button type="button" class="quiet" onClick={() => void loadLock()}>{t('again')}</button>
      </Notice>}
    <LockFacts />
    {busy ? <Notice tone="busy" text={t('step.sending')} /> : <NoteLine note={note} />}
    {lock && <div class="actions">
      <button type="button" data-action="reset" aria-disabled={busy || !lock.count || undefined}
        onClick={() => { if (lock.count) void resetLock(); }}>{t('lock.reset')}</button>
    </div>}
  </Card>;
}

export const Security = () => <div class="cards">
  <SectionForm id="password" icon="security" help="password.help" />
  <LockCard />
</div>;
