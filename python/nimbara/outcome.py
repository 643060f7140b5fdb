"""The results of validation as dataclasses."""
from __future__ import annotations

import ctypes
from dataclasses import dataclass, field
from typing import List, Optional

from . import _library as c
from .errors import check


@dataclass(frozen=True)
class PossibleValue:
    """A value that would have been accepted: a code and its designation, or, for a weight, the
    minimum (`code`) and maximum (`label`) of a range."""

    code: str
    label: str


@dataclass(frozen=True)
class GuiaError:
    """An error of a line (`row` its place in filling order from 0, `line` its N_Linha) or, with
    `row` None, of a rule of the whole Guia."""

    number: int
    description: str
    row: Optional[int] = None
    line: str = ""
    services: Optional[List[str]] = None  # the failing service codes, when the error lists them
    ranges: bool = False  # possible_values are weight ranges
    possible_values: List[PossibleValue] = field(default_factory=list)
    sentence: str = ""  # what a service needs, when the report says it in words


@dataclass(frozen=True)
class Outcome:
    """What validation found: nothing when the Guia passed."""

    errors: List[GuiaError] = field(default_factory=list)

    @property
    def passed(self) -> bool:
        return not self.errors

    def __bool__(self) -> bool:
        return self.passed


def read_outcome(handle: ctypes.c_void_p) -> Outcome:
    """Copies an outcome out of the library and releases it."""
    try:
        errors = []
        for i in range(c.lib.nimbara_outcome_error_count(handle)):
            info = c.ErrorInfo(struct_size=ctypes.sizeof(c.ErrorInfo))
            check(c.lib.nimbara_outcome_error(handle, i, ctypes.byref(info)))
            values = []
            for j in range(info.possible_count):
                code, label = ctypes.c_void_p(), ctypes.c_void_p()
                code_size, label_size = c.c_size(), c.c_size()
                check(c.lib.nimbara_outcome_possible(handle, i, j, ctypes.byref(code), ctypes.byref(code_size),
                                                     ctypes.byref(label), ctypes.byref(label_size)))
                values.append(PossibleValue(c.text_at(code.value, code_size.value),
                                            c.text_at(label.value, label_size.value)))
            description = c.text_at(info.description, info.description_size)
            errors.append(GuiaError(
                number=info.number,
                description=description,
                row=None if info.row < 0 else info.row,
                line=c.text_at(info.line, info.line_size),
                services=description.split(",") if info.is_list else None,
                ranges=bool(info.ranges),
                possible_values=values,
                sentence=c.text_at(info.sentence, info.sentence_size),
            ))
        return Outcome(errors)
    finally:
        c.lib.nimbara_outcome_destroy(handle)
