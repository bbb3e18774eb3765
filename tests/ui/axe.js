// What automated checks of accessibility find wrong in a page, one text for each rule.
import assert from 'node:assert/strict';
import {readFileSync} from 'node:fs';
import {createRequire} from 'node:module';

const kAxe = readFileSync(createRequire(import.meta.url).resolve('axe-core/axe.min.js'), 'utf8');

export async function violations(page) {
  await page.evaluate(kAxe);  // evaluated by the test, so the page's policy does not forbid it
  const {violations: found, passes} = await page.evaluate(() => window.axe.run());
  assert.ok(passes.length > 5, 'axe looked at something');
  return found.map(({id, nodes}) => `${id}: ${nodes.map((node) => node.html).join(' | ')}`);
}
