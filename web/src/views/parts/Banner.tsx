// One line for the recorder's health, above everything that depends on it.
import {retryNow} from '../../state/health';
import {get} from '../../state/store';
import {sentences, t} from '../../words';
import {secondsSince, secondsUntil, useNow} from './hooks';
import {Notice} from './Notice';

export function Banner() {
  const {health} = get();
  const now = useNow(health.state !== 'answers');
  if (health.state === 'answers') return <div class="banner"><Notice /></div>;
  const since = t('health.since', {seconds: secondsSince(health.since, now)});
  if (health.state === 'restarting')
    return <div class="banner" data-health="restarting">
      <Notice tone="busy" text={t('health.restarting')} /></div>;
  const left = secondsUntil(health.retryAt, now);
  return <div class="banner" data-health={health.state}>
    <Notice tone="bad" text={t(`health.${health.state}`)}>
      <p class="count" aria-hidden="true">
        {sentences(since, left > 0 ? t('health.retry', {seconds: left}) : t('health.asking'))}
      </p>
      <button type="button" onClick={() => void retryNow()}>{t('health.now')}</button>
    </Notice>
  </div>;
}
