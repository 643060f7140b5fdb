"""The headless road: a Guia as its file holds it, validated, reported and printed in memory."""
from __future__ import annotations

import ctypes
import os
from pathlib import Path
from typing import Dict, List, Optional, Union

from . import _library as c
from ._handles import Handle, read_print_job
from .errors import FAILED_VALIDATION, check
from .outcome import Outcome, read_outcome

PathLike = Union[str, "os.PathLike[str]"]

CABECALHO, PARAMETROS, PRODUTO, SERVICO = 0, 1, 2, 3


def _fields(values: Dict[str, object]) -> "ctypes.Array[c.Field]":
    encoded = [(name.encode("utf-8"), str(value).encode("utf-8")) for name, value in values.items()]
    array = (c.Field * max(len(encoded), 1))()
    for i, (name, value) in enumerate(encoded):
        array[i] = c.Field(name, len(name), value, len(value))
    return array


class Validator:
    """The façade of the headless road (cls_ValProdutosA): lines and batches judged against the
    compiled-in rules. One object may be shared by threads that only check lines."""

    def __init__(self) -> None:
        pointer = ctypes.c_void_p()
        check(c.lib.nimbara_validator_create(ctypes.byref(pointer)))
        self._handle = Handle(pointer, c.lib.nimbara_validator_destroy)

    def check_line(self, produto: str, zona: str, peso: int, velocidade: str = "0", formato: str = "0",
                   pre_tratamento: str = "0", desconto: str = "0", ambito: str = "0", amostra: str = "",
                   servicos: str = "") -> Optional[tuple[int, str]]:
        """Judges one product line: None when it passes, else (error number, description)."""
        texts = [v.encode("utf-8") for v in (produto, zona, velocidade, formato, pre_tratamento, desconto, ambito,
                                             amostra, servicos)]
        line = c.Line(ctypes.sizeof(c.Line), texts[0], len(texts[0]), texts[1], len(texts[1]), peso,
                      texts[2], len(texts[2]), texts[3], len(texts[3]), texts[4], len(texts[4]),
                      texts[5], len(texts[5]), texts[6], len(texts[6]), texts[7], len(texts[7]),
                      texts[8], len(texts[8]))
        number = ctypes.c_int32()
        description, size = ctypes.c_void_p(), c.c_size()
        status = check(c.lib.nimbara_check_line(self._handle.pointer, ctypes.byref(line), ctypes.byref(number),
                                                ctypes.byref(description), ctypes.byref(size)), FAILED_VALIDATION)
        if status != FAILED_VALIDATION:
            return None
        return number.value, c.take_text(description, size.value)

    def check_lines(self, batch: Union[str, bytes]) -> str:
        """Judges a batch in one call, as check-lines does: the ten fields of each line tab-separated,
        one result line per line ("0", or the number, a tab and the description; "!" and the reason
        for a line that could not be judged)."""
        data = batch.encode("utf-8") if isinstance(batch, str) else batch
        results, size, refused = ctypes.c_void_p(), c.c_size(), c.c_size()
        check(c.lib.nimbara_check_lines(self._handle.pointer, data, len(data), ctypes.byref(results),
                                        ctypes.byref(size), ctypes.byref(refused)))
        return c.take_text(results, size.value)


