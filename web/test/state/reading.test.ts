import {answers, asked, signedIn} from './page';
import assert from 'node:assert/strict';
import test, {beforeEach} from 'node:test';
import {giveEveryField} from '../../src/state/everySetting';
import {loadPage} from '../../src/state/reading';
import {readAgain} from '../../src/state/route';
import {resetStore, sectionState, set} from '../../src/state/store';

const kWhole = '{ "strFD_CfgPara": "<VariCfgSec><stMobileGNet strFD_Apn=\'CMNET\'/></VariCfgSec>", ' +
    '"result": 1 }';
const exports = () => asked.filter((name) => name === 'export_CfgFile').length;

beforeEach(() => {
  resetStore();
  signedIn();
  giveEveryField();
  asked.length = 0;
  answers.export_CfgFile = '<html>';
});

test('a configuration that could not be read is asked for again when the user says so', async () => {
  await loadPage('settings');
  assert.equal(sectionState('all').loading.state, 'failed');
  answers.export_CfgFile = kWhole;
  await loadPage('settings');
  assert.deepEqual([exports(), sectionState('all').loading.state], [1, 'failed']);
  set({page: 'video'});
  readAgain();
  for (let turns = 0; turns < 20; turns++) await new Promise((resume) => { setImmediate(resume); });
  assert.deepEqual([exports(), sectionState('cameras').loading.state], [2, 'loaded']);
});

test('what a page that was left still wanted is not asked for', async () => {
  answers.export_CfgFile = kWhole;
  const left = loadPage('network');
  await loadPage('network');
  assert.equal(asked.filter((name) => name === 'get_LocalNetInfo').length, 1);
  set({page: 'video'});
  const leaving = loadPage('network');
  readAgain();
  await Promise.all([left, leaving]);
  assert.equal(asked.filter((name) => name === 'get_LocalNetInfo').length, 1);
});
