"""The exceptions that the library's status codes become; each carries the status and the cause."""
from __future__ import annotations

from typing import Dict, Type

from ._library import lib

OK = 0
FAILED_VALIDATION = 1
BAD_ARGUMENT = 2
NOT_FOUND = 3
IO = 4
DATABASE = 5
INTERNAL = 6
CANCELLED = 7


class NimbaraError(Exception):
    """A call of the library failed; `cause` is the library's own words, `status` its code."""

    def __init__(self, status: int, cause: str) -> None:
        super().__init__(cause)
        self.status = status
        self.cause = cause


class ValidationFailedError(NimbaraError):
    """A line or a Guia did not pass where passing was required."""


class BadArgumentError(NimbaraError, ValueError):
    """A malformed text, an unknown field or version, a Guia that cannot be taken as given."""


class NotFoundError(NimbaraError, LookupError):
    """No stored Guia of that number, no such file."""


class NimbaraIOError(NimbaraError):
    """A file or folder could not be read or written; nothing half-written was left."""


class DatabaseError(NimbaraError):
    """The store refused or could not be reached."""


class InternalError(NimbaraError):
    """Any other failure inside the library."""


class CancelledError(NimbaraError):
    """The host cancelled the call; nothing was changed."""


_BY_STATUS: Dict[int, Type[NimbaraError]] = {
    FAILED_VALIDATION: ValidationFailedError,
    BAD_ARGUMENT: BadArgumentError,
    NOT_FOUND: NotFoundError,
    IO: NimbaraIOError,
    DATABASE: DatabaseError,
    INTERNAL: InternalError,
    CANCELLED: CancelledError,
}


def check(status: int, *accepted: int) -> int:
    """Raises the exception of `status` with the thread's last error, unless it is OK or accepted."""
    if status == OK or status in accepted:
        return status
    cause = lib.nimbara_last_error().decode("utf-8", errors="replace")
    raise _BY_STATUS.get(status, InternalError)(status, cause)
