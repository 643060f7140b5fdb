#!/usr/bin/env bash
# Installs the built package into a fresh prefix, finds the manual page and the bash completion where
# man and bash-completion look for them, and completes a few command lines with the installed function.
set -euo pipefail
build=$1
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
prefix=$work/prefix
cmake --install "$build" --prefix "$prefix" >/dev/null

page=$prefix/share/man/man1/nimbara.1
completion=$prefix/share/bash-completion/completions/nimbara
[[ -s $page ]] || { echo "the manual page is not installed at $page" >&2; exit 1; }
[[ -s $completion ]] || { echo "the bash completion is not installed at $completion" >&2; exit 1; }
head -1 "$page" | grep -q '^\.TH NIMBARA 1 ' || { echo "$page is no manual page" >&2; exit 1; }
grep -q '^\.SS nimbara db init$' "$page" || { echo "$page lacks nimbara db init" >&2; exit 1; }
if command -v man >/dev/null; then
  MANPATH=$prefix/share/man man -P cat nimbara 2>/dev/null | grep -q 'Usage: nimbara db init' ||
    { echo "man does not show the installed page" >&2; exit 1; }
fi

mkdir "$work/files" && touch "$work/files/guia-one.json" "$work/files/guia-two.json"
cd "$work/files"
# Each case: the words typed, the cursor on the last one, and the completions expected (sorted).
answers=$(bash -c '
  source "$1"
  compopt() { :; }   # outside an interactive completion there is nothing to set
  complete_line() {
    COMP_WORDS=("$@"); COMP_CWORD=$((${#COMP_WORDS[@]} - 1)); COMPREPLY=()
    _nimbara
    printf "%s|" "$*"; printf "%s\n" "${COMPREPLY[@]}" | sort | tr "\n" " "; echo
  }
  complete_line nimbara ch
  complete_line nimbara db cl
  complete_line nimbara db client ""
  complete_line nimbara codes s
  complete_line nimbara check --rep
  complete_line nimbara check --report ""
  complete_line nimbara form --edition ""
  complete_line nimbara check guia-
  complete_line nimbara db help ""
  complete_line nimbara help db cli
  complete_line nimbara document getXML_DoValP
  complete_line nimbara serve --l
  complete_line nimbara users ""
  complete_line nimbara users add ana --r
' completion "$completion")
expected='nimbara ch|check check-lines 
nimbara db cl|client 
nimbara db client |delete list save show 
nimbara codes s|sampling scope service speed 
nimbara check --rep|--report --report-dir 
nimbara check --report |always errors never 
nimbara form --edition |array database 
nimbara check guia-|guia-one.json guia-two.json 
nimbara db help |check check-lines client delete export import init list params print receive refs save show where 
nimbara help db cli|client 
nimbara document getXML_DoValP|getXML_DoValPeso getXML_DoValPreTratamento 
nimbara serve --l|--listen 
nimbara users |add list remove 
nimbara users add ana --r|--role '
if [[ $(sort <<<"$answers") != $(sort <<<"$expected") ]]; then
  echo "completions differ:" >&2
  diff <(sort <<<"$expected") <(sort <<<"$answers") >&2 || true
  exit 1
fi
