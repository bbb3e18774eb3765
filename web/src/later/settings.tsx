// The pages about every setting, with their words: a script that comes with the first of them.
import {giveEveryField} from '../state/everySetting';
import {loadRuns} from '../state/fleet';
import {addWords} from '../words';
import {settings as en} from '../words/en-settings';
import {settings as zh} from '../words/zh-settings';
import {Apply} from '../views/fleet/Apply';
import {Runs} from '../views/fleet/Runs';
import {Template} from '../views/fleet/Template';
import {giveView} from '../views/Later';
import {Maintenance} from '../views/Maintenance';
import {AllSettings} from '../views/settings/AllSettings';

const Fleet = () => <div class="cards"><Apply /><Runs /><Template /></div>;

addWords('en', en);
addWords('zh', zh);
giveEveryField();
loadRuns();
giveView('maintenance', Maintenance);
giveView('settings', AllSettings);
giveView('fleet', Fleet);
