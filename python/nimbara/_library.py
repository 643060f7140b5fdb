"""Finding and loading libnimbara_c, and the prototypes of its functions."""
from __future__ import annotations

import ctypes
import os
from pathlib import Path
from typing import Iterator, Optional

LIBRARY_NAME = "libnimbara_c.so.1"
ABI_VERSION = 1

c_size = ctypes.c_size_t
c_status = ctypes.c_int
c_text = ctypes.c_char_p
P = ctypes.POINTER


class Field(ctypes.Structure):
    _fields_ = [("name", c_text), ("name_size", c_size), ("value", c_text), ("value_size", c_size)]


class Line(ctypes.Structure):
    _fields_ = [
        ("struct_size", c_size),
        ("produto", c_text), ("produto_size", c_size),
        ("zona", c_text), ("zona_size", c_size),
        ("peso", ctypes.c_int32),
        ("velocidade", c_text), ("velocidade_size", c_size),
        ("formato", c_text), ("formato_size", c_size),
        ("pre_tratamento", c_text), ("pre_tratamento_size", c_size),
        ("desconto", c_text), ("desconto_size", c_size),
        ("ambito", c_text), ("ambito_size", c_size),
        ("amostra", c_text), ("amostra_size", c_size),
        ("servicos", c_text), ("servicos_size", c_size),
    ]


class ErrorInfo(ctypes.Structure):
    _fields_ = [
        ("struct_size", c_size),
        ("row", ctypes.c_int32),
        ("line", ctypes.c_void_p), ("line_size", c_size),
        ("number", ctypes.c_int32),
        ("description", ctypes.c_void_p), ("description_size", c_size),
        ("is_list", ctypes.c_int),
        ("ranges", ctypes.c_int),
        ("possible_count", c_size),
        ("sentence", ctypes.c_void_p), ("sentence_size", c_size),
    ]


class ListFilter(ctypes.Structure):
    _fields_ = [
        ("struct_size", c_size),
        ("year", c_text), ("year_size", c_size),
        ("month", c_text), ("month_size", c_size),
        ("client", c_text), ("client_size", c_size),
        ("order", c_text), ("order_size", c_size),
    ]


PROGRESS = ctypes.CFUNCTYPE(None, ctypes.c_void_p, ctypes.c_int)
MESSAGE = ctypes.CFUNCTYPE(None, ctypes.c_void_p, ctypes.c_int, ctypes.c_void_p, c_size, ctypes.c_void_p, c_size)
BUSY = ctypes.CFUNCTYPE(None, ctypes.c_void_p, ctypes.c_int)


class ImportOptions(ctypes.Structure):
    _fields_ = [
        ("struct_size", c_size),
        ("progress", PROGRESS),
        ("user", ctypes.c_void_p),
        ("cancel", P(ctypes.c_int)),
        ("keep_orphans", ctypes.c_int),
    ]


class ImportCounts(ctypes.Structure):
    _fields_ = [("struct_size", c_size)] + [(name, ctypes.c_int64) for name in
                                            ("clientes", "contratos", "guias", "linhas", "servicos")]


class Notifier(ctypes.Structure):
    _fields_ = [("struct_size", c_size), ("message", MESSAGE), ("busy", BUSY), ("progress", PROGRESS),
                ("user", ctypes.c_void_p)]


def _candidates() -> Iterator[str]:
    """Where the library may be, in the order it is looked for."""
    given = os.environ.get("NIMBARA_LIBRARY")
    if given:
        yield given
        return
    package = Path(__file__).resolve().parent
    yield str(package / LIBRARY_NAME)
    # An install of the package beside the C library: PREFIX/lib/python3.../site-packages/nimbara.
    for folder in package.parents:
        for lib in ("lib", "lib64", "lib/x86_64-linux-gnu"):
            yield str(folder / lib / LIBRARY_NAME)
    yield LIBRARY_NAME


def _load() -> ctypes.CDLL:
    tried = []
    for candidate in _candidates():
        if os.sep in candidate and not os.path.exists(candidate):
            continue
        try:
            return ctypes.CDLL(candidate)
        except OSError as error:
            tried.append(f"{candidate}: {error}")
    raise ImportError("libnimbara_c could not be loaded (set NIMBARA_LIBRARY to its path): " + "; ".join(tried))


