"""The process's notifier: what message boxes, the hourglass and progress bars would have shown."""
from __future__ import annotations

import ctypes
from typing import Callable, Optional

from . import _library as c
from .errors import check

MessageCallback = Callable[[int, str, str], None]

_kept: list = []  # the callbacks in force stay alive while the library may call them


def set_notifier(message: Optional[MessageCallback] = None, busy: Optional[Callable[[bool], None]] = None,
                 progress: Optional[Callable[[int], None]] = None) -> None:
    """Sends the library's messages (icon, title, text), busy and progress to these callables;
    with none, back to the default, which writes messages to standard error. Exceptions raised by
    a callable are ignored, as nothing may cross into the library."""
    if message is None and busy is None and progress is None:
        check(c.lib.nimbara_set_notifier(None))
        return

    def on_message(_user: Optional[int], icon: int, title: int, title_size: int, text: int, text_size: int) -> None:
        if message is not None:
            try:
                message(icon, c.text_at(title, title_size), c.text_at(text, text_size))
            except Exception:  # noqa: BLE001
                pass

    def on_busy(_user: Optional[int], on: int) -> None:
        if busy is not None:
            try:
                busy(bool(on))
            except Exception:  # noqa: BLE001
                pass

    def on_progress(_user: Optional[int], value: int) -> None:
        if progress is not None:
            try:
                progress(value)
            except Exception:  # noqa: BLE001
                pass

    callbacks = c.Notifier(ctypes.sizeof(c.Notifier), c.MESSAGE(on_message), c.BUSY(on_busy),
                           c.PROGRESS(on_progress), None)
    _kept.append(callbacks)
    check(c.lib.nimbara_set_notifier(ctypes.byref(callbacks)))
