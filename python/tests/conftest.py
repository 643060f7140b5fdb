"""Where the tests find the samples and the stores they run on."""
from __future__ import annotations

import os
import subprocess
import uuid
from pathlib import Path
from typing import Iterator

import pytest

SOURCE = Path(__file__).resolve().parents[2]
EXAMPLES = SOURCE / "examples"
JET_FIXTURES = SOURCE.parent / "shared" / "fixtures" / "jet"


@pytest.fixture(params=["sqlite", "postgresql"])
def conn(request: pytest.FixtureRequest, tmp_path: Path) -> Iterator[str]:
    """A connection string of an empty database of its own, on each store."""
    if request.param == "sqlite":
        yield "sqlite:" + str(tmp_path / "guias.db")
        return
    server = os.environ.get("NIMBARA_TEST_PG")
    if not server:
        if os.environ.get("CI") == "true":
            pytest.fail("NIMBARA_TEST_PG is not set: run the tests through scripts/with-postgres")
        pytest.skip("NO POSTGRESQL SERVER: NIMBARA_TEST_PG is not set")
    name = "nimbara_py_" + uuid.uuid4().hex[:12]
    subprocess.run(["psql", server, "-qc", f"CREATE DATABASE {name}"], check=True, capture_output=True)
    settings = dict(pair.split("=", 1) for pair in server.split())
    settings["dbname"] = name
    try:
        yield "postgresql:" + " ".join(f"{k}={v}" for k, v in settings.items())
    finally:
        subprocess.run(["psql", server, "-qc", f"DROP DATABASE IF EXISTS {name} WITH (FORCE)"], capture_output=True)
