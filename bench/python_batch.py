#!/usr/bin/env python3
"""Lines a second that a Python host judges through the batch call (Validator.check_lines: one
crossing into the library for a whole batch, as check-lines does), beside the goal of one million,
and through one call a line for comparison.

    NIMBARA_LIBRARY=build/lib/libnimbara_c.so.1 PYTHONPATH=python bench/python_batch.py [LINES]
"""
from __future__ import annotations

import sys
import time
from pathlib import Path

import nimbara

GOAL = 1_000_000


def batch_of(lines: int) -> bytes:
    rows = [row for row in (Path(__file__).resolve().parents[1] / "examples" / "lines.tsv").read_bytes().splitlines()
            if row and not row.startswith(b"#")]
    return b"\n".join(rows[i % len(rows)] for i in range(lines)) + b"\n"


def best_of(runs: int, work) -> float:
    best = float("inf")
    for _ in range(runs):
        start = time.perf_counter()
        work()
        best = min(best, time.perf_counter() - start)
    return best


def main() -> None:
    lines = int(sys.argv[1]) if len(sys.argv) > 1 else 2_000_000
    validator = nimbara.Validator()
    batch = batch_of(lines)
    results = validator.check_lines(batch)
    assert results.count("\n") == lines
    seconds = best_of(5, lambda: validator.check_lines(batch))
    rate = lines / seconds
    print(f"batch call: {lines} lines in {seconds * 1000:.0f} ms, {rate / 1e6:.2f} million lines a second "
          f"(goal {GOAL / 1e6:.0f} million: {'met' if rate >= GOAL else 'NOT met'})")

    few = [row.decode().split("\t") for row in batch.splitlines()[:100_000]]
    rows = [(f[0], f[1], int(f[2]), *f[3:]) for f in few if f[2].strip().isdigit()]
    seconds = best_of(3, lambda: [validator.check_line(*row) for row in rows])
    print(f"one call a line: {len(rows) / seconds / 1e6:.2f} million lines a second")


if __name__ == "__main__":
    main()
