import { ApiError, api, listIn } from './api';
import { clear, h, uid } from './dom';
import {
  COLUMN_TEXT, Fields, GuiaFile, LINE_COLUMNS, LineColumn, PossibleValue, Verdict, emptyLine, julianDay, lineIsBlank,
  parseTsv, readGuiaCheck, readPossibleValues, readVerdict, servicesOf,
} from './guia';
import { TextKey, t } from './i18n';
import { navigate } from './router';
import { valueList } from './values';

const DRAFT_KEY = 'nimbara.draft';

interface Client {
  code: string;
  name: string;
  raw: Record<string, unknown>;
}

interface Contract {
  code: string;
  name: string;
  raw: Record<string, unknown>;
}

interface Row {
  line: Fields;
  verdict: Verdict | null;
  checkedAs: string; // the line's text when it was last checked
  tr?: HTMLTableRowElement;
  detail?: HTMLTableRowElement;
}

const NUMERIC = new Set<string>(['Escalao', 'D_Quantidade', 'TaxEsp_Quantidade']);
// The fields whose accepted values the API gives, and the only ones it takes as the line so far.
const ASKED = new Set<string>(['B_Produto', 'A_Zona_Taxacao', 'Escalao', 'E_Velocidade', 'Formato', 'PreTratamento',
  'Desconto', 'CodAmbitoDist', 'Entrega_Sampling', 'ListaServesp']);
const SO_FAR = ['B_Produto', 'A_Zona_Taxacao', 'Escalao', 'E_Velocidade', 'Formato', 'PreTratamento', 'Desconto', 'CodAmbitoDist'];

function today(): string {
  const d = new Date();
  return `${d.getFullYear()}-${String(d.getMonth() + 1).padStart(2, '0')}-${String(d.getDate()).padStart(2, '0')}`;
}

function str(value: unknown): string {
  return value === null || value === undefined ? '' : String(value);
}

function readClient(o: Record<string, unknown>): Client {
  return { code: str(o.vCod_Cliente ?? o.Cod_Cliente ?? o.code), name: str(o.vNome ?? o.Nome ?? o.name), raw: o };
}

function contractsOf(client: Record<string, unknown>): Contract[] {
  const list = (client.contratos ?? client.contracts ?? []) as Record<string, unknown>[];
  return list
    .filter((c) => c.bActivo !== false)
    .map((c) => ({ code: str(c.vCodContrato ?? c.Cod_Contrato ?? c.code), name: str(c.vDesignacao ?? c.designation), raw: c }));
}

