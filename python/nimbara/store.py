"""The database road: a store opened by its connection string."""
from __future__ import annotations

import ctypes
import os
from dataclasses import dataclass
from pathlib import Path
from typing import Callable, Dict, Iterator, List, Optional, Union

from . import _library as c
from ._handles import Handle, read_print_job
from .client import Client
from .errors import FAILED_VALIDATION, check
from .guia import Guia
from .outcome import Outcome, read_outcome

PathLike = Union[str, "os.PathLike[str]"]


@dataclass(frozen=True)
class SavedGuia:
    """The three numbers a new Guia was stored under."""

    n_req: int
    n_req2: int
    id_req_anual: int


@dataclass(frozen=True)
class ImportCounts:
    """The rows an import brought in."""

    clientes: int
    contratos: int
    guias: int
    linhas: int
    servicos: int


class CancelFlag:
    """Stops an import from any thread: the import looks at it before every row."""

    def __init__(self) -> None:
        self._flag = ctypes.c_int(0)

    def set(self) -> None:
        self._flag.value = 1

    def is_set(self) -> bool:
        return bool(self._flag.value)


class Store:
    """A store of clients, contracts and Guias: "sqlite:PATH", "postgresql://..." or
    "postgresql:key=value ...". With create=True a missing SQLite file is made and an empty store
    gets the tables. Use one Store per thread."""

    def __init__(self, conn: str, create: bool = False) -> None:
        data = conn.encode("utf-8")
        pointer = ctypes.c_void_p()
        check(c.lib.nimbara_store_open(data, len(data), int(create), ctypes.byref(pointer)))
        self._handle = Handle(pointer, c.lib.nimbara_store_destroy)

    def close(self) -> None:
        self._handle.close()

    def __enter__(self) -> "Store":
        return self

    def __exit__(self, *exc: object) -> None:
        self.close()

    def save_client(self, client: Client) -> int:
        """Creates the client of its number or updates the stored one (its contracts updated or
        added), all or nothing; answers its Id_Cliente."""
        id_cliente = ctypes.c_int32()
        check(c.lib.nimbara_store_save_client(self._handle.pointer, client._handle.pointer, ctypes.byref(id_cliente)))
        return id_cliente.value

    def load_client(self, cod_cliente: int) -> Client:
        """The stored client of that number with its contracts; NotFoundError when there is none."""
        pointer = ctypes.c_void_p()
        check(c.lib.nimbara_store_load_client(self._handle.pointer, cod_cliente, ctypes.byref(pointer)))
        return Client(pointer)

    def save(self, guia: Guia) -> SavedGuia:
        """Stores the Guia as a new Guia (its client and contract must exist)."""
        n_req, n_req2, yearly = ctypes.c_int32(), ctypes.c_int32(), ctypes.c_int32()
        check(c.lib.nimbara_store_save(self._handle.pointer, guia._handle.pointer, ctypes.byref(n_req),
                                       ctypes.byref(n_req2), ctypes.byref(yearly)))
        return SavedGuia(n_req.value, n_req2.value, yearly.value)

    def load(self, n_req: int) -> Guia:
        """The stored Guia as a Guia file; NotFoundError when there is none."""
        pointer = ctypes.c_void_p()
        check(c.lib.nimbara_store_load(self._handle.pointer, n_req, ctypes.byref(pointer)))
        return Guia(pointer)

    def list(self, year: Optional[Union[int, str]] = None, month: Optional[Union[int, str]] = None,
             client: Optional[Union[int, str]] = None, order: Optional[str] = None) -> Iterator[Dict[str, Optional[str]]]:
        """The stored Guias' lines as dicts by column name (None for a NULL), under the filters, in
        the order of column words ("guia, data desc")."""
        texts = [c.encoded(v) for v in (year, month, client, order)]
        filter_ = c.ListFilter(ctypes.sizeof(c.ListFilter), texts[0], len(texts[0]), texts[1], len(texts[1]),
                               texts[2], len(texts[2]), texts[3], len(texts[3]))
        pointer = ctypes.c_void_p()
        check(c.lib.nimbara_store_list(self._handle.pointer, ctypes.byref(filter_), ctypes.byref(pointer)))
        listing = Handle(pointer, c.lib.nimbara_listing_destroy)
        return self._rows(listing)

    @staticmethod
    def _rows(listing: Handle) -> Iterator[Dict[str, Optional[str]]]:
        text, size, null = ctypes.c_void_p(), c.c_size(), ctypes.c_int()
        columns: List[str] = []
        for i in range(c.lib.nimbara_listing_column_count(listing.pointer)):
            check(c.lib.nimbara_listing_column(listing.pointer, i, ctypes.byref(text), ctypes.byref(size)))
            columns.append(c.text_at(text.value, size.value))
        for row in range(c.lib.nimbara_listing_row_count(listing.pointer)):
            values: Dict[str, Optional[str]] = {}
            for i, name in enumerate(columns):
                check(c.lib.nimbara_listing_cell(listing.pointer, row, i, ctypes.byref(text), ctypes.byref(size),
                                                 ctypes.byref(null)))
                values[name] = None if null.value else c.text_at(text.value, size.value)
            yield values

    def check(self, n_req: int) -> Outcome:
        """The stored Guia judged against the database's rule tables: each line, then the Guia."""
        outcome = ctypes.c_void_p()
        check(c.lib.nimbara_store_check(self._handle.pointer, n_req, ctypes.byref(outcome)), FAILED_VALIDATION)
        return read_outcome(outcome)

    def print_pdfs(self, n_req: int) -> List[bytes]:
        """The stored Guia printed, each copy's PDF in memory."""
        job = ctypes.c_void_p()
        check(c.lib.nimbara_store_print(self._handle.pointer, n_req, None, 0, ctypes.byref(job)))
        return read_print_job(job)

    def print_pdf(self, n_req: int) -> bytes:
        """The first copy of the stored Guia, printed in memory."""
        return self.print_pdfs(n_req)[0]

    def import_old(self, path: PathLike, version: str, progress: Optional[Callable[[int], None]] = None,
                   cancel: Optional[CancelFlag] = None, keep_orphans: bool = False) -> ImportCounts:
        """Replaces the clients, contracts and Guias with those of an old database file of `version`
        ("0513", "0514", ...). `progress` hears 0 to 100; `cancel` stops it (CancelledError), and a
        failure (an exception of the callback included) leaves the store as it was."""
        data, version_data = c.encoded(Path(path)), version.encode("utf-8")
        failure: List[BaseException] = []

        def heard(_user: Optional[int], value: int) -> None:
            # An exception may not cross into the library: it is kept and stops the import.
            if failure or progress is None:
                return
            try:
                progress(value)
            except BaseException as error:  # noqa: BLE001 - handed back after the call
                failure.append(error)
                stop.value = 1

        stop = cancel._flag if cancel is not None else ctypes.c_int(0)
        callback = c.PROGRESS(heard)
        options = c.ImportOptions(ctypes.sizeof(c.ImportOptions), callback, None, ctypes.pointer(stop),
                                  int(keep_orphans))
        counts = c.ImportCounts(struct_size=ctypes.sizeof(c.ImportCounts))
        status = c.lib.nimbara_store_import(self._handle.pointer, data, len(data), version_data, len(version_data),
                                            ctypes.byref(options), ctypes.byref(counts))
        if failure:
            raise failure[0]
        check(status)
        return ImportCounts(counts.clientes, counts.contratos, counts.guias, counts.linhas, counts.servicos)
