// The old browser as a test sees it; old_engine.py runs it.
import {spawn} from 'node:child_process';
import {once} from 'node:events';
import {chmodSync, openSync} from 'node:fs';
import {join} from 'node:path';
import {createInterface} from 'node:readline';
import {fileURLToPath} from 'node:url';
import {until} from './until.js';

const kProgram = fileURLToPath(new URL('old_engine.py', import.meta.url));

// In the page: where an element that can be clicked has its middle.
function middle(wanted) {
  const node = document.querySelector(wanted);
  if (!node || node.disabled) return null;
  node.scrollIntoView({block: 'center'});
  const {left, top, width, height} = node.getBoundingClientRect();
  return width && [Math.round(left + width / 2), Math.round(top + height / 2)];
}

export class OldEngine {
  constructor(dir, language) {
    chmodSync(dir, 0o700);  // as the engine requires of its runtime folder
    this.errors = [];
    this.program = spawn('/usr/bin/python3', [kProgram, language], {
      stdio: ['pipe', 'pipe', openSync(join(dir, 'engine.log'), 'a')],
      env: {
        ...process.env, XDG_RUNTIME_DIR: dir, QT_QPA_PLATFORM: 'offscreen',
        QT_QUICK_BACKEND: 'software', QTWEBENGINE_CHROMIUM_FLAGS: '--no-sandbox --disable-gpu',
      },
    });
    this.lines = createInterface({input: this.program.stdout})[Symbol.asyncIterator]();
  }

  async tell(command) {
    this.program.stdin.write(`${JSON.stringify(command)}\n`);
    const {value: line, done} = await this.lines.next();
    if (done) throw new Error('the old engine has ended, see engine.log');
    const {value, errors} = JSON.parse(line);
    this.errors.push(...errors);
    return value;
  }

  goto(url) { return this.tell({goto: url}); }

  // Runs a function of the test in the page.
  run(act, ...args) {
    return this.tell({run: `(${act})(...${JSON.stringify(args)})`});
  }

  until(probe, ...args) {
    return until(() => this.run(probe, ...args), `${probe} ${JSON.stringify(args)}`);
  }

  // Clicks the middle of the selector's element once it is there and has come to rest.
  async click(selector) {
    let before = '';
    const place = await until(async () => {
      const now = await this.run(middle, selector);
      const rests = now && String(now) === before;
      before = String(now);
      return rests && now;
    }, selector);
    await this.tell({click: place});
  }

  // Puts a text in place of what an input holds, as a user does.
  async fill(selector, text) {
    await until(async () => {
      await this.click(selector);
      return this.run((wanted) => {
        const node = document.querySelector(wanted);
        if (node !== document.activeElement) return false;
        node.select();
        return true;
      }, selector);
    }, `the focus on ${selector}`);
    await this.type(text);
    await this.until((wanted, value) => document.querySelector(wanted).value === value,
        selector, text);
  }

  type(text) { return this.tell({type: text}); }

  grab(path) { return this.tell({grab: path}); }

  colours(places) { return this.tell({colours: places}); }

  async stop() {
    this.program.stdin.end();
    await once(this.program, 'exit');
  }
}