class Guia:
    """A Guia as its file holds it: header, parameters, product lines and special services by the
    names of the fill operations' arguments."""

    def __init__(self, _pointer: Optional[ctypes.c_void_p] = None) -> None:
        if _pointer is None:
            _pointer = ctypes.c_void_p()
            check(c.lib.nimbara_guia_create(ctypes.byref(_pointer)))
        self._handle = Handle(_pointer, c.lib.nimbara_guia_destroy)

    @classmethod
    def from_file(cls, path: PathLike) -> "Guia":
        """Reads a Guia file (JSON); a malformed one raises BadArgumentError naming the place."""
        data = c.encoded(Path(path))
        pointer = ctypes.c_void_p()
        check(c.lib.nimbara_guia_from_file(data, len(data), ctypes.byref(pointer)))
        return cls(pointer)

    @classmethod
    def from_json(cls, text: str) -> "Guia":
        """A Guia from the text of a Guia file."""
        data = text.encode("utf-8")
        pointer = ctypes.c_void_p()
        check(c.lib.nimbara_guia_from_json(data, len(data), ctypes.byref(pointer)))
        return cls(pointer)

    def to_json(self) -> str:
        """The Guia as the text of a Guia file."""
        text, size = ctypes.c_void_p(), c.c_size()
        check(c.lib.nimbara_guia_to_json(self._handle.pointer, ctypes.byref(text), ctypes.byref(size)))
        return c.take_text(text, size.value)

    def _fill(self, section: int, values: Dict[str, object]) -> None:
        check(c.lib.nimbara_guia_fill(self._handle.pointer, section, _fields(values), len(values)))

    def set_header(self, **fields: object) -> None:
        """Sets fields of the header (cb_N_Req=..., cb_CodCliente=...)."""
        self._fill(CABECALHO, fields)

    def set_parameters(self, **fields: object) -> None:
        """Sets print and barcode parameters (vGuiaNVias=..., VCod2DFonteSize=...)."""
        self._fill(PARAMETROS, fields)

    def add_line(self, **fields: object) -> None:
        """Adds a product line (B_Produto=..., Escalao=...); the fields not named are empty."""
        self._fill(PRODUTO, fields)

    def add_service(self, **fields: object) -> None:
        """Adds a special service of a line (N_Linha=..., CodServEsp=..., Valor=...)."""
        self._fill(SERVICO, fields)

    def _validator(self) -> Handle:
        pointer = ctypes.c_void_p()
        check(c.lib.nimbara_validator_create(ctypes.byref(pointer)))
        handle = Handle(pointer, c.lib.nimbara_validator_destroy)
        check(c.lib.nimbara_validator_fill(handle.pointer, self._handle.pointer))
        return handle

    def validate(self) -> Outcome:
        """Every line, then (when none failed) the whole Guia; writes no report."""
        validator = self._validator()
        outcome = ctypes.c_void_p()
        check(c.lib.nimbara_validator_validate(validator.pointer, ctypes.byref(outcome)), FAILED_VALIDATION)
        return read_outcome(outcome)

    def print_pdfs(self) -> List[bytes]:
        """Prints the Guia without validating it: each copy's PDF, in memory."""
        validator = self._validator()
        job = ctypes.c_void_p()
        check(c.lib.nimbara_validator_print_memory(validator.pointer, ctypes.byref(job)))
        return read_print_job(job)

    def print_pdf(self) -> bytes:
        """The first copy's PDF, in memory (a Guia of one copy has no other)."""
        return self.print_pdfs()[0]

    def print_files(self, folder: PathLike) -> List[Path]:
        """Prints each copy into its own PDF file in `folder`, never over another file."""
        validator = self._validator()
        data = c.encoded(Path(folder))
        job = ctypes.c_void_p()
        check(c.lib.nimbara_validator_print_files(validator.pointer, data, len(data), ctypes.byref(job)))
        return [Path(os.fsdecode(item)) for item in read_print_job(job)]

    def imprime_guia(self, report_folder: Optional[PathLike] = None, only_printer: bool = False) -> str:
        """ImprimeGuia: validates, writes the report (in `report_folder`, made when missing, else the
        working folder), prints into the same folder when all passed, and answers its XML text."""
        validator = self._validator()
        if report_folder is not None:
            # As the program does: a folder that is missing is made, one that cannot be raises OSError.
            Path(report_folder).mkdir(parents=True, exist_ok=True)
            data = c.encoded(Path(report_folder))
            check(c.lib.nimbara_validator_set_report_folder(validator.pointer, data, len(data)))
        answer, size = ctypes.c_void_p(), c.c_size()
        check(c.lib.nimbara_validator_imprime_guia(validator.pointer, int(only_printer), ctypes.byref(answer),
                                                   ctypes.byref(size)))
        return c.take_text(answer, size.value)
