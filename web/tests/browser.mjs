// The pages in a real browser: Debian's Chromium, headless, driven by playwright-core against
// `nimbara serve` on a fresh SQLite database. A clerk fills a Guia with a wrong line, sees the error
// and the accepted values, fixes it from the keyboard, saves, previews and downloads the PDF (whose
// symbol is read back), finds the Guia in the list and exports it; an administrator imports an old
// Jet file with its progress; a server with users asks for a login and refuses a write without the
// CSRF token. axe-core checks every page, and every page is photographed into --out.
//
//   node browser.mjs --nimbara BIN --symbol PDF_SYMBOL_BIN --jet FIXTURE_FOLDER --out SCREENSHOT_FOLDER
import { spawn, spawnSync } from 'node:child_process';
import { existsSync, mkdirSync, mkdtempSync, readFileSync, rmSync, writeFileSync } from 'node:fs';
import { createRequire } from 'node:module';
import { tmpdir } from 'node:os';
import { join } from 'node:path';
import { parseArgs } from 'node:util';

const require = createRequire(import.meta.url);
const { values: args } = parseArgs({
  options: { nimbara: { type: 'string' }, symbol: { type: 'string' }, jet: { type: 'string' }, out: { type: 'string' } },
});
const CHROMIUM = process.env.NIMBARA_CHROMIUM ?? '/usr/bin/chromium';
if (!existsSync(CHROMIUM)) {
  if (!process.env.CI) {
    console.log(`SKIP: no Chromium at ${CHROMIUM} (install Debian's chromium, or run in CI where it is required)`);
    process.exit(77);
  }
  console.error(`${CHROMIUM} is missing, and CI needs the browser tests`);
  process.exit(1);
}
const { chromium } = require('playwright-core');
const axeSource = readFileSync(require.resolve('axe-core/axe.min.js'), 'utf8');

const work = mkdtempSync(join(tmpdir(), 'nimbara-browser-'));
mkdirSync(args.out, { recursive: true });
const servers = [];
let failures = 0;

function check(ok, what) {
  console.log(`${ok ? 'ok' : 'FAILED'}: ${what}`);
  if (!ok) failures += 1;
  return ok;
}

function nimbara(...argv) {
  const run = spawnSync(args.nimbara, argv, { encoding: 'utf8', env: { ...process.env } });
  if (run.status !== 0) throw new Error(`nimbara ${argv.join(' ')} failed (${run.status}): ${run.stderr}`);
  return run.stdout;
}

// A fresh database with one client and its contract.
function freshDatabase(name) {
  const db = `sqlite:${join(work, `${name}.db`)}`;
  nimbara('db', 'init', '--db', db);
  const client = {
    vCod_Cliente: '456', vNome: 'Livraria Exemplo, Lda', iTipoCliente: 1, vMorada: 'Rua das Flores, 12', vLocalidade: 'Lisboa',
    vCodPostal: '1200195', vDesigPostal: 'LISBOA', vNIF: '501234567', vObservacoes: '', iAcessoRede: 0,
    contratos: [{ vCodContrato: '300042', vDesignacao: 'Correio editorial', vJppCredenciado: false, vCodCredencial: '0',
      vValidacao: '', vDescricao: '', bActivo: true }],
  };
  const file = join(work, `${name}-client.json`);
  writeFileSync(file, JSON.stringify(client));
  nimbara('db', 'client', 'save', '--db', db, file);
  return db;
}

// Starts `nimbara serve` on a free port and answers its base address once it listens.
function serve(db) {
  return new Promise((resolve, reject) => {
    const server = spawn(args.nimbara, ['serve', '--db', db, '--listen', '127.0.0.1:0'], { stdio: ['ignore', 'pipe', 'pipe'] });
    servers.push(server);
    let said = '';
    const timer = setTimeout(() => reject(new Error(`nimbara serve said no address in 20 s: ${said}`)), 20000);
    const listen = (chunk) => {
      said += chunk;
      const m = /127\.0\.0\.1:(\d+)/.exec(said);
      if (m && m[1] !== '0') {
        clearTimeout(timer);
        resolve(`http://127.0.0.1:${m[1]}`);
      }
    };
    server.stdout.on('data', listen);
    server.stderr.on('data', listen);
    server.on('exit', (code) => reject(new Error(`nimbara serve ended (${code}): ${said}`)));
  });
}

