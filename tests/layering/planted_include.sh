#!/usr/bin/env bash
# The layering check passes on the tree as it is and fails once a foundation file includes a document
# header, and once the program includes a private header.
set -euo pipefail
src=$1
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cp -r "$src/src" "$src/include" "$src/scripts" "$work"/
mkdir -p "$work/tools" && cp -r "$src/tools/nimbara" "$work/tools/"
"$work/scripts/check-layering" "$work" >/dev/null

echo '#include "document/validation_report.hpp"' >>"$work/src/foundation/text.cpp"
if "$work/scripts/check-layering" "$work" 2>"$work/err"; then echo "a planted upward include passed" >&2; exit 1; fi
grep -q 'src/foundation/text.cpp (foundation) includes document/validation_report.hpp' "$work/err"

cp "$src/src/foundation/text.cpp" "$work/src/foundation/text.cpp"
echo '#include "foundation/text.hpp"' >>"$work/tools/nimbara/main.cpp"
if "$work/scripts/check-layering" "$work" 2>"$work/err"; then echo "a private include in the program passed" >&2; exit 1; fi
grep -q 'only public headers' "$work/err"
echo "layering check: planted includes refused"
