"""Guia Nimbara for Python: validate, report and print Guias, and keep them in a store.

    >>> import nimbara
    >>> guia = nimbara.Guia.from_file("examples/valid-guia.json")
    >>> guia.validate().passed
    True
"""
from ._library import lib as _lib
from .client import Client
from .errors import (BadArgumentError, CancelledError, DatabaseError, InternalError, NimbaraError, NimbaraIOError,
                     NotFoundError, ValidationFailedError)
from .guia import Guia, Validator
from .notifier import set_notifier
from .outcome import GuiaError, Outcome, PossibleValue
from .store import CancelFlag, ImportCounts, SavedGuia, Store

__version__ = _lib.nimbara_version().decode("ascii")

__all__ = [
    "BadArgumentError", "CancelFlag", "Client", "CancelledError", "DatabaseError", "Guia", "GuiaError", "ImportCounts",
    "InternalError", "NimbaraError", "NimbaraIOError", "NotFoundError", "Outcome", "PossibleValue", "SavedGuia",
    "Store", "ValidationFailedError", "Validator", "set_notifier", "__version__",
]
