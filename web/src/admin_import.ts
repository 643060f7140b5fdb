import { ApiError, api } from './api';
import { describe } from './confirm';
import { clear, h } from './dom';
import { t } from './i18n';

interface Job {
  state: 'running' | 'done' | 'failed';
  done: number;
  total: number;
  summary?: unknown;
  error?: string;
}

// An old Jet file uploaded from the browser: the dry run's report first, then the import itself with
// its progress, then what it did.
export async function importPage(main: HTMLElement): Promise<void> {
  const file = h('input', { id: 'jet-file', type: 'file', name: 'file', accept: '.mdb,.accdb,application/octet-stream' });
  const check = h('button', { type: 'submit', class: 'primary' }, t('importDryRun'));
  const report = h('div', { 'aria-live': 'polite' });
  const error = h('div', { class: 'notice bad', role: 'alert' });
  const form = h('form', { class: 'card', 'aria-labelledby': 'import-title' },
    h('h2', { id: 'import-title' }, t('importChoose')),
    h('p', { class: 'muted' }, t('importIntro')),
    h('div', { class: 'field' }, h('label', { for: 'jet-file' }, t('importFile')), file),
    error,
    h('div', { class: 'actions' }, check));
  let bytes: ArrayBuffer | null = null;

  form.addEventListener('submit', async (event) => {
    event.preventDefault();
    error.textContent = '';
    clear(report);
    const chosen = file.files?.[0];
    if (!chosen) {
      error.textContent = t('importNoFile');
      file.focus();
      return;
    }
    check.disabled = true;
    try {
      bytes = await chosen.arrayBuffer();
      const dry = await api.upload<unknown>('/imports', bytes, { dry_run: 1 });
      const go = h('button', { type: 'button', class: 'primary', id: 'import-run' }, t('importRun'));
      go.addEventListener('click', () => void run(go));
      report.append(h('section', { class: 'card', 'aria-labelledby': 'dry-title' },
        h('h2', { id: 'dry-title' }, t('importDryReport', { name: chosen.name })), describe(dry), h('div', { class: 'actions' }, go)));
      go.focus();
    } catch (e) {
      error.textContent = e instanceof ApiError ? e.message : String(e);
    } finally {
      check.disabled = false;
    }
  });

  async function run(go: HTMLButtonElement): Promise<void> {
    if (!bytes) return;
    go.disabled = true;
    const bar = h('progress', { id: 'import-progress', max: 1, value: 0, 'aria-labelledby': 'progress-title' });
    const words = h('p', { 'aria-live': 'polite' }, t('importStarting'));
    const section = h('section', { class: 'card', 'aria-labelledby': 'progress-title' }, h('h2', { id: 'progress-title' }, t('importProgress')), bar, words);
    report.append(section);
    try {
      const started = await api.upload<{ id: string | number }>('/imports', bytes);
      const job = await follow(String(started.id), bar, words);
      section.append(h('h3', {}, job.state === 'done' ? t('importDone') : t('importFailed')),
        job.error ? h('p', { class: 'error' }, job.error) : '', describe(job.summary ?? {}));
    } catch (e) {
      section.append(h('p', { class: 'error', role: 'alert' }, e instanceof ApiError ? e.message : String(e)));
    }
  }

  main.replaceChildren(h('h1', {}, t('navImport')), form, report);
}

// Polls the import until it ends, moving the bar as rows are written.
async function follow(id: string, bar: HTMLProgressElement, words: HTMLElement): Promise<Job> {
  for (;;) {
    const job = await api.get<Job>(`/imports/${encodeURIComponent(id)}`);
    bar.max = Math.max(1, job.total);
    bar.value = job.done;
    words.textContent = t('importCount', { done: job.done, total: job.total });
    if (job.state !== 'running') return job;
    await new Promise((resolve) => setTimeout(resolve, 250));
  }
}
