#!/usr/bin/env python3
"""Reads an export back with Python's own readers, as a spreadsheet or a script would.

read_back.py csv|tsv|json FILE prints {"header": [...], "rows": [[...], ...]} for csv and tsv, or the
parsed document for json, as JSON on standard output. A record whose field count differs from the
header's, malformed quoting or text that is not UTF-8 ends it with exit status 1.
"""
import csv
import json
import sys


def main() -> int:
    kind, path = sys.argv[1], sys.argv[2]
    with open(path, newline="", encoding="utf-8") as f:
        if kind == "json":
            json.dump(json.load(f), sys.stdout, ensure_ascii=False)
            return 0
        if kind == "csv":
            records = list(csv.reader(f, strict=True))
        else:
            records = list(csv.reader(f, delimiter="\t", quoting=csv.QUOTE_NONE, strict=True))
    header, rows = records[0], records[1:]
    for number, row in enumerate(rows, start=2):
        if len(row) != len(header):
            print(f"record {number} has {len(row)} fields, the header {len(header)}", file=sys.stderr)
            return 1
    json.dump({"header": header, "rows": rows}, sys.stdout, ensure_ascii=False)
    return 0


if __name__ == "__main__":
    sys.exit(main())