async function axe(page, name) {
  await page.evaluate(axeSource);
  const result = await page.evaluate(() => window.axe.run(document, { resultTypes: ['violations'] }));
  const bad = result.violations.filter((v) => v.impact === 'serious' || v.impact === 'critical');
  for (const v of bad) console.log(`  ${v.impact} ${v.id}: ${v.help} (${v.nodes.map((n) => n.target.join(' ')).join('; ')})`);
  check(bad.length === 0, `${name}: no serious or critical accessibility violation`);
}

async function shoot(page, name) {
  await page.screenshot({ path: join(args.out, `${name}.png`), fullPage: true });
  await axe(page, name);
}

function cell(page, row, column) {
  return page.locator(`input[data-row="${row}"][data-column="${column}"]`);
}

// Script errors and refusals by the page's security policy land in the console.
const consoleErrors = [];
function watchConsole(page) {
  page.on('console', (m) => m.type() === 'error' && consoleErrors.push(m.text()));
  page.on('pageerror', (e) => consoleErrors.push(String(e)));
}
function checkConsole(when) {
  check(consoleErrors.length === 0, `no error in the console ${when}${consoleErrors.length ? `: ${consoleErrors.join(' | ')}` : ''}`);
  consoleErrors.length = 0;
}

async function clerkRound(page, base) {

  await page.goto(`${base}/`);
  await page.selectOption('#client', '456');
  await page.waitForFunction(() => document.querySelector('#contract')?.value === '300042');
  await page.fill('#credential', '77');
  await page.locator('#credential').dispatchEvent('change');

  // The wrong line, typed: C03 in zone 01 weighing 0 g is under no weight step.
  await cell(page, 0, 'B_Produto').focus();
  for (const value of ['C03', '01', '0', '500', '0', '0', '1']) {
    await page.keyboard.type(value);
    await page.keyboard.press('Enter');
  }
  check(await cell(page, 0, 'Desconto').evaluate((e) => e === document.activeElement), 'Enter walks the grid cell by cell');
  // Leaving the row checks it.
  await page.keyboard.press('Control+Enter');
  const detail = page.locator('tr.detail td.error');
  await detail.waitFor({ timeout: 10000 });
  const detailText = await detail.innerText();
  check(/Erro na Validação do Peso/.test(detailText), `the refused line shows the system's text: ${detailText}`);
  check(/0\s*–\s*2000/.test(detailText), 'the refused line shows the accepted weight steps');
  check(await cell(page, 0, 'Escalao').getAttribute('aria-invalid') === 'true', 'the weight cell is marked invalid');
  await cell(page, 0, 'Escalao').focus();
  await page.locator('aside.help .notice.bad').waitFor();
  check(/0\s*–\s*2000/.test(await page.locator('aside.help').innerText()), 'the side panel lists the accepted values beside the error');
  await shoot(page, 'form-refused-line');

  // Fixed from the keyboard: back up to the weight and type it again, then leave the line.
  await cell(page, 0, 'B_Produto').focus();
  await page.keyboard.press('Tab');
  await page.keyboard.press('Tab');
  await page.keyboard.type('100');
  await page.keyboard.press('ArrowDown'); // to the spare line the Ctrl+Enter made
  await page.locator('tr.accepted').first().waitFor({ timeout: 10000 });
  check(await page.locator('tr.detail td.error').count() === 0, 'the fixed line carries no error');
  // The spare line is left blank: saving ignores it.

  // The draft survives a reload.
  await page.reload();
  await page.locator('input[data-row="0"][data-column="Escalao"]').waitFor();
  check(await cell(page, 0, 'Escalao').inputValue() === '100', 'the draft is kept in the browser across a reload');
  await shoot(page, 'form');

  await page.click('text=Gravar Guia');
  await page.waitForURL(/\/guias\/\d+\?saved=1/, { timeout: 15000 });
  const id = /\/guias\/(\d+)/.exec(page.url())[1];
  check(await page.evaluate(() => localStorage.getItem('nimbara.draft')) === null, 'saving clears the draft');
  await page.locator('iframe.pdf').waitFor();
  const previewStatus = await page.evaluate(async (src) => (await fetch(src)).headers.get('content-type'), await page.locator('iframe.pdf').getAttribute('src'));
  check(/application\/pdf/.test(previewStatus ?? ''), 'the preview frame shows a PDF');
  await shoot(page, 'guia-saved');

  const [download] = await Promise.all([page.waitForEvent('download'), page.click('#download-pdf')]);
  const pdf = join(work, 'guia.pdf');
  await download.saveAs(pdf);
  const symbol = spawnSync(args.symbol, [pdf, '1'], { encoding: 'utf8' });
  check(symbol.status === 0 && symbol.stdout.startsWith('CR01'), `the downloaded PDF's symbol reads back: ${symbol.stdout.trim().slice(0, 40)}…`);

  // The list finds it and exports it.
  await page.goto(`${base}/guias`);
  const link = page.locator(`a[href="/guias/${id}"]`).first();
  check(await link.count() === 1, `the list links Guia ${id}`);
  const [csv] = await Promise.all([page.waitForEvent('download'), page.click('#export-csv')]);
  const csvFile = join(work, 'guias.csv');
  await csv.saveAs(csvFile);
  const csvText = readFileSync(csvFile, 'utf8');
  check(/Livraria Exemplo/.test(csvText) && /C03/.test(csvText), 'the CSV export holds the saved Guia');
  await shoot(page, 'list');

  await page.goto(`${base}/summary`);
  await page.locator('svg.chart').waitFor();
  check(/C03/.test(await page.locator('svg.chart').textContent()), 'the month\'s chart has a bar for the product');
  await shoot(page, 'summary');

  // Copying makes a new draft with the same lines.
  await page.goto(`${base}/?copy=${id}`);
  await cell(page, 0, 'B_Produto').waitFor();
  check(await cell(page, 0, 'B_Produto').inputValue() === 'C03', 'a copied Guia brings its lines into the form');
  // Two rows copied from a spreadsheet, pasted into the first cell after the copied line.
  await page.click('text=Acrescentar linha');
  await cell(page, 1, 'B_Produto').evaluate((input) => {
    const data = new DataTransfer();
    data.setData('text/plain', 'C03\t01\t100\t500\t0\t0\t1\t0\t0\t0\t0\r\nC03\t01\t0\t500\t0\t0\t1\t0\t0\t0\t0\r\n');
    input.dispatchEvent(new ClipboardEvent('paste', { clipboardData: data, bubbles: true, cancelable: true }));
  });
  await page.locator('tr.refused').first().waitFor({ timeout: 10000 });
  await page.locator('tr.accepted').nth(0).waitFor({ timeout: 10000 });
  const pasted = await page.locator('tbody tr:not(.detail)').evaluateAll((rows) => rows.map((r) => r.className.replace('current', '').trim()));
  check(pasted.length === 3 && pasted[1] === 'accepted' && pasted[2] === 'refused',
    `pasted rows fill the grid and are checked at once (${pasted.join(', ')})`);
  check(await cell(page, 2, 'Escalao').inputValue() === '0', 'the second pasted row lands in the next line');
  await shoot(page, 'form-pasted');
  await page.evaluate(() => localStorage.removeItem('nimbara.draft'));

  // English on request.
  await page.click('button:text("English")');
  check(await page.locator('h1').innerText() === 'New Guia', 'the English switch changes the texts');
  await shoot(page, 'form-english');
  await page.click('button:text("Português")');

  checkConsole('on the clerk\'s pages');
  return id;
}

