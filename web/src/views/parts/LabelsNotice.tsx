// Why the deployment's names of code numbers are not used.
import {kLabelsFile, kMostBytes, kMostText, largestCode, type LabelsError} from '../../model/labels';
import {get} from '../../state/store';
import {t} from '../../words';
import {Notice} from './Notice';

function reason(error: LabelsError): string {
  const most = error.error === 'long' ? kMostBytes
    : error.error === 'number' ? largestCode(error.name) : kMostText;
  return t(`labels.${error.error}`, {...error, most});
}

export function LabelsNotice() {
  const {error} = get().labels;
  return error && <Notice tone="warn" name="labels"
    text={t('labels.broken', {file: kLabelsFile, why: reason(error)})} />;
}
