// Bundles the pages into one folder: index.html and the scripts and styles it names, each under a
// name carrying a hash of its content so that a browser may keep it for ever.
import { build } from 'esbuild';
import { mkdirSync, readFileSync, rmSync, writeFileSync } from 'node:fs';
import { basename, dirname, join } from 'node:path';
import { fileURLToPath } from 'node:url';

const here = dirname(fileURLToPath(import.meta.url));
const outdir = process.argv[2];
if (!outdir) {
  console.error('usage: node build.mjs OUTPUT_FOLDER');
  process.exit(2);
}
rmSync(outdir, { recursive: true, force: true });
mkdirSync(join(outdir, 'assets'), { recursive: true });

const result = await build({
  entryPoints: { app: join(here, 'src/main.ts') },
  bundle: true,
  format: 'esm',
  target: 'es2022',
  minify: true,
  sourcemap: false,
  legalComments: 'none',
  outdir: join(outdir, 'assets'),
  entryNames: '[name]-[hash]',
  metafile: true,
  logLevel: 'warning',
});

const outputs = Object.keys(result.metafile.outputs).map((p) => basename(p));
const script = outputs.find((n) => n.endsWith('.js'));
const style = outputs.find((n) => n.endsWith('.css'));
if (!script || !style) {
  console.error('build.mjs: the bundle lacks its script or its style sheet');
  process.exit(1);
}
const page = readFileSync(join(here, 'src/index.html'), 'utf8')
  .replace('%SCRIPT%', `/assets/${script}`)
  .replace('%STYLE%', `/assets/${style}`);
writeFileSync(join(outdir, 'index.html'), page);
writeFileSync(join(outdir, 'favicon.svg'), readFileSync(join(here, 'src/favicon.svg')));
