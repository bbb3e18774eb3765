// Why the deployment's names of code numbers are not used.
import {kLabelsFile, kMostBytes, kMostText, largestCode, type LabelsError} from '../../model/labels';
import {get} from '../../state/store';
import {t} from '../../words';
import {Notice} from './Notice';

function reason(error: LabelsError): string {
  switch (error.error) {
    case 'json': return t('labels.json');
    case 'long': return t('labels.long', {most: kMostBytes});
    case 'setting': return t('labels.setting', {name: error.name});
    case 'number': return t('labels.number', {...error, most: largestCode(error.name)});
    case 'text': return t('labels.text', {...error, most: kMostText});
  }
}

export function LabelsNotice() {
  const {error} = get().labels;
  return error && <Notice tone="warn" name="labels"
    text={t('labels.broken', {file: kLabelsFile, why: reason(error)})} />;
}
