// Runs the unit tests: each file of test/ is bundled with what it imports and given to node.
//   node test.mjs [word]...   only the files whose path has one of the words
import {spawnSync} from 'node:child_process';
import {mkdtempSync, readdirSync, rmSync} from 'node:fs';
import {tmpdir} from 'node:os';
import {join} from 'node:path';
import {fileURLToPath} from 'node:url';
import {build} from 'esbuild';

const kHere = fileURLToPath(new URL('.', import.meta.url));
const words = process.argv.slice(2);

const files = readdirSync(join(kHere, 'test'), {recursive: true}).map(String)
    .filter((name) => name.endsWith('.test.ts'))
    .filter((name) => !words.length || words.some((word) => name.includes(word)));
if (!files.length) throw new Error(`no test of ${words.join(' or ')}`);

const folder = mkdtempSync(join(tmpdir(), 'web-test-'));
try {
  await build({
    entryPoints: files.map((name) => join(kHere, 'test', name)), outdir: folder,
    outExtension: {'.js': '.mjs'}, bundle: true, platform: 'node', format: 'esm', target: 'node18',
    jsx: 'automatic', jsxImportSource: 'preact', sourcemap: 'inline', logLevel: 'warning',
  });
  const tests = readdirSync(folder, {recursive: true}).map(String)
      .filter((name) => name.endsWith('.mjs')).map((name) => join(folder, name));
  const env = {...process.env, SOURCE_ROOT: join(kHere, '..')};
  const {status} = spawnSync(process.execPath, ['--enable-source-maps', '--test', ...tests],
      {stdio: 'inherit', env});
  process.exitCode = status === 0 ? 0 : 1;
} finally {
  rmSync(folder, {recursive: true, force: true});
}
