"""The headless road from Python: validation outcomes, printing in memory, lines and batches."""
from __future__ import annotations

from pathlib import Path

import pytest

import nimbara
from conftest import EXAMPLES


@pytest.mark.parametrize("name, passed, first_number", [
    ("valid-guia.json", True, None),
    ("line-errors.json", False, -2),
    ("guia-rule-error.json", False, None),
])
def test_validate_returns_errors_with_their_line_and_possible_values(name: str, passed: bool,
                                                                     first_number: int | None) -> None:
    outcome = nimbara.Guia.from_file(EXAMPLES / name).validate()
    assert outcome.passed is passed
    if passed:
        assert outcome.errors == []
        return
    first = outcome.errors[0]
    if first_number is None:  # a rule of the whole Guia
        assert first.row is None and first.number < 0 and first.description
    else:
        assert first.number == first_number
        assert first.row == 1 and first.line == "2"
        assert nimbara.PossibleValue("01", "Continente, Açores e Madeira") in first.possible_values


def test_a_guia_built_field_by_field_validates_as_its_file_does() -> None:
    from_file = nimbara.Guia.from_file(EXAMPLES / "line-errors.json")
    built = nimbara.Guia.from_json(from_file.to_json())
    assert built.validate() == from_file.validate()
    again = nimbara.Guia()
    again.set_header(cb_N_Req="1", cb_CodCliente="456", cb_NDoc="2026/1", cb_TipoAcesso="0")
    again.add_line(A_Zona_Taxacao="01", B_Produto="C01", E_Velocidade="0", D_Quantidade="300", N_Linha="1",
                   Escalao="50", Formato="02", PreTratamento="1", Desconto="0", CodAmbitoDist="0")
    assert '"B_Produto": "C01"' in again.to_json()
    with pytest.raises(nimbara.BadArgumentError, match='"Peso" is not a field of produtos'):
        again.add_line(Peso="50")


def test_print_pdf_gives_the_pdf_in_memory_and_print_files_writes_it(tmp_path: Path) -> None:
    guia = nimbara.Guia.from_file(EXAMPLES / "valid-guia.json")
    pdf = guia.print_pdf()
    assert pdf.startswith(b"%PDF-") and b"%%EOF" in pdf[-16:]
    assert guia.print_pdf()[:5] == b"%PDF-"  # the Guia is still there
    files = guia.print_files(tmp_path)
    assert [f.parent for f in files] == [tmp_path] and files[0].read_bytes().startswith(b"%PDF-")


def test_imprime_guia_answers_and_reports_where_told_making_the_folder(tmp_path: Path) -> None:
    folder = tmp_path / "reports" / "today"
    answer = nimbara.Guia.from_file(EXAMPLES / "line-errors.json").imprime_guia(report_folder=folder)
    assert answer.startswith(f"<LIST><ITEM><ERRO_ID>-1</ERRO_ID><LOG_FILE>{folder}/ErrosGuia_")
    assert len(list(folder.glob("ErrosGuia_*.txt"))) == 1


def test_lines_and_batches_answer_as_check_lines() -> None:
    validator = nimbara.Validator()
    assert validator.check_line("C01", "01", 50, "0", "02", "1") is None
    number, description = validator.check_line("C01", "99", 50, "0", "02", "1")
    assert number == -2 and description
    batch = (EXAMPLES / "lines.tsv").read_text(encoding="utf-8")
    results = validator.check_lines(batch + "C01\t01\theavy\n").splitlines()
    assert len(results) == len(batch.splitlines()) + 1
    assert results[0] == "0" and results[-1].startswith("!")


@pytest.mark.parametrize("call, error, cause", [
    (lambda tmp: nimbara.Guia.from_file(tmp / "absent.json"), nimbara.NotFoundError, "absent.json"),
    (lambda tmp: nimbara.Guia.from_json('{"produtos": [{"Escalao": true}]}'), nimbara.BadArgumentError,
     "/produtos/0/Escalao"),
    (lambda tmp: nimbara.Store("sqlite:" + str(tmp / "none" / "x.db")), nimbara.DatabaseError, "x.db"),
    (lambda tmp: nimbara.Store(""), nimbara.BadArgumentError, "empty"),
    (lambda tmp: nimbara.Guia.from_file(EXAMPLES / "valid-guia.json").print_files(EXAMPLES / "lines.tsv"),
     nimbara.NimbaraError, "lines.tsv"),
    (lambda tmp: nimbara.Guia().validate(), nimbara.BadArgumentError, "no product line"),
])
def test_a_failure_in_the_library_becomes_an_exception_with_its_cause(tmp_path: Path, call, error, cause) -> None:
    with pytest.raises(error) as raised:
        call(tmp_path)
    assert cause in raised.value.cause and raised.value.status != 0
