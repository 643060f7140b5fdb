#!/usr/bin/env python3
"""Checks JSON files against a JSON Schema (draft 2020-12) with the jsonschema package.

check_schema.py SCHEMA FILE... prints {"FILE": null, or the first error's message} as JSON; exit
status 1 when the schema itself is no valid schema.
"""
import json
import sys

import jsonschema


def main() -> int:
    with open(sys.argv[1], encoding="utf-8") as f:
        schema = json.load(f)
    try:
        jsonschema.Draft202012Validator.check_schema(schema)
    except jsonschema.SchemaError as e:
        print(f"{sys.argv[1]}: {e.message}", file=sys.stderr)
        return 1
    validator = jsonschema.Draft202012Validator(schema)
    verdicts = {}
    for path in sys.argv[2:]:
        with open(path, encoding="utf-8") as f:
            error = jsonschema.exceptions.best_match(validator.iter_errors(json.load(f)))
        verdicts[path] = None if error is None else error.message
    json.dump(verdicts, sys.stdout, ensure_ascii=False)
    return 0


if __name__ == "__main__":
    sys.exit(main())
