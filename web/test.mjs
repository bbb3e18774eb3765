// Bundles the unit tests, because node does not run TypeScript, and runs them: node test.mjs [part
// of a name]
import {spawnSync} from 'node:child_process';
import {mkdtempSync, readdirSync, rmSync} from 'node:fs';
import {tmpdir} from 'node:os';
import {join} from 'node:path';
import {fileURLToPath} from 'node:url';
import {build} from 'esbuild';

const kHere = fileURLToPath(new URL('.', import.meta.url));

function find(folder) {
  return readdirSync(folder, {withFileTypes: true}).flatMap((entry) => {
    const path = join(folder, entry.name);
    return entry.isDirectory() ? find(path) : path.endsWith('.test.ts') ? [path] : [];
  });
}

const wanted = process.argv[2] || '';
const files = find(join(kHere, 'test')).filter((path) => path.includes(wanted));
if (!files.length) throw new Error(`no test is called "${wanted}"`);
const out = mkdtempSync(join(tmpdir(), 'pages-'));
await build({entryPoints: files, outdir: out, outbase: join(kHere, 'test'), bundle: true,
  platform: 'node', format: 'esm', outExtension: {'.js': '.mjs'}, jsx: 'automatic',
  jsxImportSource: 'preact', sourcemap: 'inline', define: {PROJECT: JSON.stringify(join(kHere, '..'))}});
const bundled = files.map((path) =>
  join(out, path.slice(join(kHere, 'test').length).replace(/\.ts$/, '.mjs')));
const {status} = spawnSync(process.execPath, ['--enable-source-maps', '--test', ...bundled],
    {stdio: 'inherit'});
rmSync(out, {recursive: true, force: true});
process.exit(status === null ? 1 : status);
