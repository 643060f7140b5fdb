#!/usr/bin/env bash
# Installs the built package into a fresh prefix, builds a tiny host against it with CMake (shared and
# static) and with pkg-config, runs each, and checks that the shared library exports only the public API,
# that neither it nor the program links the libraries left to the modules, and that each module exports
# only its factory.
set -euo pipefail
build=$1 source=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
prefix=$work/prefix
cmake --install "$build" --prefix "$prefix" >/dev/null

lib=$(find "$prefix" -name 'libnimbara.so.5.3.15')
[[ -n $lib ]] || { echo "libnimbara.so.5.3.15 not installed" >&2; exit 1; }
[[ $(objdump -p "$lib" | awk '/SONAME/ {print $2}') == libnimbara.so.5 ]] || { echo "wrong SONAME" >&2; exit 1; }
[[ -x $prefix/bin/nimbara ]] || { echo "the program is not installed" >&2; exit 1; }
for schema in guia-file client-file; do
  [[ -f $prefix/share/nimbara/schema/$schema.schema.json ]] || { echo "the $schema schema is not installed" >&2; exit 1; }
done
[[ ! -e $prefix/include/foundation ]] || { echo "private headers installed" >&2; exit 1; }

# Every exported symbol of ours lives in the nimbara namespace and is declared in a public header.
leaked=$(nm -DC --defined-only "$lib" | awk '$2 ~ /^[TWBDVR]$/ {$1=$2=""; print}' | grep -v '^ *nimbara::' |
         grep -vE '^ *(typeinfo|vtable|VTT|guard variable|TLS (init|wrapper) function for nimbara::|_init|_fini|std::|__gnu|void std::|.*std::.*)' || true)
[[ -z $leaked ]] || { echo "symbols outside the API are exported:" >&2; echo "$leaked" >&2; exit 1; }
for hidden in 'nimbara::validation::' 'nimbara::document::' 'nimbara::platform::' 'nimbara::text::' 'nimbara::printing::'; do
  if nm -DC --defined-only "$lib" | grep -q "$hidden"; then echo "internal $hidden symbols are exported" >&2; exit 1; fi
done

# The printing classes export their public operations and nothing of the page's helpers.
printing_api='ImpressaoComum|cls_ImpressaoA|cls_Impressao|~ImpressaoComum|~cls_ImpressaoA|~cls_Impressao|operator=|'\
'printaCaixa|printaCaixaFilled|printacirculo|ValorAlinhado|ApagaValorAlinhado|PrintaParteFixaGuiaExp|'\
'ImprimeHeaderFooter|PrintTestPage|WriteLog|getImpressaoSetting|SetPageOffsets|log_path|set_log_path|'\
'set_notifier|log_entries|edition|Imprime_NumPaginas|ReimprimirObservacoes|MyReplaceSpace|PrintaParteDetail|'\
'PrintaSEParteDetail|CountSEspeciaisComValor|PrintCreatedPDF|Imprime_Parte_Variavel|Calcula_TotalidadePaginas|'\
'Apaga_RegsUltima_linha|Param_Parametros|Param_Cabecalho|Param_Produto|Param_ServicosEspeciais|PrintProblems'
extra=$(nm -DC --defined-only "$lib" | grep -oE 'nimbara::(ImpressaoComum|cls_ImpressaoA|cls_Impressao)::[~A-Za-z_0-9=]+' |
        sed 's/^.*:://' | sort -u | grep -vxE "$printing_api" || true)
[[ -z $extra ]] || { echo "printing helpers are exported:" >&2; echo "$extra" >&2; exit 1; }
if nm -DC --defined-only "$lib" | grep -qE 'PageDriver|PagePlan|twips[XY]|printAt|paintLogo|RowCombs'; then
  echo "the page's helpers are exported" >&2; exit 1
fi

# The heavy libraries are the modules' alone; the hosts below draw a preview through the cairo module.
for binary in "$lib" "$prefix/bin/nimbara"; do
  heavy=$(objdump -p "$binary" | awk '/NEEDED/ {print $2}' | grep -E 'libpq|cairo|pango|fontconfig|libmdb|glib|libcups|poppler|ZXing|libpng|libjpeg|libtiff' || true)
  [[ -z $heavy ]] || { echo "$binary links libraries left to the modules:" >&2; echo "$heavy" >&2; exit 1; }
done
for name in cairo postgresql jet cups scan; do
  module=$(dirname "$lib")/nimbara/libnimbara-$name.so.5.3.15
  [[ -f $module ]] || { echo "the module $name is not installed" >&2; exit 1; }
  exported=$(nm -D --defined-only "$module" | awk '$2 ~ /^[TWBDVRiu]$/ {print $3}')
  [[ $exported == nimbara_* && $(wc -l <<<"$exported") -eq 1 ]] || { echo "$module exports: $exported" >&2; exit 1; }
done
(cd "$work" && "$prefix/bin/nimbara" form --out form.pdf --png form.png >/dev/null && [[ -s form.png ]]) ||
  { echo "the installed program cannot draw a preview" >&2; exit 1; }

cmake -S "$source/tests/package/host" -B "$work/host" -G Ninja -DCMAKE_PREFIX_PATH="$prefix" >/dev/null
cmake --build "$work/host" >/dev/null
LD_LIBRARY_PATH=$prefix/lib:$prefix/lib64 "$work/host/host" | grep -qx '5.3.15 0 [1-9][0-9]*'
"$work/host/host_static" | grep -qx '5.3.15 0 [1-9][0-9]*'

export PKG_CONFIG_PATH=$(dirname "$(find "$prefix" -name nimbara.pc)")
c++ -o "$work/pc_host" "$source/tests/package/host/main.cpp" $(pkg-config --cflags --libs nimbara)
LD_LIBRARY_PATH=$prefix/lib:$prefix/lib64 "$work/pc_host" | grep -qx '5.3.15 0 [1-9][0-9]*'
echo "installed package: found by CMake and pkg-config, hosts run and load modules, only the public API exported"
