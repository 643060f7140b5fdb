"""The database road from Python, on both stores: import, list, load, save, check, print, cancel."""
from __future__ import annotations

import pytest

import nimbara
from conftest import JET_FIXTURES

from conftest import EXAMPLES

needs_fixtures = pytest.mark.skipif(not JET_FIXTURES.is_dir(), reason="the Jet fixtures in ../shared are absent")


def test_a_client_is_stored_read_back_and_takes_a_guia(conn: str) -> None:
    with nimbara.Store(conn, create=True) as store:
        client = nimbara.Client(vCod_Cliente=456, vNome="Livraria O'Neill", iTipoCliente=2)
        client.add_contract(vCodContrato=300042, vDesignacao="Correio", vJppCredenciado=True)
        with pytest.raises(nimbara.BadArgumentError, match="iTipoCliente"):
            client.set(iTipoCliente="many")
        id_cliente = store.save_client(client)
        assert store.save_client(client) == id_cliente
        loaded = store.load_client(456).as_dict()
        assert loaded["vNome"] == "Livraria O'Neill" and loaded["iTipoCliente"] == "2"
        assert [(k["vCodContrato"], k["vJppCredenciado"]) for k in loaded["contratos"]] == [("300042", "true")]
        with pytest.raises(nimbara.NotFoundError):
            store.load_client(457)
        saved = store.save(nimbara.Guia.from_file(EXAMPLES / "valid-guia.json"))
        assert store.load(saved.n_req).validate().passed


@needs_fixtures
def test_an_imported_store_lists_loads_saves_checks_and_prints(conn: str) -> None:
    heard: list[str] = []
    busy: list[bool] = []
    nimbara.set_notifier(message=lambda icon, title, text: heard.append(text), busy=busy.append)
    progress: list[int] = []
    try:
        with nimbara.Store(conn, create=True) as store:
            counts = store.import_old(JET_FIXTURES / "v0514.mdb", "0514", progress=progress.append)
            assert (counts.clientes, counts.guias) == (5, 12)
            assert progress[-1] == 100 and progress == sorted(progress)
            assert "Base de Dados importada com sucesso." in heard and busy == [True, False]

            rows = list(store.list(order="guia desc"))
            assert len(rows) == counts.linhas
            assert [int(r["Req2"]) for r in rows] == sorted((int(r["Req2"]) for r in rows), reverse=True)
            with pytest.raises(nimbara.BadArgumentError, match="nome;"):
                store.list(order="nome; DELETE FROM Tbl_Cab")

            printable = None
            for n_req in sorted({int(r["Req1"]) for r in rows}):
                try:
                    assert store.print_pdf(n_req).startswith(b"%PDF-")
                    printable = n_req
                    break
                except nimbara.BadArgumentError as refused:
                    assert "would not print whole" in refused.cause
            assert printable is not None

            guia = store.load(printable)
            saved = store.save(guia)
            assert saved.n_req > printable
            assert '"produtos"' in store.load(saved.n_req).to_json()
            outcome = store.check(saved.n_req)
            assert outcome.passed == (outcome.errors == [])
            with pytest.raises(nimbara.NotFoundError):
                store.load(999999)
    finally:
        nimbara.set_notifier()


@needs_fixtures
def test_a_cancelled_or_failing_import_leaves_the_store_as_it_was(conn: str) -> None:
    with nimbara.Store(conn, create=True) as store:
        store.import_old(JET_FIXTURES / "v0513.mdb", "0513")
        before = list(store.list())

        flag = nimbara.CancelFlag()
        with pytest.raises(nimbara.CancelledError, match="cancelled"):
            store.import_old(JET_FIXTURES / "v0514.mdb", "0514", progress=lambda value: flag.set(), cancel=flag)
        assert list(store.list()) == before

        def broken(value: int) -> None:
            raise RuntimeError("the host's bar broke")

        with pytest.raises(RuntimeError, match="bar broke"):
            store.import_old(JET_FIXTURES / "v0514.mdb", "0514", progress=broken)
        assert list(store.list()) == before
