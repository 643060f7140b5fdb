// The Guia as the API takes and gives it (the Guia file's JSON shape), and what the pages read from
// the API's answers, read leniently: a missing key is an empty text, as in the Guia file.
import type { TextKey } from './i18n';
export type Fields = Record<string, string>;

export interface GuiaFile {
  cabecalho: Fields;
  parametros?: Fields;
  produtos: Fields[];
  servicos: Fields[];
}

// The grid's columns, in the order a spreadsheet's pasted columns fill them.
export const LINE_COLUMNS = [
  'B_Produto',
  'A_Zona_Taxacao',
  'Escalao',
  'D_Quantidade',
  'E_Velocidade',
  'Formato',
  'PreTratamento',
  'Desconto',
  'CodAmbitoDist',
  'Entrega_Sampling',
  'ListaServesp',
  'TaxEsp_Quantidade',
  'TaxEsp_Semana',
  'refClie',
] as const;
export type LineColumn = (typeof LINE_COLUMNS)[number];

// Each column's caption, as the form and the saved Guia show it.
export const COLUMN_TEXT: Record<LineColumn, TextKey> = {
  B_Produto: 'colProduct', A_Zona_Taxacao: 'colZone', Escalao: 'colWeight', D_Quantidade: 'colQuantity',
  E_Velocidade: 'colSpeed', Formato: 'colFormat', PreTratamento: 'colPretreatment', Desconto: 'colDiscount',
  CodAmbitoDist: 'colScope', Entrega_Sampling: 'colSampling', ListaServesp: 'colServices',
  TaxEsp_Quantidade: 'colSpecialQuantity', TaxEsp_Semana: 'colSpecialWeek', refClie: 'colReference',
};

// What a new line holds before the clerk types: the dimensions most lines do not use are "0".
export function emptyLine(): Fields {
  return {
    B_Produto: '', A_Zona_Taxacao: '', Escalao: '', D_Quantidade: '', E_Velocidade: '', Formato: '',
    PreTratamento: '0', Desconto: '0', CodAmbitoDist: '0', Entrega_Sampling: '0', ListaServesp: '0',
    TaxEsp_Quantidade: '0', TaxEsp_Semana: '0', refClie: '',
  };
}

export function lineIsBlank(line: Fields): boolean {
  const fresh = emptyLine();
  return LINE_COLUMNS.every((c) => (line[c] ?? '').trim() === (fresh[c] ?? ''));
}

// The line fields a line's error number points at, for a verdict that names no field.
const FIELD_OF_ERROR: Record<number, LineColumn> = {
  [-100]: 'B_Produto', [-2]: 'A_Zona_Taxacao', [-3]: 'Escalao', [-4]: 'E_Velocidade', [-5]: 'Formato',
  [-6]: 'PreTratamento', [-7]: 'Desconto', [-8]: 'CodAmbitoDist', [-21]: 'Entrega_Sampling', [-9]: 'ListaServesp',
};

export interface PossibleValue {
  code?: string;
  designation?: string;
  minimum?: string;
  maximum?: string;
}

export interface Verdict {
  passed: boolean;
  number?: number;
  description?: string;
  explanation?: string;
  field?: string;
  possible_values: PossibleValue[];
}

type Loose = Record<string, unknown>;

function text(value: unknown): string | undefined {
  if (value === null || value === undefined) return undefined;
  return typeof value === 'string' ? value : typeof value === 'number' ? String(value) : undefined;
}

export function readPossibleValues(value: unknown): PossibleValue[] {
  const list = Array.isArray(value)
    ? value
    : value && typeof value === 'object'
      ? ((value as Loose).possible_values ?? (value as Loose).values ?? (value as Loose).codes)
      : undefined;
  if (!Array.isArray(list)) return [];
  return list.map((item): PossibleValue => {
    if (typeof item === 'string' || typeof item === 'number') return { code: String(item) };
    const o = (item ?? {}) as Loose;
    return {
      code: text(o.code ?? o.value),
      designation: text(o.designation ?? o.description),
      minimum: text(o.minimum),
      maximum: text(o.maximum),
    };
  });
}

