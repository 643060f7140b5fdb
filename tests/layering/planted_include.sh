#!/usr/bin/env bash
# The layering check passes on the tree as it is and fails once a foundation file includes a document
# header, once the program includes a private header, and once the library includes cairo outside the modules.
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
cp "$src/tools/nimbara/main.cpp" "$work/tools/nimbara/main.cpp"
echo '#include <cairo.h>' >>"$work/src/platform/pdf_surface.cpp"
if "$work/scripts/check-layering" "$work" 2>"$work/err"; then echo "cairo outside the modules passed" >&2; exit 1; fi
grep -q 'src/platform/pdf_surface.cpp:.*only src/platform/modules' "$work/err"
echo "layering check: planted includes refused"
