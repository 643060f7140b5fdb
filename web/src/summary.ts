import { api } from './api';
import { clear, h, svg } from './dom';
import { locale, t } from './i18n';
import { yearMonthFields } from './list';

interface Summary {
  guias: number;
  lines: number;
  products: { product: string; lines: number; quantity: number }[];
}

// A bar per product, its length the quantity handed in: drawn here so that nothing is fetched.
export function barChart(products: Summary['products'], title: string): SVGElement {
  const barHeight = 24;
  const gap = 8;
  const labelWidth = 70;
  const width = 640;
  const plot = width - labelWidth - 90;
  const height = products.length * (barHeight + gap) + gap;
  const max = Math.max(1, ...products.map((p) => Number(p.quantity) || 0));
  const number = new Intl.NumberFormat(locale());
  return svg('svg', { class: 'chart', role: 'img', 'aria-label': title, viewBox: `0 0 ${width} ${height}`, width, height },
    svg('title', {}, title),
    svg('line', { class: 'axis', x1: labelWidth, y1: 0, x2: labelWidth, y2: height }),
    products.map((p, i) => {
      const y = gap + i * (barHeight + gap);
      const w = Math.max(1, Math.round(((Number(p.quantity) || 0) / max) * plot));
      return svg('g', {},
        svg('text', { x: labelWidth - 8, y: y + barHeight / 2 + 4, 'text-anchor': 'end' }, p.product.split(' - ')[0]),
        svg('rect', { class: 'bar', x: labelWidth, y, width: w, height: barHeight }),
        svg('text', { x: labelWidth + w + 6, y: y + barHeight / 2 + 4 }, number.format(Number(p.quantity) || 0)));
    }));
}

export async function summaryPage(main: HTMLElement): Promise<void> {
  const query = new URLSearchParams(location.search);
  const { year, month, fields } = yearMonthFields(query);
  const results = h('div', { 'aria-live': 'polite' });
  const form = h('form', { class: 'toolbar' }, ...fields, h('button', { type: 'submit', class: 'primary' }, t('show')));
  async function show(): Promise<void> {
    const s = await api.get<Summary>('/summary', { year: year.value.trim(), month: month.value });
    const number = new Intl.NumberFormat(locale());
    clear(results);
    results.append(
      h('p', {}, t('summaryTotals', { guias: number.format(s.guias), lines: number.format(s.lines) })),
      s.products.length
        ? h('div', { class: 'card' },
            barChart(s.products, t('chartTitle')),
            h('table', {},
              h('caption', {}, t('perProduct')),
              h('thead', {}, h('tr', {}, h('th', { scope: 'col' }, t('colProduct')), h('th', { scope: 'col', class: 'number' }, t('lines')),
                h('th', { scope: 'col', class: 'number' }, t('colQuantity')))),
              h('tbody', {}, s.products.map((p) => h('tr', {}, h('td', {}, p.product),
                h('td', { class: 'number' }, number.format(p.lines)), h('td', { class: 'number' }, number.format(p.quantity)))))))
        : h('p', { class: 'muted' }, t('noGuias')));
  }
  form.addEventListener('submit', (event) => {
    event.preventDefault();
    history.replaceState(null, '', `/summary?year=${encodeURIComponent(year.value)}&month=${encodeURIComponent(month.value)}`);
    void show();
  });
  main.replaceChildren(h('h1', {}, t('navSummary')), h('section', { class: 'card' }, form), results);
  await show();
}
