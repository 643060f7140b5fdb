#!/usr/bin/env bash
# Installs the built package into a fresh prefix, checks that the C library exports only nimbara_*,
# builds examples/c against it with CMake (C99, warnings as errors) and with pkg-config, and runs it on
# the sample Guias: the valid one passes and prints a PDF, the one with failing lines lists them.
set -euo pipefail
build=$1 source=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
prefix=$work/prefix
cmake --install "$build" --prefix "$prefix" >/dev/null

lib=$(find "$prefix" -name 'libnimbara_c.so.[0-9]*' | head -1)
[[ -n $lib ]] || { echo "libnimbara_c is not installed" >&2; exit 1; }
[[ $(objdump -p "$lib" | awk '/SONAME/ {print $2}') == libnimbara_c.so.1 ]] || { echo "wrong SONAME" >&2; exit 1; }
[[ -f $prefix/include/nimbara/nimbara.h ]] || { echo "nimbara.h is not installed" >&2; exit 1; }
exported=$(nm -D --defined-only "$lib" | awk '$2 ~ /^[TWBDVRiu]$/ {sub(/@.*/, "", $3); print $3}')
[[ -n $exported ]] || { echo "no symbol exported" >&2; exit 1; }
others=$(grep -v '^nimbara_' <<<"$exported" || true)
[[ -z $others ]] || { echo "libnimbara_c exports more than nimbara_*:" >&2; echo "$others" >&2; exit 1; }
grep -qx 'nimbara_validator_validate' <<<"$exported" || { echo "nimbara_validator_validate is not exported" >&2; exit 1; }

cmake -S "$source/examples/c" -B "$work/host" -G Ninja -DCMAKE_PREFIX_PATH="$prefix" >/dev/null
cmake --build "$work/host" >/dev/null
export PKG_CONFIG_PATH=$(dirname "$(find "$prefix" -name nimbara_c.pc)")
cc -std=c99 -Wall -Wextra -pedantic -Werror -o "$work/pc_host" "$source/examples/c/host.c" $(pkg-config --cflags --libs nimbara_c)

export LD_LIBRARY_PATH=$(dirname "$lib")
for host in "$work/host/nimbara_c_host" "$work/pc_host"; do
  (cd "$work" && "$host" "$source/examples/valid-guia.json" "$work/guia.pdf" >"$work/out.txt") ||
    { echo "$host: the valid Guia did not pass" >&2; cat "$work/out.txt" >&2; exit 1; }
  grep -q '^nimbara 5.3.15 (C interface 1): line C01 01 50 answers 0$' "$work/out.txt" ||
    { echo "$host: no version line" >&2; cat "$work/out.txt" >&2; exit 1; }
  [[ $(head -c 5 "$work/guia.pdf") == %PDF- ]] || { echo "$host: no PDF written" >&2; exit 1; }
  status=0
  "$host" "$source/examples/line-errors.json" >"$work/out.txt" || status=$?
  [[ $status -eq 1 ]] || { echo "$host: line-errors.json answered $status" >&2; exit 1; }
  grep -q '^line .*: error -' "$work/out.txt" && grep -q '^  accepted ' "$work/out.txt" ||
    { echo "$host: failing lines not listed with accepted values" >&2; cat "$work/out.txt" >&2; exit 1; }
done
echo "C host: built against the installed package (CMake and pkg-config), only nimbara_* exported, runs"
