// Writes the complete web_root: documents, the two guarded style sheets, hashed assets, and beside
// each text above 1 KB its compressed form. The same sources give the same bytes.
//   node build.mjs <folder>
import {createHash} from 'node:crypto';
import {mkdirSync, readFileSync, readdirSync, renameSync, rmSync, utimesSync, writeFileSync}
  from 'node:fs';
import {join, resolve} from 'node:path';
import {fileURLToPath} from 'node:url';
import {gzipSync} from 'node:zlib';
import {transform} from 'esbuild';
import {scripts} from './split.mjs';

const kHere = fileURLToPath(new URL('.', import.meta.url));
const kTarget = ['chrome70', 'firefox65', 'safari12.1'];
const kCompressAbove = 1024;
// Bookmarks from the time when each page was a document.
const kOldPages =
    ['status', 'device', 'video', 'network', 'platforms', 'security', 'maintenance'];
const kIsText = /\.(?:html|css|js|svg)$/;

const read = (...path) => readFileSync(join(kHere, ...path), 'utf8');
const hash = (text) => createHash('sha256').update(text).digest('hex').slice(0, 10);

async function sheet(name) {
  const {code} = await transform(read('styles', `${name}.css`),
      {loader: 'css', minify: true, target: kTarget});
  return code;
}

const squeeze = (html) => html.replace(/<!--[^]*?-->\n?/g, '').replace(/\n\s*/g, '\n');

// Names of the outputs and their text.
async function make() {
  const files = new Map();
  const asset = (name, kind, text) => {
    const path = `assets/${name}.${hash(text)}.${kind}`;
    files.set(path, text);
    return path;
  };
  const [{login, app, later}, base, page, sets] =
      await Promise.all([scripts(kHere), sheet('base'), sheet('page'), sheet('sets')]);
  const comeLater = [...later]
      .map(([name, text]) => `data-${name}="${asset(name, 'js', text)}"`).join(' ');
  const words = {
    BASE: asset('base', 'css', base), LOGIN: asset('login', 'js', login),
    APP: asset('app', 'js', app), LATER: comeLater,
    // A browser checks the icon again at each change of page, but caches files with a hash.
    ICON: asset('icon', 'svg', read('documents', 'icon.svg')),
  };
  // Guarded sheets keep their names; a page that is open during an upgrade sees the new mark.
  const mark = hash([...files.keys(), page, sets].join());
  files.set('page.css', `:root{--build:${mark}}${page}`);
  files.set('sets.css', sets);
  files.set('favicon.svg', read('documents', 'icon.svg'));
  for (const name of readdirSync(join(kHere, 'documents')).filter((n) => n.endsWith('.html')))
    files.set(name, squeeze(read('documents', name))
        .replace(/\{([A-Z]+)\}/g, (_, word) => words[word] || mark));
  for (const page of kOldPages)
    files.set(`${page}.html`, '<!doctype html><title>Recorder</title>' +
        `<meta http-equiv="refresh" content="0; url=app.html#/${page}">\n`);
  return files;
}

function writeOut(folder, files) {
  const now = new Date();
  const put = (path, bytes) => {
    writeFileSync(join(folder, path), bytes);
    utimesSync(join(folder, path), now, now);  // a compressed form must not be older than its file
  };
  rmSync(folder, {recursive: true, force: true});
  mkdirSync(join(folder, 'assets'), {recursive: true});
  for (const [path, text] of files) {
    const bytes = Buffer.from(text);
    put(path, bytes);
    if (kIsText.test(path) && bytes.length > kCompressAbove)
      put(`${path}.gz`, gzipSync(bytes, {level: 9}));
  }
}

const folder = resolve(process.argv[2] || join(kHere, '../build/web_root'));
const files = await make();
// Written beside it and moved into place: a daemon that serves it meanwhile sees the old or the new
// one.
writeOut(`${folder}.new`, files);
rmSync(folder, {recursive: true, force: true});
renameSync(`${folder}.new`, folder);
const bytes = [...files.values()].reduce((sum, text) => sum + Buffer.byteLength(text), 0);
console.log(`${files.size} files, ${bytes} bytes without the compressed forms, in ${folder}`);
