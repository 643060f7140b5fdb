// Bundles the unit tests (TypeScript) into OUTPUT_FOLDER and runs them with Node's test runner.
import { build } from 'esbuild';
import { spawnSync } from 'node:child_process';
import { readdirSync } from 'node:fs';
import { dirname, join } from 'node:path';
import { fileURLToPath } from 'node:url';

const here = dirname(fileURLToPath(import.meta.url));
const out = process.argv[2];
const tests = readdirSync(here).filter((f) => f.endsWith('.test.ts'));
await build({
  entryPoints: tests.map((f) => join(here, f)),
  bundle: true,
  platform: 'node',
  format: 'esm',
  outdir: out,
  outExtension: { '.js': '.mjs' },
  logLevel: 'warning',
});
const run = spawnSync(process.execPath, ['--test', ...tests.map((f) => join(out, f.replace(/\.ts$/, '.mjs')))], { stdio: 'inherit' });
process.exit(run.status ?? 1);
