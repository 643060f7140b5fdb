#!/usr/bin/env bash
# The ABI check passes on the built library against the committed baseline, and fails against
# baselines planted with what a change of the C interface looks like: a function the library no
# longer has, a struct of nimbara.h of another size.
set -euo pipefail
source=$1 build=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
"$source/scripts/check-abi" "$build" >/dev/null || { echo "the built library differs from abi/nimbara_c.abi" >&2; exit 1; }
sed "s/'nimbara_free'/'nimbara_free_gone'/g" "$source/abi/nimbara_c.abi" >"$work/removed.abi"
sed -E "s/(<class-decl name='nimbara_line' size-in-bits=')[0-9]+'/\10'/" "$source/abi/nimbara_c.abi" >"$work/resized.abi"
for planted in removed resized; do
  ! cmp -s "$source/abi/nimbara_c.abi" "$work/$planted.abi" || { echo "nothing planted for $planted" >&2; exit 1; }
  if NIMBARA_ABI_BASELINE=$work/$planted.abi "$source/scripts/check-abi" "$build" >/dev/null 2>&1; then
    echo "the ABI check passed a $planted baseline" >&2; exit 1
  fi
done
echo "ABI check: passes the build, fails a removed function and a resized struct"
