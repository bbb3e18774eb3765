// Stands for a page whose view comes with a script of its own.
import type {PageId} from '../model/sections';
import {read} from '../state/route';
import {get} from '../state/store';
import {t} from '../words';
import {Notice} from './parts/Notice';
import {Skeleton} from './parts/SectionForm';

type View = () => preact.JSX.Element;
const given: Partial<Record<PageId, View>> = {};

export const giveView = (page: PageId, view: View) => { given[page] = view; };

export function Later() {
  const {page, scripts} = get();
  const View = given[page];
  if (View) return <View />;
  if (scripts.settings !== 'failed') return <Skeleton rows={6} />;
  return <Notice tone="bad" name="failed" text={t('load.lost')}>
    <button type="button" class="quiet" onClick={read}>{t('again')}</button>
  </Notice>;
}