export function readVerdict(value: unknown): Verdict {
  let o = (value ?? {}) as Loose;
  // An answer may wrap the one line's result as check-lines does.
  if (Array.isArray(o.results) && o.results.length > 0) o = o.results[0] as Loose;
  const number = typeof o.number === 'number' ? o.number : o.number !== undefined ? Number(o.number) : undefined;
  const explanation = o.explanation;
  return {
    passed: o.passed === true || (o.passed === undefined && (number === 0 || number === undefined)),
    number,
    description: text(o.description),
    explanation: typeof explanation === 'string' ? explanation : explanation ? JSON.stringify(explanation) : undefined,
    field: text(o.field)?.split('/').filter(Boolean).pop() ?? (number !== undefined ? FIELD_OF_ERROR[number] : undefined),
    possible_values: readPossibleValues(o.possible_values ?? o.accepted_values ?? []),
  };
}

export interface GuiaCheck {
  lines: (Verdict & { line: number })[];
  guia: Verdict | null;
  passed: boolean;
}

export function readGuiaCheck(value: unknown): GuiaCheck {
  const o = (value ?? {}) as Loose;
  const lines = (Array.isArray(o.lines) ? o.lines : []).map((item, index) => {
    const l = (item ?? {}) as Loose;
    return { ...readVerdict(l), line: Number(l.N_Linha ?? l.line ?? index + 1) };
  });
  const guia = o.guia ? readVerdict(o.guia) : null;
  const passed = lines.every((l) => l.passed) && (guia ? guia.passed : true);
  return { lines, guia, passed };
}

// The special services the Guia prints, one per code of each line's ListaServesp; the values an
// earlier Guia gave a service are kept.
export function servicesOf(lines: Fields[], earlier: Fields[] = []): Fields[] {
  const out: Fields[] = [];
  lines.forEach((line, index) => {
    const n = String(index + 1);
    for (const code of (line.ListaServesp ?? '').split(',').map((c) => c.trim())) {
      if (!code || code === '0') continue;
      const before = earlier.find((s) => s.N_Linha === n && s.CodServEsp === code);
      out.push({ N_Linha: n, CodServEsp: code, Valor: before?.Valor ?? '0' });
    }
  });
  return out;
}

// The barcode's day form of a date: the year's last digit, then the day of the year in three digits.
export function julianDay(isoDate: string): string {
  const m = /^(\d{4})-(\d{2})-(\d{2})$/.exec(isoDate);
  if (!m) return '';
  const [year, month, day] = [Number(m[1]), Number(m[2]), Number(m[3])];
  const start = Date.UTC(year, 0, 1);
  const dayOfYear = Math.round((Date.UTC(year, month - 1, day) - start) / 86400000) + 1;
  return `${year % 10}${String(dayOfYear).padStart(3, '0')}`;
}

// Rows of tab-separated text, as a spreadsheet copies them: quoted cells may hold tabs and newlines.
export function parseTsv(textIn: string): string[][] {
  const rows: string[][] = [];
  let row: string[] = [];
  let cell = '';
  let quoted = false;
  const input = textIn.replace(/\r\n?/g, '\n');
  for (let i = 0; i < input.length; i++) {
    const c = input[i];
    if (quoted) {
      if (c === '"' && input[i + 1] === '"') {
        cell += '"';
        i++;
      } else if (c === '"') {
        quoted = false;
      } else {
        cell += c;
      }
    } else if (c === '"' && cell === '') {
      quoted = true;
    } else if (c === '\t') {
      row.push(cell);
      cell = '';
    } else if (c === '\n') {
      row.push(cell);
      rows.push(row);
      row = [];
      cell = '';
    } else {
      cell += c;
    }
  }
  if (cell !== '' || row.length > 0) {
    row.push(cell);
    rows.push(row);
  }
  return rows.map((r) => r.map((c) => c.trim()));
}
