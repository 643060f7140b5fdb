// The Guia's pure pieces the form leans on: spreadsheet paste, the barcode's day form, the services
// drawn from each line, and the lenient reading of the API's verdicts.
import assert from 'node:assert/strict';
import { test } from 'node:test';

import { julianDay, lineIsBlank, emptyLine, parseTsv, readGuiaCheck, readVerdict, servicesOf } from '../src/guia';

test('a spreadsheet copy splits into rows and cells', () => {
  const cases: [string, string[][]][] = [
    ['C01\t01\t50\n', [['C01', '01', '50']]],
    ['C01\t01\r\nC02\t02', [['C01', '01'], ['C02', '02']]],
    ['a\t\tc\n', [['a', '', 'c']]],
    ['"x\ty"\t"say ""hi"""\n', [['x\ty', 'say "hi"']]],
    ['"two\nlines"\tz', [['two\nlines', 'z']]],
    [' C01 \t 01 \n', [['C01', '01']]],
  ];
  for (const [input, rows] of cases) assert.deepEqual(parseTsv(input), rows, JSON.stringify(input));
});

test('a date becomes the year\'s last digit and the day of the year', () => {
  const cases: [string, string][] = [
    ['2026-11-24', '6328'],
    ['2026-01-01', '6001'],
    ['2024-12-31', '4366'], // a leap year
    ['2030-03-01', '0060'],
    ['24/11/2026', ''],
    ['', ''],
  ];
  for (const [date, day] of cases) assert.equal(julianDay(date), day, date);
});

test('each code of a line\'s services is one printed service, numbered by the line', () => {
  const lines = [
    { ...emptyLine(), ListaServesp: '02,10' },
    { ...emptyLine(), ListaServesp: '0' },
    { ...emptyLine(), ListaServesp: ' 07 ' },
  ];
  const earlier = [{ N_Linha: '3', CodServEsp: '07', Valor: '1500' }];
  assert.deepEqual(servicesOf(lines, earlier), [
    { N_Linha: '1', CodServEsp: '02', Valor: '0' },
    { N_Linha: '1', CodServEsp: '10', Valor: '0' },
    { N_Linha: '3', CodServEsp: '07', Valor: '1500' },
  ]);
});

test('a new line is blank until a cell differs from its starting value', () => {
  assert.equal(lineIsBlank(emptyLine()), true);
  assert.equal(lineIsBlank({ ...emptyLine(), B_Produto: 'C01' }), false);
  assert.equal(lineIsBlank({ ...emptyLine(), Desconto: '' }), false);
});

test('a verdict names the field its error points at, unless the API names one', () => {
  const cases: [unknown, { passed: boolean; field?: string; values: number }][] = [
    [{ passed: true }, { passed: true, field: undefined, values: 0 }],
    [{ passed: false, number: -3, description: 'Erro na Validação do Peso', possible_values: [{ minimum: '0', maximum: '50' }] },
      { passed: false, field: 'Escalao', values: 1 }],
    [{ passed: false, number: -2, field: 'B_Produto' }, { passed: false, field: 'B_Produto', values: 0 }],
    [{ results: [{ line: 1, passed: false, number: -100, possible_values: [] }] }, { passed: false, field: 'B_Produto', values: 0 }],
    [{ passed: false, number: -55 }, { passed: false, field: undefined, values: 0 }],
  ];
  for (const [answer, want] of cases) {
    const v = readVerdict(answer);
    assert.deepEqual({ passed: v.passed, field: v.field, values: v.possible_values.length }, want, JSON.stringify(answer));
  }
});

test('a whole Guia passes only when every line and the Guia\'s own rules pass', () => {
  const cases: [unknown, boolean][] = [
    [{ lines: [{ N_Linha: 1, passed: true }], guia: { passed: true } }, true],
    [{ lines: [{ N_Linha: 1, passed: true }, { N_Linha: 2, passed: false, number: -4 }], guia: { passed: true } }, false],
    [{ lines: [{ N_Linha: 1, passed: true }], guia: { passed: false, number: -1, description: 'Erro Minimo de 500 Objectos' } }, false],
  ];
  for (const [answer, passed] of cases) assert.equal(readGuiaCheck(answer).passed, passed, JSON.stringify(answer));
  assert.equal(readGuiaCheck(cases[1][0]).lines[1].field, 'E_Velocidade');
});
