import { ApiError, api, withQuery } from './api';
import { confirmDialog, describe } from './confirm';
import { h } from './dom';
import { COLUMN_TEXT, GuiaFile, LINE_COLUMNS } from './guia';
import { t } from './i18n';
import { navigate } from './router';

interface Problem {
  field: string;
  message: string;
}

function readProblems(value: unknown): Problem[] {
  const list = Array.isArray(value) ? value : ((value as Record<string, unknown>)?.problems ?? (value as Record<string, unknown>)?.not_printable ?? []);
  if (!Array.isArray(list)) return [];
  return list.map((p) => {
    if (typeof p === 'string') return { field: '', message: p };
    const o = (p ?? {}) as Record<string, unknown>;
    return { field: String(o.field ?? o.place ?? o.name ?? ''), message: String(o.what ?? o.error ?? o.message ?? o.description ?? '') };
  });
}

// A saved Guia: what it holds, whether it prints, its printed form in the page, and the ways on
// from it (download, copy, delete).
export async function guiaViewPage(main: HTMLElement, params: Record<string, string>): Promise<void> {
  const id = params.id;
  const guia = await api.get<GuiaFile>(`/guias/${encodeURIComponent(id)}`);
  const problems = readProblems(await api.get<unknown>(`/guias/${encodeURIComponent(id)}/printable`));
  const c = guia.cabecalho ?? {};
  const pdf = withQuery(`/guias/${encodeURIComponent(id)}/pdf`);
  const saved = new URLSearchParams(location.search).has('saved');

  const remove = h('button', { type: 'button', class: 'danger' }, t('delete'));
  remove.addEventListener('click', () => void deleteGuia(id));

  const printing = problems.length
    ? h('section', { class: 'card', 'aria-labelledby': 'print-title' },
        h('h2', { id: 'print-title' }, t('notPrintable')),
        h('div', { class: 'notice warn', role: 'alert' }, t('notPrintableIntro')),
        h('ul', { class: 'problems' }, problems.map((p) => h('li', {}, p.field ? h('code', {}, p.field) : null, p.field ? ': ' : '', p.message))))
    : h('section', { class: 'card', 'aria-labelledby': 'print-title' },
        h('h2', { id: 'print-title' }, t('printedForm')),
        h('div', { class: 'actions' },
          h('a', { href: pdf, download: `guia-${id}.pdf`, class: 'button', id: 'download-pdf' }, t('downloadPdf')),
          h('span', { class: 'muted' }, t('everyCopy'))),
        h('iframe', { class: 'pdf', src: pdf, title: t('pdfPreview', { id }) }));

  main.replaceChildren(
    h('h1', {}, t('guiaN', { id })),
    saved ? h('div', { class: 'notice', role: 'status' }, t('guiaSaved', { id })) : '',
    h('section', { class: 'card', 'aria-labelledby': 'summary-title' },
      h('h2', { id: 'summary-title' }, t('guiaHeader')),
      h('dl', { class: 'described' },
        h('dt', {}, t('client')), h('dd', {}, `${c.cb_CodCliente ?? ''} — ${c.cb_Nome ?? ''}`),
        h('dt', {}, t('contract')), h('dd', {}, c.cb_CodContrato ?? ''),
        h('dt', {}, t('date')), h('dd', {}, c.cb_DataRequisicao ?? ''),
        h('dt', {}, t('documentNumber')), h('dd', {}, c.cb_NDoc ?? '')),
      h('div', { class: 'table-wrap', tabindex: 0 }, h('table', {},
        h('caption', { class: 'skip' }, t('guiaLines')),
        h('thead', {}, h('tr', {}, h('th', { scope: 'col' }, '#'), LINE_COLUMNS.map((col) => h('th', { scope: 'col', title: col }, t(COLUMN_TEXT[col]))))),
        h('tbody', {}, (guia.produtos ?? []).map((p, i) => h('tr', {}, h('th', { scope: 'row' }, String(i + 1)), LINE_COLUMNS.map((col) => h('td', {}, p[col] ?? ''))))))),
      h('div', { class: 'actions' },
        h('a', { href: `/?copy=${encodeURIComponent(id)}` }, t('copyToNew')),
        h('a', { href: '/guias' }, t('backToList')),
        remove)),
    printing);
}

// What a delete takes, from the API's {"dry_run", "deleted": {...}} (or the answer as it is).
export function cascadeOf(answer: unknown): unknown {
  const o = answer as Record<string, unknown> | null;
  return o && typeof o === 'object' && 'deleted' in o ? o.deleted : answer;
}

// Asks the server what a delete takes (a dry run), names it, and deletes only on a yes.
export async function deleteGuia(id: string): Promise<boolean> {
  const cascade = await api.del<unknown>(`/guias/${encodeURIComponent(id)}`, { dry_run: 1 });
  const yes = await confirmDialog(t('deleteGuiaTitle', { id }), [h('p', {}, t('deleteTakes')), describe(cascadeOf(cascade))], t('deleteConfirm'));
  if (!yes) return false;
  try {
    await api.del(`/guias/${encodeURIComponent(id)}`);
  } catch (error) {
    alert(error instanceof ApiError ? error.message : String(error));
    return false;
  }
  navigate('/guias?deleted=' + encodeURIComponent(id));
  return true;
}
