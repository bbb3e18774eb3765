// The line that says what is going on and how it ended. Screen readers hear it.
import {el, icon} from './dom.js';

const kSigns = {good: 'done', bad: 'alert', warn: 'alert', info: 'info'};

export class Notice {
  constructor() {
    this.node = el('div', {class: 'status', role: 'status'});
  }

  // tone: busy, good, warn, bad or info; further nodes follow the text. Without a tone it is empty.
  say(tone, text, ...more) {
    this.node.className = `status ${tone || ''}`;
    if (!tone) return this.node.replaceChildren();
    const sign = tone === 'busy' ? el('span', {class: 'spinner'}) : icon(kSigns[tone]);
    return this.node.replaceChildren(sign,
        el('div', {class: 'words'}, el('p', {}, text), ...more.filter(Boolean)));
  }
}