def _declare(lib: ctypes.CDLL) -> None:
    handle = ctypes.c_void_p
    out = P(ctypes.c_void_p)
    sigs = {
        "nimbara_version": (c_text, []),
        "nimbara_abi_version": (ctypes.c_int, []),
        "nimbara_last_error": (c_text, []),
        "nimbara_free": (None, [ctypes.c_void_p]),
        "nimbara_set_notifier": (c_status, [P(Notifier)]),
        "nimbara_outcome_destroy": (None, [handle]),
        "nimbara_outcome_passed": (ctypes.c_int, [handle]),
        "nimbara_outcome_error_count": (c_size, [handle]),
        "nimbara_outcome_error": (c_status, [handle, c_size, P(ErrorInfo)]),
        "nimbara_outcome_possible": (c_status, [handle, c_size, c_size, out, P(c_size), out, P(c_size)]),
        "nimbara_print_job_destroy": (None, [handle]),
        "nimbara_print_job_count": (c_size, [handle]),
        "nimbara_print_job_item": (c_status, [handle, c_size, out, P(c_size)]),
        "nimbara_guia_create": (c_status, [out]),
        "nimbara_guia_destroy": (None, [handle]),
        "nimbara_guia_from_file": (c_status, [c_text, c_size, out]),
        "nimbara_guia_from_json": (c_status, [c_text, c_size, out]),
        "nimbara_guia_to_json": (c_status, [handle, out, P(c_size)]),
        "nimbara_guia_fill": (c_status, [handle, ctypes.c_int, P(Field), c_size]),
        "nimbara_validator_create": (c_status, [out]),
        "nimbara_validator_destroy": (None, [handle]),
        "nimbara_check_line": (c_status, [handle, P(Line), P(ctypes.c_int32), out, P(c_size)]),
        "nimbara_check_lines": (c_status, [handle, c_text, c_size, out, P(c_size), P(c_size)]),
        "nimbara_validator_fill": (c_status, [handle, handle]),
        "nimbara_validator_validate": (c_status, [handle, out]),
        "nimbara_validator_set_report_folder": (c_status, [handle, c_text, c_size]),
        "nimbara_validator_set_print_folder": (c_status, [handle, c_text, c_size]),
        "nimbara_validator_set_print_log": (c_status, [handle, c_text, c_size]),
        "nimbara_validator_imprime_guia": (c_status, [handle, ctypes.c_int, out, P(c_size)]),
        "nimbara_validator_print_memory": (c_status, [handle, out]),
        "nimbara_validator_print_files": (c_status, [handle, c_text, c_size, out]),
        "nimbara_client_create": (c_status, [out]),
        "nimbara_client_destroy": (None, [handle]),
        "nimbara_client_set": (c_status, [handle, P(Field), c_size]),
        "nimbara_client_add_contract": (c_status, [handle, P(Field), c_size]),
        "nimbara_client_contract_count": (c_size, [handle]),
        "nimbara_client_get": (c_status, [handle, c_size, c_text, c_size, out, P(c_size)]),
        "nimbara_store_save_client": (c_status, [handle, handle, P(ctypes.c_int32)]),
        "nimbara_store_load_client": (c_status, [handle, ctypes.c_int32, out]),
        "nimbara_store_open": (c_status, [c_text, c_size, ctypes.c_int, out]),
        "nimbara_store_destroy": (None, [handle]),
        "nimbara_store_save": (c_status, [handle, handle, P(ctypes.c_int32), P(ctypes.c_int32), P(ctypes.c_int32)]),
        "nimbara_store_load": (c_status, [handle, ctypes.c_int32, out]),
        "nimbara_store_list": (c_status, [handle, P(ListFilter), out]),
        "nimbara_listing_destroy": (None, [handle]),
        "nimbara_listing_column_count": (c_size, [handle]),
        "nimbara_listing_row_count": (c_size, [handle]),
        "nimbara_listing_column": (c_status, [handle, c_size, out, P(c_size)]),
        "nimbara_listing_cell": (c_status, [handle, c_size, c_size, out, P(c_size), P(ctypes.c_int)]),
        "nimbara_store_check": (c_status, [handle, ctypes.c_int32, out]),
        "nimbara_store_print": (c_status, [handle, ctypes.c_int32, c_text, c_size, out]),
        "nimbara_store_import": (c_status, [handle, c_text, c_size, c_text, c_size, P(ImportOptions),
                                            P(ImportCounts)]),
    }
    for name, (result, arguments) in sigs.items():
        function = getattr(lib, name)
        function.restype = result
        function.argtypes = arguments


lib = _load()
_declare(lib)
if lib.nimbara_abi_version() != ABI_VERSION:
    raise ImportError(f"libnimbara_c speaks interface {lib.nimbara_abi_version()}, this package {ABI_VERSION}")


def text_at(pointer: Optional[int], size: int) -> str:
    """A UTF-8 text the library owns, copied out."""
    return ctypes.string_at(pointer, size).decode("utf-8") if size else ""


def take_text(pointer: ctypes.c_void_p, size: int) -> str:
    """A UTF-8 text the library allocated for us, copied out and released."""
    try:
        return text_at(pointer.value, size)
    finally:
        lib.nimbara_free(pointer)


def encoded(value: "str | os.PathLike[str] | None") -> bytes:
    """A text going in, as UTF-8."""
    if value is None:
        return b""
    return os.fsencode(value) if isinstance(value, os.PathLike) else str(value).encode("utf-8")
