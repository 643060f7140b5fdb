"""Owning the library's handles: each is released once, when its Python object goes."""
from __future__ import annotations

import ctypes
from typing import Callable, List

from . import _library as c
from .errors import check


class Handle:
    """A handle of the library with the function that releases it."""

    def __init__(self, pointer: ctypes.c_void_p, release: Callable[[ctypes.c_void_p], None]) -> None:
        self._pointer = pointer
        self._release = release

    @property
    def pointer(self) -> ctypes.c_void_p:
        if not self._pointer:
            raise ValueError("the object was closed")
        return self._pointer

    def close(self) -> None:
        if self._pointer:
            self._release(self._pointer)
            self._pointer = ctypes.c_void_p()

    def __del__(self) -> None:
        self.close()


def read_print_job(job: ctypes.c_void_p) -> List[bytes]:
    """The items of a print job (PDFs or paths, as bytes), copied out; the job is released."""
    try:
        items = []
        for i in range(c.lib.nimbara_print_job_count(job)):
            data, size = ctypes.c_void_p(), c.c_size()
            check(c.lib.nimbara_print_job_item(job, i, ctypes.byref(data), ctypes.byref(size)))
            items.append(ctypes.string_at(data.value, size.value))
        return items
    finally:
        c.lib.nimbara_print_job_destroy(job)
