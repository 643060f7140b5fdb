"""Validates every answer the handler tests kept against the response schema the OpenAPI document
gives for its route, method and status. Usage: check_openapi.py OPENAPI.json ANSWERS_FOLDER"""
import json
import pathlib
import sys

import jsonschema


def main(document_path, folder):
    document = json.loads(pathlib.Path(document_path).read_text())
    # The file schemas inside the document are resources of their own, found by their $id.
    store = {s["$id"]: s for s in document["components"]["schemas"].values() if "$id" in s}
    checked, faults, seen = 0, [], set()
    for path in sorted(pathlib.Path(folder).glob("*.json")):
        kept = json.loads(path.read_text())
        operation = document["paths"].get(kept["pattern"], {}).get(kept["method"].lower())
        if operation is None:
            faults.append(f"{path.name}: {kept['method']} {kept['pattern']} is not in the document")
            continue
        response = operation["responses"].get(str(kept["status"]))
        if response is None:
            faults.append(f"{path.name}: {kept['method']} {kept['pattern']} does not document status {kept['status']}")
            continue
        schema = response.get("content", {}).get("application/json", {}).get("schema")
        if schema is None:
            faults.append(f"{path.name}: status {kept['status']} of {kept['pattern']} has no JSON schema")
            continue
        # The schema is read inside the whole document, so that its references resolve.
        root = dict(document)
        root["$schema"] = "https://json-schema.org/draft/2020-12/schema"
        root["$ref"] = "#/x-answer"
        root["x-answer"] = schema
        try:
            jsonschema.Draft202012Validator(root, resolver=jsonschema.RefResolver("", root, store=store)).validate(kept["body"])
        except jsonschema.ValidationError as e:
            faults.append(f"{path.name}: {kept['method']} {kept['pattern']} {kept['status']}: {e.message} at "
                          f"{'/'.join(map(str, e.absolute_path))}")
            continue
        checked += 1
        seen.add((kept["method"], kept["pattern"]))
    for fault in faults:
        print(fault, file=sys.stderr)
    print(f"{checked} answers of {len(seen)} routes match the document")
    if checked == 0:
        print("no answers were kept", file=sys.stderr)
    return 1 if faults or checked == 0 else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1], sys.argv[2]))
