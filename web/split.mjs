// Scripts of the pages. What comes later shares the application's modules: the application hands
// them over by number, so that there is one store, one queue and one set of words.
import {readdirSync} from 'node:fs';
import {join, relative, resolve} from 'node:path';
import {build} from 'esbuild';

const kTarget = ['chrome70', 'firefox65', 'safari12.1'];
const kShared = 'window.recorderPages';

const bundle = (root, more) => build({
  absWorkingDir: root, bundle: true, minify: true, write: false, metafile: true, format: 'iife',
  target: kTarget, charset: 'utf8', jsx: 'automatic', jsxImportSource: 'preact',
  legalComments: 'none', logLevel: 'warning',
  // Safari 12 has it but for a rare form of assignment that is not used here.
  supported: {destructuring: true, 'template-literal': true}, ...more,
});
const textOf = (result) => result.outputFiles[0].text;

// Takes what the application has from there, and notes what was asked for.
const borrow = (root, own, asked) => ({
  name: 'borrow',
  setup({onResolve, onLoad, resolve: find}) {
    onResolve({filter: /.*/}, async ({path, kind, importer, resolveDir, pluginData}) => {
      if (pluginData === 'inner' || kind === 'entry-point') return undefined;
      const found = await find(path, {kind, importer, resolveDir, pluginData: 'inner'});
      const number = own.indexOf(relative(root, found.path));
      if (number < 0) return undefined;
      asked.add(number);
      return {path: String(number), namespace: 'shared'};
    });
    onLoad({filter: /.*/, namespace: 'shared'}, ({path}) =>
      ({contents: `module.exports = ${kShared}[${path}]`, loader: 'js'}));
  },
});

const entry = (root, name) => ({entryPoints: [join(root, 'src', name)]});

// The application with what the others ask of it.
function lender(root, own, asked) {
  const numbers = [...asked].sort((a, b) => a - b);
  const imports = numbers.map((i) => `import * as m${i} from ${JSON.stringify(`./${own[i]}`)};`);
  const list = numbers.map((i) => `${i}:m${i}`);
  return bundle(root, {stdin: {resolveDir: root, loader: 'ts',
    contents: `${imports.join('')}${kShared}={${list}};import './src/app';`}});
}

// The texts of all scripts; those that come later by name, one for each file of src/later.
export async function scripts(folder) {
  const root = resolve(folder);
  const [login, app] = await Promise.all([entry(root, 'login.tsx'), entry(root, 'app.tsx')]
      .map((wanted) => bundle(root, wanted)));
  const own = Object.keys(app.metafile.inputs).sort();
  const asked = new Set();
  const later = await Promise.all(readdirSync(join(root, 'src/later')).sort().map(async (file) => {
    const plugins = [borrow(root, own, asked)];
    const result = await bundle(root, {...entry(root, `later/${file}`), plugins});
    return [file.replace(/\.tsx?$/, ''), textOf(result)];
  }));
  return {login: textOf(login), app: textOf(await lender(root, own, asked)), later: new Map(later)};
}