async function adminRound(page, base) {
  await page.goto(`${base}/admin/clients`);
  await page.locator('text=Livraria Exemplo, Lda').waitFor();
  await shoot(page, 'clients');
  await page.click('tr:has-text("456") button:text("Editar")');
  await page.locator('#contracts-title').waitFor();
  await shoot(page, 'client-edit');

  await page.goto(`${base}/admin/settings`);
  await page.click('#preview-settings');
  await page.locator('text=Pré-visualização atualizada').waitFor({ timeout: 15000 });
  await shoot(page, 'settings');

  await page.goto(`${base}/admin/users`);
  await page.locator('#new-user-title').waitFor();
  await shoot(page, 'users');

  // The import: the dry run's report, then the progress, then the summary.
  await page.goto(`${base}/admin/import`);
  await page.setInputFiles('#jet-file', join(args.jet, 'v0512.mdb'));
  await page.click('text=Simular importação');
  await page.locator('#import-run').waitFor({ timeout: 60000 });
  await shoot(page, 'import-dry-run');
  await page.click('#import-run');
  await page.locator('#import-progress').waitFor();
  await page.locator('text=Importação concluída').waitFor({ timeout: 120000 });
  const progress = await page.locator('#import-progress').evaluate((e) => [e.value, e.max]);
  check(progress[0] === progress[1] && progress[1] > 1, `the progress bar ends full (${progress.join(' of ')})`);
  await shoot(page, 'import-done');
  checkConsole('on the administrator\'s pages');
}