// The Guia form: the header, the grid of lines with its checks, and saving.
export async function formPage(main: HTMLElement): Promise<void> {
  const state = {
    header: { cb_DataRequisicao: today(), cb_Pagamento: '0' } as Fields,
    rows: [] as Row[],
    parametros: undefined as Fields | undefined,
    earlierServices: [] as Fields[],
  };
  const copyFrom = new URLSearchParams(location.search).get('copy');
  const notice = h('div', { class: 'notice', role: 'status' });
  const guiaError = h('div', { class: 'notice bad', role: 'alert' });

  const stored = localStorage.getItem(DRAFT_KEY);
  if (copyFrom) {
    const earlier = await api.get<GuiaFile>(`/guias/${encodeURIComponent(copyFrom)}`);
    adopt(earlier);
    notice.textContent = t('copiedFrom', { id: copyFrom });
  } else if (stored) {
    try {
      const draft = JSON.parse(stored) as { header: Fields; lines: Fields[] };
      state.header = { ...state.header, ...draft.header };
      state.rows = draft.lines.map((line) => ({ line: { ...emptyLine(), ...line }, verdict: null, checkedAs: '' }));
      notice.textContent = t('draftRestored');
    } catch {
      localStorage.removeItem(DRAFT_KEY);
    }
  }
  if (state.rows.length === 0) state.rows.push(newRow());

  // A Guia copied from an earlier one keeps its client, contract, payment and lines, not its numbers
  // nor its date.
  function adopt(earlier: GuiaFile): void {
    const c = earlier.cabecalho ?? {};
    const keep = ['cb_CodCliente', 'cb_CodContrato', 'cb_CodCredencial', 'cb_Nome', 'cb_NContribuinte', 'cb_Morada',
      'cb_CodPostal', 'cb_DesigPostal', 'cb_Obs', 'cb_JppCredenciado', 'cb_Pagamento', 'cb_NCredencial',
      'cb_TipoAcesso', 'cb_CodTerceiro', 'cb_NCompromisso'];
    state.header = { cb_DataRequisicao: today() };
    for (const k of keep) if (c[k] !== undefined) state.header[k] = str(c[k]);
    state.rows = (earlier.produtos ?? []).map((p) => {
      const line = emptyLine();
      for (const col of LINE_COLUMNS) if (p[col] !== undefined) line[col] = str(p[col]);
      return { line, verdict: null, checkedAs: '' };
    });
    state.earlierServices = earlier.servicos ?? [];
  }

  function newRow(): Row {
    return { line: emptyLine(), verdict: null, checkedAs: '' };
  }

  // Written at every change (a small JSON text), so that a reload or a closed tab loses nothing.
  function saveDraft(): void {
    localStorage.setItem(DRAFT_KEY, JSON.stringify({ header: state.header, lines: state.rows.map((r) => r.line) }));
  }

  // ---- the header ----
  const clients = listIn(await api.get<unknown>('/clients'), 'clients').map(readClient);
  const headerErrors = new Map<string, HTMLElement>();
  const headerInputs = new Map<string, HTMLInputElement | HTMLSelectElement | HTMLTextAreaElement>();

  function headerField(key: string, label: TextKey, control: HTMLInputElement | HTMLSelectElement | HTMLTextAreaElement, hint?: TextKey, wide = false): HTMLElement {
    const id = control.id || uid('h');
    control.id = id;
    const errorId = `${id}-error`;
    const error = h('div', { class: 'error', id: errorId });
    control.setAttribute('aria-describedby', errorId);
    headerErrors.set(key, error);
    headerInputs.set(key, control);
    control.addEventListener('change', () => {
      state.header[key] = control.value.trim();
      control.removeAttribute('aria-invalid');
      error.textContent = '';
      saveDraft();
    });
    return h('div', { class: wide ? 'field wide' : 'field' },
      h('label', { for: id }, t(label)), control, hint ? h('div', { class: 'hint' }, t(hint)) : null, error);
  }

  const clientSelect = h('select', { id: 'client', name: 'cb_CodCliente', required: true },
    h('option', { value: '' }, t('chooseClient')),
    clients.map((c) => h('option', { value: c.code, selected: c.code === state.header.cb_CodCliente }, `${c.code} — ${c.name}`)));
  const contractSelect = h('select', { id: 'contract', name: 'cb_CodContrato', required: true });
  const date = h('input', { id: 'date', type: 'date', name: 'cb_DataRequisicao', value: state.header.cb_DataRequisicao, required: true });
  const credential = h('input', { id: 'credential', name: 'cb_NCredencial', value: state.header.cb_NCredencial ?? '', maxlength: 7 });
  const remarks = h('textarea', { id: 'remarks', name: 'cb_Obs', maxlength: 650, rows: 3 });
  remarks.value = state.header.cb_Obs ?? '';
  const payment = h('fieldset', {}, h('legend', {}, t('payment')),
    h('div', { class: 'radios', role: 'radiogroup' }, (['0', '1', '2'] as const).map((value) => {
      const id = `payment-${value}`;
      const radio = h('input', { type: 'radio', name: 'cb_Pagamento', id, value, checked: (state.header.cb_Pagamento ?? '0') === value });
      radio.addEventListener('change', () => {
        state.header.cb_Pagamento = value;
        saveDraft();
      });
      return h('label', { for: id }, radio, t(value === '0' ? 'paymentCredit' : value === '1' ? 'paymentCash' : 'paymentPrepaid'));
    })));

  let contracts: Contract[] = [];
  async function loadContracts(keep: boolean): Promise<void> {
    clear(contractSelect);
    contracts = [];
    const code = clientSelect.value;
    if (code) {
      const client = await api.get<Record<string, unknown>>(`/clients/${encodeURIComponent(code)}`);
      contracts = contractsOf(client);
      const c = readClient(client).raw;
      // The client's own data goes onto the form as the database has it.
      Object.assign(state.header, {
        cb_CodCliente: code,
        cb_Nome: str(c.vNome),
        cb_NContribuinte: str(c.vNIF),
        cb_Morada: str(c.vMorada),
        cb_CodPostal: str(c.vCodPostal),
        cb_DesigPostal: str(c.vDesigPostal),
        cb_TipoAcesso: str(c.iAcessoRede ?? '0'),
      });
    }
    contractSelect.append(h('option', { value: '' }, t(code ? 'chooseContract' : 'chooseClientFirst')),
      ...contracts.map((c) => h('option', { value: c.code }, c.name ? `${c.code} — ${c.name}` : c.code)));
    contractSelect.value = keep ? state.header.cb_CodContrato ?? '' : contracts.length === 1 ? contracts[0].code : '';
    applyContract();
    saveDraft();
  }
  function applyContract(): void {
    const contract = contracts.find((c) => c.code === contractSelect.value);
    state.header.cb_CodContrato = contractSelect.value;
    if (contract) {
      state.header.cb_CodCredencial = str(contract.raw.vCodCredencial);
      state.header.cb_JppCredenciado = contract.raw.vJppCredenciado === true || contract.raw.vJppCredenciado === '1' ? '1' : '0';
    }
  }
  clientSelect.addEventListener('change', () => void loadContracts(false));
  contractSelect.addEventListener('change', () => {
    applyContract();
    saveDraft();
  });

  const headerCard = h('section', { class: 'card', 'aria-labelledby': 'header-title' },
    h('h2', { id: 'header-title' }, t('guiaHeader')),
    h('div', { class: 'fields' },
      headerField('cb_CodCliente', 'client', clientSelect),
      headerField('cb_CodContrato', 'contract', contractSelect),
      headerField('cb_DataRequisicao', 'date', date),
      headerField('cb_NCredencial', 'credential', credential, 'credentialHint'),
      h('div', { class: 'field' }, payment),
      headerField('cb_Obs', 'remarks', remarks, undefined, true)));

  // ---- the grid ----
  const tbody = h('tbody');
  const values = h('datalist', { id: 'accepted-values' });
  const helpTitle = h('h2', { id: 'help-title' }, t('acceptedValues'));
  const helpField = h('p', { class: 'muted' }, t('helpIntro'));
  const helpList = h('ul', { class: 'values', 'aria-labelledby': 'help-title' });
  const helpVerdict = h('div', { class: 'verdict', 'aria-live': 'polite' });
  let focused: { row: Row; column: LineColumn; input: HTMLInputElement } | null = null;

  function lineText(line: Fields): string {
    return LINE_COLUMNS.map((c) => line[c] ?? '').join('\t');
  }

  function renderGrid(focusRow?: number, focusColumn = 0): void {
    clear(tbody);
    state.rows.forEach((row, index) => {
      const head = h('th', { scope: 'row', class: 'row-head' }, String(index + 1));
      const tr = h('tr', {}, head, LINE_COLUMNS.map((column) => {
        const input = h('input', {
          name: column,
          value: row.line[column] ?? '',
          'aria-label': `${t(COLUMN_TEXT[column])}, ${t('lineN', { n: index + 1 })}`,
          inputmode: NUMERIC.has(column) ? 'numeric' : null,
          autocomplete: 'off',
          'data-row': index,
          'data-column': column,
        });
        input.addEventListener('input', () => {
          row.line[column] = input.value.trim();
          saveDraft();
          if (column !== 'refClie') void offerValues(row, column, input);
        });
        input.addEventListener('focus', () => {
          // As in a spreadsheet, a cell entered is selected whole, so typing replaces it.
          input.select();
          focused = { row, column, input };
          tbody.querySelectorAll('tr.current').forEach((r) => r.classList.remove('current'));
          tr.classList.add('current');
          showVerdict(row);
          void offerValues(row, column, input);
        });
        input.addEventListener('keydown', (event) => onKey(event, index, column));
        input.addEventListener('paste', (event) => onPaste(event, index, column));
        return h('td', {}, input);
      }));
      // A line is checked when the focus leaves it.
      tr.addEventListener('focusout', (event) => {
        const to = event.relatedTarget as Node | null;
        if (to && tr.contains(to)) return;
        void checkRow(row);
      });
      row.tr = tr;
      tbody.append(tr);
      row.detail = h('tr', { class: 'detail' });
      tbody.append(row.detail);
      markRow(row);
    });
    if (focusRow !== undefined) focusCell(focusRow, focusColumn);
  }

  function focusCell(rowIndex: number, columnIndex: number): void {
    const input = tbody.querySelector<HTMLInputElement>(`input[data-row="${rowIndex}"][data-column="${LINE_COLUMNS[columnIndex]}"]`);
    input?.focus();
    input?.select();
  }

  function markRow(row: Row): void {
    if (!row.tr || !row.detail) return;
    const head = row.tr.querySelector('th')!;
    const index = state.rows.indexOf(row) + 1;
    row.tr.classList.toggle('refused', row.verdict !== null && !row.verdict.passed);
    row.tr.classList.toggle('accepted', row.verdict !== null && row.verdict.passed);
    head.textContent = row.verdict === null ? String(index) : `${index} ${row.verdict.passed ? '✓' : '✗'}`;
    head.setAttribute('title', row.verdict === null ? '' : row.verdict.passed ? t('linePassed') : t('lineRefused'));
    row.tr.querySelectorAll('input').forEach((input) => {
      const bad = row.verdict !== null && !row.verdict.passed && input.name === row.verdict.field;
      if (bad) input.setAttribute('aria-invalid', 'true');
      else input.removeAttribute('aria-invalid');
    });
    clear(row.detail);
    if (row.verdict && !row.verdict.passed) {
      const v = row.verdict;
      row.detail.append(h('td', { colspan: LINE_COLUMNS.length + 1, class: 'error', role: 'alert' },
        h('strong', {}, `${t('lineN', { n: index })}: `),
        `${v.number !== undefined ? `${v.number} ` : ''}${v.description ?? ''}`,
        v.explanation ? ` — ${v.explanation}` : '',
        v.possible_values.length ? ` — ${t('accepted')}: ${v.possible_values.map(valueText).join(', ')}` : ''));
    }
  }

  function valueText(v: PossibleValue): string {
    if (v.minimum !== undefined || v.maximum !== undefined) return `${v.minimum ?? ''}–${v.maximum ?? ''}`;
    return v.code ?? '';
  }

  function showVerdict(row: Row): void {
    clear(helpVerdict);
    const v = row.verdict;
    if (!v) return;
    if (v.passed) {
      helpVerdict.append(h('p', { class: 'notice' }, t('linePassed')));
      return;
    }
    helpVerdict.append(h('div', { class: 'notice bad' },
      h('p', {}, h('strong', {}, `${v.number ?? ''} ${v.description ?? ''}`)),
      v.explanation ? h('p', {}, v.explanation) : null,
      v.field ? h('p', {}, t('fieldNamed'), ' ', h('code', {}, v.field)) : null,
      v.possible_values.length ? h('p', {}, t('acceptedHere')) : null,
      v.possible_values.length ? valueList(v.possible_values, (code) => fill(row, v.field as LineColumn, code)) : null));
  }

  function fill(row: Row, column: LineColumn | undefined, value: string): void {
    if (!column || !LINE_COLUMNS.includes(column)) return;
    row.line[column] = value;
    const index = state.rows.indexOf(row);
    saveDraft();
    renderGrid(index, LINE_COLUMNS.indexOf(column));
  }

  let offerToken = 0;
  async function offerValues(row: Row, column: LineColumn, input: HTMLInputElement): Promise<void> {
    const token = ++offerToken;
    // The previous field's values must not be offered here while this field's are asked for.
    clear(values);
    input.removeAttribute('list');
    let list: PossibleValue[] = [];
    if (ASKED.has(column) && (column === 'B_Produto' || row.line.B_Produto)) {
      // The procedures answer given what the line holds so far (a weight only when it is a number).
      const query: Record<string, string> = { field: column };
      for (const c of SO_FAR) {
        const value = row.line[c] ?? '';
        if (c !== column && value && (c !== 'Escalao' || /^\d+$/.test(value))) query[c] = value;
      }
      try {
        list = readPossibleValues(await api.get<unknown>('/possible-values', query));
      } catch {
        list = await catalogueValues(column, row.line.B_Produto ?? '');
      }
    } else {
      // Before the product is known, the rule catalogue's codes of every product help.
      list = await catalogueValues(column, row.line.B_Produto ?? '');
    }
    if (token !== offerToken) return;
    const typed = input.value.trim().toLowerCase();
    const shown = list.filter((v) => !typed || (v.code ?? '').toLowerCase().startsWith(typed) ||
      (v.designation ?? '').toLowerCase().includes(typed) || v.minimum !== undefined);
    helpField.textContent = `${t(COLUMN_TEXT[column])} (${column})`;
    clear(helpList);
    clear(values);
    if (shown.length === 0) {
      helpList.append(h('li', { class: 'muted' }, list.length ? t('noValueMatches') : t('anyValue')));
    }
    for (const v of shown.slice(0, 60)) {
      const code = v.code ?? v.maximum ?? '';
      const label = v.minimum !== undefined ? `${v.minimum} – ${v.maximum} g` : `${v.code}${v.designation ? ` — ${v.designation}` : ''}`;
      const pick = h('button', { type: 'button', tabindex: '-1' }, label);
      pick.addEventListener('mousedown', (event) => event.preventDefault());
      pick.addEventListener('click', () => fill(row, column, code));
      helpList.append(h('li', {}, pick));
      if (v.code) values.append(h('option', { value: v.code }, v.designation ?? ''));
    }
    if (values.childElementCount > 0) input.setAttribute('list', 'accepted-values');
  }

  const catalogue = new Map<string, Promise<unknown>>();
  async function catalogueValues(column: LineColumn, product: string): Promise<PossibleValue[]> {
    const key = /^[A-Z]\d{2}$/.test(product) ? product : '';
    if (!catalogue.has(key)) catalogue.set(key, api.get<unknown>('/codes', key ? { product: key } : {}).catch(() => ({})));
    const kinds = listIn<{ field?: string; codes?: unknown }>(await catalogue.get(key)!, 'kinds');
    return readPossibleValues(kinds.find((k) => k.field === column)?.codes ?? []);
  }

  async function checkRow(row: Row): Promise<void> {
    if (lineIsBlank(row.line)) {
      row.verdict = null;
      markRow(row);
      return;
    }
    const asText = lineText(row.line);
    if (asText === row.checkedAs && row.verdict) return;
    const index = state.rows.indexOf(row);
    try {
      const answer = await api.post<unknown>('/lines/check', {
        ...row.line,
        N_Linha: String(index + 1),
        header: { cb_TipoAcesso: state.header.cb_TipoAcesso ?? '0' },
      });
      row.verdict = readVerdict(answer);
    } catch (error) {
      if (!(error instanceof ApiError)) throw error;
      row.verdict = { passed: false, description: error.message, field: error.field, possible_values: readPossibleValues(error.body) };
    }
    row.checkedAs = asText;
    markRow(row);
    if (focused?.row === row) showVerdict(row);
  }

  function onKey(event: KeyboardEvent, rowIndex: number, column: LineColumn): void {
    const col = LINE_COLUMNS.indexOf(column);
    const last = LINE_COLUMNS.length - 1;
    if (event.key === 'Enter' && (event.ctrlKey || event.metaKey)) {
      event.preventDefault();
      state.rows.splice(rowIndex + 1, 0, newRow());
      saveDraft();
      renderGrid(rowIndex + 1, 0);
    } else if (event.key === 'Delete' && (event.ctrlKey || event.metaKey)) {
      event.preventDefault();
      state.rows.splice(rowIndex, 1);
      if (state.rows.length === 0) state.rows.push(newRow());
      saveDraft();
      renderGrid(Math.min(rowIndex, state.rows.length - 1), col);
    } else if (event.key === 'Enter') {
      event.preventDefault();
      if (event.shiftKey) {
        if (col > 0) focusCell(rowIndex, col - 1);
        else if (rowIndex > 0) focusCell(rowIndex - 1, last);
      } else if (col < last) {
        focusCell(rowIndex, col + 1);
      } else {
        if (rowIndex === state.rows.length - 1) {
          state.rows.push(newRow());
          saveDraft();
          renderGrid(rowIndex + 1, 0);
        } else {
          focusCell(rowIndex + 1, 0);
        }
      }
    } else if (event.key === 'ArrowDown' && rowIndex < state.rows.length - 1 && !event.altKey) {
      event.preventDefault();
      focusCell(rowIndex + 1, col);
    } else if (event.key === 'ArrowUp' && rowIndex > 0 && !event.altKey) {
      event.preventDefault();
      focusCell(rowIndex - 1, col);
    }
  }

  // Cells copied from a spreadsheet fill the grid from the cell pasted into, rightwards and down,
  // with new lines as needed.
  function onPaste(event: ClipboardEvent, rowIndex: number, column: LineColumn): void {
    const textIn = event.clipboardData?.getData('text/plain') ?? '';
    if (!textIn.includes('\t') && !textIn.includes('\n')) return;
    event.preventDefault();
    const rows = parseTsv(textIn).filter((r) => r.some((c) => c !== ''));
    const start = LINE_COLUMNS.indexOf(column);
    rows.forEach((cells, i) => {
      const at = rowIndex + i;
      if (at >= state.rows.length) state.rows.push(newRow());
      else if (i > 0 || !lineIsBlank(state.rows[at].line)) state.rows[at].verdict = null;
      cells.forEach((cell, j) => {
        const c = LINE_COLUMNS[start + j];
        if (c) state.rows[at].line[c] = cell;
      });
    });
    saveDraft();
    renderGrid(rowIndex, start);
    notice.textContent = t('pasted', { n: rows.length });
    // Every pasted line is checked at once, so that the clerk sees which to fix.
    for (let i = 0; i < rows.length; i++) void checkRow(state.rows[rowIndex + i]);
  }

  const addLine = h('button', { type: 'button' }, t('addLine'));
  addLine.addEventListener('click', () => {
    state.rows.push(newRow());
    saveDraft();
    renderGrid(state.rows.length - 1, 0);
  });

  const gridCard = h('section', { class: 'card', 'aria-labelledby': 'lines-title' },
    h('h2', { id: 'lines-title' }, t('guiaLines')),
    h('p', { class: 'keys', id: 'grid-keys' }, t('gridKeysBefore'), ' ', h('kbd', {}, 'Tab'), ' / ', h('kbd', {}, 'Enter'), ' ',
      t('gridKeysMove'), ' · ', h('kbd', {}, 'Ctrl'), '+', h('kbd', {}, 'Enter'), ' ', t('gridKeysNew'), ' · ',
      h('kbd', {}, 'Ctrl'), '+', h('kbd', {}, 'Delete'), ' ', t('gridKeysDelete'), ' · ', t('gridKeysPaste')),
    h('div', { class: 'table-wrap' },
      h('table', { class: 'grid', 'aria-describedby': 'grid-keys' },
        h('caption', { class: 'skip' }, t('guiaLines')),
        h('thead', {}, h('tr', {}, h('th', { scope: 'col' }, '#'),
          LINE_COLUMNS.map((c) => h('th', { scope: 'col', title: c }, t(COLUMN_TEXT[c]))))),
        tbody)),
    values,
    h('div', { class: 'actions' }, addLine));

  // ---- saving ----
  const copyInput = h('input', { id: 'copy-from', inputmode: 'numeric', size: 8 });
  const copyButton = h('button', { type: 'button' }, t('copy'));
  copyButton.addEventListener('click', () => {
    if (copyInput.value.trim()) navigate(`/?copy=${encodeURIComponent(copyInput.value.trim())}`);
  });
  const discard = h('button', { type: 'button', class: 'danger' }, t('discardDraft'));
  discard.addEventListener('click', () => {
    if (!confirm(t('discardConfirm'))) return;
    localStorage.removeItem(DRAFT_KEY);
    location.assign('/');
  });
  const checkButton = h('button', { type: 'button' }, t('checkGuia'));
  const saveButton = h('button', { type: 'button', class: 'primary' }, t('saveGuia'));

  function guiaFile(): GuiaFile {
    const lines = state.rows.filter((r) => !lineIsBlank(r.line)).map((r, index) => ({
      ...r.line,
      N_Linha: String(index + 1),
      Vexora: '0',
      DivisaoRemetente: '0',
      CodigoCampanha: '',
      caracte: '',
    }));
    const header: Fields = {
      cb_CodTerceiro: '0', cb_TipoAcesso: '0', cb_JppCredenciado: '0', cb_Pagamento: '0',
      ...state.header,
      cb_Drqjul: julianDay(state.header.cb_DataRequisicao ?? ''),
    };
    const file: GuiaFile = { cabecalho: header, produtos: lines, servicos: servicesOf(lines, state.earlierServices) };
    if (state.parametros) file.parametros = state.parametros;
    return file;
  }

  function showRefusal(error: ApiError): void {
    const field = error.field ?? '';
    const control = headerInputs.get(field);
    if (control) {
      control.setAttribute('aria-invalid', 'true');
      headerErrors.get(field)!.textContent = error.message;
      control.focus();
    }
    guiaError.textContent = field && !control ? `${error.message} (${field})` : error.message;
  }

  // Nothing is saved unless the whole Guia passes: each line's verdict lands on its row.
  async function checkGuia(): Promise<boolean> {
    guiaError.textContent = '';
    notice.textContent = '';
    headerErrors.forEach((e) => (e.textContent = ''));
    const missing: [string, TextKey][] = [['cb_CodCliente', 'needClient'], ['cb_CodContrato', 'needContract'], ['cb_DataRequisicao', 'needDate']];
    for (const [key, text] of missing) {
      if (!state.header[key]) {
        headerErrors.get(key)!.textContent = t(text);
        headerInputs.get(key)!.setAttribute('aria-invalid', 'true');
        headerInputs.get(key)!.focus();
        guiaError.textContent = t(text);
        return false;
      }
    }
    const file = guiaFile();
    if (file.produtos.length === 0) {
      guiaError.textContent = t('needLine');
      focusCell(0, 0);
      return false;
    }
    let result;
    try {
      result = readGuiaCheck(await api.post<unknown>('/guias/check', file));
    } catch (error) {
      if (error instanceof ApiError) {
        showRefusal(error);
        return false;
      }
      throw error;
    }
    const filled = state.rows.filter((r) => !lineIsBlank(r.line));
    filled.forEach((row, index) => {
      const verdict = result.lines.find((l) => l.line === index + 1);
      if (verdict) {
        row.verdict = verdict;
        row.checkedAs = lineText(row.line);
        markRow(row);
      }
    });
    const refused = result.lines.filter((l) => !l.passed);
    if (result.guia && !result.guia.passed) {
      guiaError.textContent = `${t('guiaRefused')}: ${result.guia.number ?? ''} ${result.guia.description ?? ''}${result.guia.explanation ? ` — ${result.guia.explanation}` : ''}`;
    } else if (refused.length) {
      guiaError.textContent = t('linesRefused', { lines: refused.map((l) => l.line).join(', ') });
    } else {
      notice.textContent = t('guiaPassed');
    }
    if (refused.length) focusCell(state.rows.indexOf(filled[refused[0].line - 1] ?? state.rows[0]), 0);
    return result.passed;
  }

  checkButton.addEventListener('click', () => void checkGuia());
  saveButton.addEventListener('click', async () => {
    saveButton.disabled = true;
    try {
      if (!(await checkGuia())) return;
      const saved = await api.post<Record<string, unknown>>('/guias', guiaFile());
      localStorage.removeItem(DRAFT_KEY);
      navigate(`/guias/${encodeURIComponent(str(saved.id ?? saved.N_Req))}?saved=1`);
    } catch (error) {
      if (error instanceof ApiError) showRefusal(error);
      else throw error;
    } finally {
      saveButton.disabled = false;
    }
  });

  const saveCard = h('section', { class: 'card', 'aria-label': t('saveGuia') },
    guiaError,
    h('div', { class: 'actions' }, checkButton, saveButton,
      h('span', { class: 'muted' }, t('draftKept')), discard),
    h('div', { class: 'toolbar' },
      h('div', { class: 'field' }, h('label', { for: 'copy-from' }, t('copyFrom')), copyInput), copyButton));

  const aside = h('aside', { class: 'card help', 'aria-labelledby': 'help-title' }, helpTitle, helpField, helpList, helpVerdict);
  main.replaceChildren(
    h('h1', {}, t('newGuia')),
    notice,
    h('div', { class: 'form-layout' }, h('div', {}, headerCard, gridCard, saveCard), aside));
  if (state.header.cb_CodCliente) await loadContracts(true);
  else contractSelect.append(h('option', { value: '' }, t('chooseClientFirst')));
  renderGrid();
  if (copyFrom) saveDraft();
}
