// The pages' modules for node. A folder of scripts is none of modules to node without a package
// file, which the pages have no use for: the tests load a copy that has one.
import {cpSync, mkdtempSync, rmSync, writeFileSync} from 'node:fs';
import {tmpdir} from 'node:os';
import {join} from 'node:path';
import {fileURLToPath, pathToFileURL} from 'node:url';

export const kRoot = fileURLToPath(new URL('../../../web_root/', import.meta.url));

const copy = mkdtempSync(join(tmpdir(), 'pages-'));
cpSync(join(kRoot, 'js'), copy, {recursive: true});
writeFileSync(join(copy, 'package.json'), '{"type": "module"}');
process.on('exit', () => rmSync(copy, {recursive: true, force: true}));

// A module of web_root/js: load('gbk.js').
export const load = (name) => import(pathToFileURL(join(copy, name)).href);
