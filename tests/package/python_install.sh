#!/usr/bin/env bash
# Installs the built C library and the Python package (pip, Debian's Python, no registry) into one fresh
# prefix, then runs a Python host from elsewhere: the package finds the library by where it was installed,
# and NIMBARA_LIBRARY, when set, wins.
set -euo pipefail
build=$1 source=$2 python=$3
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
prefix=$work/prefix
cmake --install "$build" --prefix "$prefix" >/dev/null
# pip builds in the folder it is given: a copy keeps the source tree clean.
cp -r "$source/python" "$work/python"
"$python" -m pip install --quiet --no-build-isolation --no-index --no-deps --prefix "$prefix" "$work/python" \
  2> >(grep -v 'Running pip as the .root. user' >&2)
site=$(dirname "$(find "$prefix" -path '*/nimbara/__init__.py' | head -1)")
[[ -f $site/py.typed ]] || { echo "the package was not installed whole" >&2; exit 1; }

cd "$work"
host='import nimbara, sys
outcome = nimbara.Guia.from_file(sys.argv[1]).validate()
print(nimbara.__version__, outcome.passed, nimbara._library.lib._name)'
unset NIMBARA_LIBRARY
out=$(PYTHONPATH=$(dirname "$site") PYTHONDONTWRITEBYTECODE=1 "$python" -c "$host" "$source/examples/valid-guia.json")
[[ $out == "5.3.15 True $prefix/lib"*"/libnimbara_c.so.1" ]] || { echo "found by place: $out" >&2; exit 1; }
out=$(NIMBARA_LIBRARY=$build/lib/libnimbara_c.so.1 PYTHONPATH=$(dirname "$site") PYTHONDONTWRITEBYTECODE=1 \
      "$python" -c "$host" "$source/examples/valid-guia.json")
[[ $out == "5.3.15 True $build/lib/libnimbara_c.so.1" ]] || { echo "NIMBARA_LIBRARY: $out" >&2; exit 1; }
echo "Python package: installed with pip, finds the library by its place and by NIMBARA_LIBRARY"
