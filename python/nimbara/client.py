"""A client with its contracts, by the names of their properties."""
from __future__ import annotations

import ctypes
from typing import Dict, List, Optional

from . import _library as c
from ._handles import Handle
from .errors import check

CLIENT_PROPERTIES = ("vCod_Cliente", "vNome", "iTipoCliente", "vMorada", "vLocalidade", "vCodPostal", "vDesigPostal",
                     "vNIF", "vObservacoes", "iAcessoRede")
CONTRACT_PROPERTIES = ("vCodContrato", "vDesignacao", "vJppCredenciado", "vCodCredencial", "vValidacao", "vDescricao",
                       "bActivo")
THE_CLIENT = ctypes.c_size_t(-1).value


def _text(value: object) -> str:
    if isinstance(value, bool):
        return "true" if value else "false"
    return str(value)


def _fields(values: Dict[str, object]) -> "ctypes.Array[c.Field]":
    encoded = [(name.encode("utf-8"), _text(value).encode("utf-8")) for name, value in values.items()]
    array = (c.Field * max(len(encoded), 1))()
    for i, (name, value) in enumerate(encoded):
        array[i] = c.Field(name, len(name), value, len(value))
    return array


class Client:
    """A client (vCod_Cliente, vNome, iTipoCliente, ...) with its contracts (vCodContrato,
    vDesignacao, vJppCredenciado, ...). Stored and read through Store.save_client and load_client."""

    def __init__(self, _pointer: Optional[ctypes.c_void_p] = None, **properties: object) -> None:
        if _pointer is None:
            _pointer = ctypes.c_void_p()
            check(c.lib.nimbara_client_create(ctypes.byref(_pointer)))
        self._handle = Handle(_pointer, c.lib.nimbara_client_destroy)
        if properties:
            self.set(**properties)

    def set(self, **properties: object) -> None:
        """Sets properties of the client; an unknown name or a value of the wrong kind changes nothing."""
        check(c.lib.nimbara_client_set(self._handle.pointer, _fields(properties), len(properties)))

    def add_contract(self, **properties: object) -> None:
        """Adds a contract (vCodContrato=..., vDesignacao=..., bActivo=True, ...)."""
        check(c.lib.nimbara_client_add_contract(self._handle.pointer, _fields(properties), len(properties)))

    def _get(self, contract: int, name: str) -> str:
        data = name.encode("utf-8")
        text, size = ctypes.c_void_p(), c.c_size()
        check(c.lib.nimbara_client_get(self._handle.pointer, contract, data, len(data), ctypes.byref(text),
                                       ctypes.byref(size)))
        return c.text_at(text.value, size.value)

    def as_dict(self) -> Dict[str, object]:
        """The client's properties as text, with "contratos" a list of each contract's."""
        out: Dict[str, object] = {name: self._get(THE_CLIENT, name) for name in CLIENT_PROPERTIES}
        contracts: List[Dict[str, str]] = []
        for i in range(c.lib.nimbara_client_contract_count(self._handle.pointer)):
            contracts.append({name: self._get(i, name) for name in CONTRACT_PROPERTIES})
        out["contratos"] = contracts
        return out
