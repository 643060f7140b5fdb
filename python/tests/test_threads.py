"""Eight threads validating and printing at once, each on its own Guia, and sharing one validator."""
from __future__ import annotations

from concurrent.futures import ThreadPoolExecutor

import nimbara
from conftest import EXAMPLES

THREADS = 8
ROUNDS = 4


def test_eight_threads_validate_and_print_at_once() -> None:
    expected = {name: nimbara.Guia.from_file(EXAMPLES / name).validate()
                for name in ("valid-guia.json", "line-errors.json", "fourteen-lines.json")}
    shared = nimbara.Validator()
    batch = (EXAMPLES / "lines.tsv").read_text(encoding="utf-8")
    batch_answer = shared.check_lines(batch)

    def work(worker: int) -> int:
        printed = 0
        for round_ in range(ROUNDS):
            name = list(expected)[(worker + round_) % len(expected)]
            guia = nimbara.Guia.from_file(EXAMPLES / name)
            outcome = guia.validate()
            assert outcome == expected[name], name
            if outcome.passed:
                pdfs = guia.print_pdfs()
                assert pdfs and all(p.startswith(b"%PDF-") and b"%%EOF" in p[-16:] for p in pdfs)
                printed += len(pdfs)
            assert shared.check_lines(batch) == batch_answer
        return printed

    with ThreadPoolExecutor(THREADS) as pool:
        printed = list(pool.map(work, range(THREADS)))
    assert sum(printed) > 0
