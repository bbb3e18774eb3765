// The line that says what goes on and how it ended; screen readers hear it.
import {el, icon} from './dom.js';

const kSigns = {good: 'done', bad: 'alert', warn: 'alert', info: 'info'};

export class Notice {
  constructor() {
    this.node = el('div', {class: 'status', role: 'status'});
  }

  // tone: busy, good, warn, bad, info, or none for an empty line.
  say(tone, text, ...more) {
    this.node.className = `status ${tone || ''}`;
    if (!tone) return this.node.replaceChildren();
    const sign = tone === 'busy' ? el('span', {class: 'spinner'}) : icon(kSigns[tone]);
    return this.node.replaceChildren(sign,
        el('div', {class: 'words'}, el('p', {}, text), ...more.filter(Boolean)));
  }
}
