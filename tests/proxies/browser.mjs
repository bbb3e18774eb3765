// Chromium, controlled by a Python test. Reads one JSON command per line from standard input,
// {"do": name, "with": argument}, and answers each with one line: {"value": ...} or {"error":
// text}.
import {createInterface} from 'node:readline';
import {chromium} from '../ui/node_modules/playwright-core/index.mjs';
import {agree, ended, field, go, press, shown, type} from '../ui/rig.js';

const kOptions = [
  '--no-sandbox', '--disable-gpu', '--disable-quic', '--no-first-run', '--disable-sync',
  '--disable-background-networking', '--disable-component-update',
  '--host-resolver-rules=MAP recorder 127.0.0.1',
];
const kUrl = 'https://recorder';
const kPatienceMs = 60000;

let browser;
let page;

const kCommands = {
  // A new profile, with or without the login of the way in.
  async open(httpCredentials) {
    const context = await browser.newContext({
      ignoreHTTPSErrors: true, locale: 'en-GB', httpCredentials: httpCredentials || undefined,
    });
    context.setDefaultTimeout(kPatienceMs);
    page = await context.newPage();
  },
  // The HTTP status of the address.
  goto: async (address) => (await page.goto(address)).status(),
  async signIn(password) {
    await page.goto(`${kUrl}/login.html`);
    await type(page, password);
    await shown(page, 'status');
  },
  // Changes a field of the network page as a user does, and returns the result.
  async save({form, path, value}) {
    await go(page, 'network');
    await field(page, path).fill(value);
    await press(page, form);
    await agree(page);
    return ended(page, form);
  },
  text: () => page.innerText('body'),
  waitFor: (selector) => page.waitForSelector(selector).then(() => null),
  run: (script) => page.evaluate(script),
};

async function answer(line) {
  const command = JSON.parse(line);
  try {
    return {value: await kCommands[command.do](command.with)};
  } catch (error) {
    return {error: String(error)};
  }
}

browser = await chromium.launch({executablePath: process.env.CHROMIUM, args: kOptions});
console.log(JSON.stringify({value: 'ready'}));
for await (const line of createInterface({input: process.stdin}))
  console.log(JSON.stringify(await answer(line)));
await browser.close();