async function loginRound(browser) {
  const db = freshDatabase('users');
  const add = spawnSync(args.nimbara, ['users', 'add', 'ana', '--role', 'admin', '--db', db], { input: 'segredo-longo-1\nsegredo-longo-1\n', encoding: 'utf8' });
  if (!check(add.status === 0, `a user is added (${add.stderr.trim()})`)) return;
  const base = await serve(db);
  const page = await browser.newPage();
  await page.goto(`${base}/`);
  await page.locator('#login-name').waitFor();
  await shoot(page, 'login');
  await page.fill('#login-name', 'ana');
  await page.fill('#login-password', 'errada');
  await page.click('button[type=submit]');
  await page.locator('.error:text("Utilizador ou palavra-passe errados.")').waitFor();
  check(true, 'a wrong password is refused in words');
  await page.fill('#login-password', 'segredo-longo-1');
  await page.click('button[type=submit]');
  await page.locator('h1:text("Nova Guia")').waitFor();
  check(true, 'the right password opens the form');
  // A write without the session's token is refused and changes nothing.
  const answer = await page.evaluate(async () => {
    const before = await (await fetch('/api/v1/clients')).json();
    const post = await fetch('/api/v1/clients', {
      method: 'POST', headers: { 'Content-Type': 'application/json', 'X-CSRF-Token': 'not-the-token' },
      body: JSON.stringify({ vCod_Cliente: '999', vNome: 'Intruso' }),
    });
    const after = await (await fetch('/api/v1/clients')).json();
    return { status: post.status, before: before.length, after: after.length };
  });
  check(answer.status === 403 && answer.before === answer.after, `a write with a wrong CSRF token is refused (${answer.status}), nothing added`);
  await page.close();
}

let browser;
try {
  browser = await chromium.launch({
    executablePath: CHROMIUM,
    args: ['--no-sandbox', '--disable-gpu', '--disable-quic', '--no-first-run', '--disable-background-networking',
      '--disable-component-update', '--disable-sync'],
  });
  const base = await serve(freshDatabase('clerk'));
  const context = await browser.newContext({ acceptDownloads: true, viewport: { width: 1400, height: 900 }, locale: 'pt-PT' });
  const page = await context.newPage();
  watchConsole(page);
  await clerkRound(page, base);
  await adminRound(page, base);
  await loginRound(browser);
} catch (error) {
  console.error(error);
  failures += 1;
} finally {
  await browser?.close();
  for (const s of servers) s.kill();
  rmSync(work, { recursive: true, force: true });
}
console.log(failures ? `${failures} check(s) failed` : `every check passed; screenshots in ${args.out}`);
process.exit(failures ? 1 : 0);
