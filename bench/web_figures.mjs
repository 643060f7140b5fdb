// The form page's figures: the compressed size of its scripts and styles (from the build's
// asset-sizes.tsv) and its first render (first-contentful-paint) in headless Chromium against
// `nimbara serve` on a fresh database, the median of several cold loads.
//   node bench/web_figures.mjs [BUILD_FOLDER] [LOADS]
import { spawn, spawnSync } from 'node:child_process';
import { mkdtempSync, readFileSync, rmSync } from 'node:fs';
import { createRequire } from 'node:module';
import { tmpdir } from 'node:os';
import { dirname, join, resolve } from 'node:path';
import { fileURLToPath } from 'node:url';

const root = resolve(dirname(fileURLToPath(import.meta.url)), '..');
const build = resolve(process.argv[2] ?? join(root, 'build'));
const loads = Number(process.argv[3] ?? 7);
const require = createRequire(join(root, 'web/package.json'));
const { chromium } = require('playwright-core');

// Size: what the browser receives for the form page's scripts and styles (the gzip copy when there is one).
const rows = readFileSync(join(build, 'web/asset-sizes.tsv'), 'utf8').trim().split('\n').slice(1).map((l) => l.split('\t'));
const page = rows.filter(([path]) => /\.(js|css)$/.test(path));
const sent = page.reduce((sum, [, , bytes]) => sum + Number(bytes), 0);
const raw = page.reduce((sum, [, bytes]) => sum + Number(bytes), 0);
console.log(`form page scripts+styles: ${(sent / 1024).toFixed(1)} KB compressed (${(raw / 1024).toFixed(1)} KB raw); budget 150 KB: ${sent < 150 * 1024 ? 'met' : 'MISSED'}`);

// First render.
const nimbara = join(build, 'bin/nimbara');
const work = mkdtempSync(join(tmpdir(), 'nimbara-web-bench-'));
const db = `sqlite:${join(work, 'bench.db')}`;
spawnSync(nimbara, ['db', 'init', '--db', db], { stdio: 'ignore' });
const server = spawn(nimbara, ['serve', '--db', db, '--listen', '127.0.0.1:0'], { stdio: ['ignore', 'pipe', 'pipe'] });
const base = await new Promise((ok, fail) => {
  let said = '';
  const seen = (chunk) => {
    said += chunk;
    const m = /127\.0\.0\.1:(\d+)/.exec(said);
    if (m && m[1] !== '0') ok(`http://127.0.0.1:${m[1]}`);
  };
  server.stdout.on('data', seen);
  server.stderr.on('data', seen);
  server.on('exit', () => fail(new Error(`nimbara serve ended: ${said}`)));
});
const browser = await chromium.launch({
  executablePath: process.env.NIMBARA_CHROMIUM ?? '/usr/bin/chromium',
  args: ['--no-sandbox', '--disable-gpu', '--disable-quic', '--no-first-run', '--disable-background-networking',
    '--disable-component-update', '--disable-sync'],
});
const times = [];
try {
  for (let i = 0; i < loads; i++) {
    const context = await browser.newContext(); // cold: no cache, no storage
    const tab = await context.newPage();
    await tab.goto(`${base}/`, { waitUntil: 'load' });
    const fcp = await tab.evaluate(() => new Promise((done) => {
      const seen = performance.getEntriesByName('first-contentful-paint')[0];
      if (seen) return done(seen.startTime);
      new PerformanceObserver((list) => done(list.getEntries()[0].startTime)).observe({ type: 'paint', buffered: true });
    }));
    times.push(fcp);
    await context.close();
  }
} finally {
  await browser.close();
  server.kill();
  rmSync(work, { recursive: true, force: true });
}
times.sort((a, b) => a - b);
const median = times[Math.floor(times.length / 2)];
console.log(`first-contentful-paint of the form page: median ${median.toFixed(0)} ms over ${loads} cold loads (min ${times[0].toFixed(0)}, max ${times.at(-1).toFixed(0)}); budget 300 ms: ${median < 300 ? 'met' : 'MISSED'}`);
