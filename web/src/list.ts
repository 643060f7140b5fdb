import { api, listIn, withQuery } from './api';
import { clear, h } from './dom';
import { deleteGuia } from './guia_view';
import { TextKey, locale, t } from './i18n';

type Row = Record<string, unknown>;

// The columns the list can be ordered by, as the program names them.
const ORDERS = ['guia', 'data', 'cliente', 'nome', 'contrato', 'velocidade', 'produto', 'zona', 'peso', 'formato', 'ambito', 'quantidade'] as const;
const SHOWN: [string, TextKey][] = [
  ['Guia', 'colGuia'], ['Data', 'date'], ['Cliente', 'client'], ['Nome', 'colName'], ['Contrato', 'contract'],
  ['N_linha', 'colLine'], ['Produto', 'colProduct'], ['Zona', 'colZone'], ['Peso', 'colWeight'],
  ['Velocidade', 'colSpeed'], ['Formato', 'colFormat'], ['Ambito', 'colScope'], ['Quantidade', 'colQuantity'],
];

export function monthNames(): string[] {
  const format = new Intl.DateTimeFormat(locale(), { month: 'long' });
  return Array.from({ length: 12 }, (_, i) => format.format(new Date(2026, i, 1)));
}

export function yearMonthFields(query: URLSearchParams): { year: HTMLInputElement; month: HTMLSelectElement; fields: HTMLElement[] } {
  const now = new Date();
  const year = h('input', { id: 'year', name: 'year', inputmode: 'numeric', size: 6, value: query.get('year') ?? String(now.getFullYear()) });
  const month = h('select', { id: 'month', name: 'month' }, h('option', { value: '' }, t('everyMonth')),
    monthNames().map((name, i) => h('option', { value: String(i + 1) }, name)));
  month.value = query.get('month') ?? String(now.getMonth() + 1);
  return {
    year,
    month,
    fields: [
      h('div', { class: 'field' }, h('label', { for: 'year' }, t('year')), year),
      h('div', { class: 'field' }, h('label', { for: 'month' }, t('month')), month),
    ],
  };
}

// The Guias by year, month and client, in a chosen order: each line a row, each Guia a link.
export async function listPage(main: HTMLElement): Promise<void> {
  const query = new URLSearchParams(location.search);
  const { year, month, fields } = yearMonthFields(query);
  const client = h('input', { id: 'client-filter', name: 'client', inputmode: 'numeric', size: 10, value: query.get('client') ?? '' });
  const order = h('select', { id: 'order', name: 'order' }, h('option', { value: '' }, t('orderDefault')),
    ORDERS.flatMap((o) => [h('option', { value: o }, `${o} ↑`), h('option', { value: `${o} desc` }, `${o} ↓`)]));
  order.value = query.get('order') ?? '';
  const form = h('form', { class: 'toolbar', role: 'search' }, ...fields,
    h('div', { class: 'field' }, h('label', { for: 'client-filter' }, t('client')), client),
    h('div', { class: 'field' }, h('label', { for: 'order' }, t('order')), order),
    h('button', { type: 'submit', class: 'primary' }, t('search')));
  const results = h('div', { 'aria-live': 'polite' });
  const exportLink = h('a', { class: 'button', id: 'export-csv', download: 'guias.csv' }, t('exportCsv'));

  const filters = () => ({ year: year.value.trim(), month: month.value, client: client.value.trim() });
  async function show(): Promise<void> {
    const f = filters();
    exportLink.setAttribute('href', withQuery('/guias/export', { format: 'csv', ...f }));
    const rows = listIn<Row>(await api.get<unknown>('/guias', { ...f, order: order.value }), 'guias', 'lines', 'rows');
    clear(results);
    if (!rows.length) {
      results.append(h('p', { class: 'muted' }, t('noGuias')));
      return;
    }
    const guias = new Set(rows.map((r) => String(r.Req ?? r.Guia)));
    results.append(
      h('p', {}, t('listed', { guias: guias.size, lines: rows.length })),
      h('div', { class: 'table-wrap', tabindex: 0 }, h('table', {},
        h('caption', { class: 'skip' }, t('navList')),
        h('thead', {}, h('tr', {}, SHOWN.map(([, text]) => h('th', { scope: 'col' }, t(text))), h('th', { scope: 'col' }, t('actions')))),
        h('tbody', {}, rows.map((r) => {
          const id = String(r.Req ?? r.Guia);
          const remove = h('button', { type: 'button', class: 'danger' }, t('delete'));
          remove.addEventListener('click', () => void deleteGuia(id));
          return h('tr', {},
            SHOWN.map(([key]) => key === 'Guia'
              ? h('td', {}, h('a', { href: `/guias/${encodeURIComponent(id)}` }, String(r[key] ?? id)))
              : h('td', { class: typeof r[key] === 'number' ? 'number' : null }, String(r[key] ?? ''))),
            h('td', {}, h('div', { class: 'actions' },
              h('a', { href: `/?copy=${encodeURIComponent(id)}` }, t('copy')), remove)));
        })))));
  }
  form.addEventListener('submit', (event) => {
    event.preventDefault();
    const f = filters();
    const q = new URLSearchParams({ ...f, order: order.value });
    history.replaceState(null, '', `/guias?${q}`);
    void show();
  });
  const deleted = query.get('deleted');
  main.replaceChildren(h('h1', {}, t('navList')),
    deleted ? h('div', { class: 'notice', role: 'status' }, t('guiaDeleted', { id: deleted })) : '',
    h('section', { class: 'card' }, form, h('div', { class: 'actions' }, exportLink)), results);
  await show();
}
