import { h } from './dom';
import { reportKey, t } from './i18n';

// A modal question that names what a delete takes with it; answers true only on an explicit yes.
export function confirmDialog(title: string, body: Node[], yes: string): Promise<boolean> {
  return new Promise((resolve) => {
    const titleId = 'confirm-title';
    const ok = h('button', { type: 'button', class: 'danger' }, yes);
    const cancel = h('button', { type: 'button' }, t('cancel'));
    const dialog = h('dialog', { 'aria-labelledby': titleId },
      h('h2', { id: titleId }, title), ...body, h('div', { class: 'actions' }, cancel, ok));
    const finish = (answer: boolean) => {
      dialog.close();
      dialog.remove();
      resolve(answer);
    };
    ok.addEventListener('click', () => finish(true));
    cancel.addEventListener('click', () => finish(false));
    dialog.addEventListener('cancel', () => finish(false));
    document.body.append(dialog);
    dialog.showModal();
    cancel.focus();
  });
}

// Any JSON answer (a cascade, a report, a summary) in words and tables, for answers whose exact
// keys the page does not need to know.
export function describe(value: unknown): Node {
  if (value === null || value === undefined) return document.createTextNode('—');
  if (Array.isArray(value)) {
    if (value.length === 0) return document.createTextNode('—');
    if (value.every((v) => v && typeof v === 'object' && !Array.isArray(v))) {
      const keys = [...new Set(value.flatMap((v) => Object.keys(v as object)))];
      return h('div', { class: 'table-wrap', tabindex: 0 }, h('table', {},
        h('thead', {}, h('tr', {}, keys.map((k) => h('th', { scope: 'col', title: k }, reportKey(k))))),
        h('tbody', {}, value.map((row) => h('tr', {}, keys.map((k) => h('td', {}, describe((row as Record<string, unknown>)[k]))))))));
    }
    return document.createTextNode(value.map((v) => (typeof v === 'object' ? JSON.stringify(v) : String(v))).join(', '));
  }
  if (typeof value === 'object') {
    return h('dl', { class: 'described' }, Object.entries(value as Record<string, unknown>).flatMap(([k, v]) => [
      h('dt', { title: k }, reportKey(k)), h('dd', {}, describe(v)),
    ]));
  }
  return document.createTextNode(String(value));
}
