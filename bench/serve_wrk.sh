#!/usr/bin/env bash
# The web API's figures: nimbara serve on a fresh SQLite database, measured by wrk (Debian's) on
# keep-alive connections from 127.0.0.1: a line's check (goal 20,000 req/s, p99 < 5 ms with 50
# connections) and a Guia saved (goal 1,000 a second).
# Usage: bench/serve_wrk.sh [BUILD_DIR] [SECONDS]
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
build=${1:-$root/build}
seconds=${2:-10}
nimbara=$build/bin/nimbara
work=$(mktemp -d)
server=
cleanup() { [[ -n $server ]] && kill "$server" 2>/dev/null; wait 2>/dev/null || true; rm -rf "$work"; }
trap cleanup EXIT

db=sqlite:$work/bench.db
"$nimbara" db init --db "$db" >/dev/null
"$nimbara" serve --db "$db" --listen 127.0.0.1:0 >"$work/out" 2>"$work/err" &
server=$!
for _ in $(seq 100); do [[ -s $work/out ]] && break; sleep 0.05; done
url=$(head -1 "$work/out")
[[ -n $url ]] || { cat "$work/err" >&2; exit 1; }

# A session (cookie and CSRF token) as a page gets it; the example client for the Guias.
read -r cookie token < <(python3 - "$url" <<'PY'
import json, sys, urllib.request
r = urllib.request.urlopen(sys.argv[1] + "api/v1/session")
cookie = r.headers["Set-Cookie"].split(";")[0]
print(cookie, json.load(r)["csrf_token"])
PY
)
post() {  # post PATH FILE: one request, its status
  python3 - "$url" "$1" "$2" "$cookie" "$token" <<'PY'
import sys, urllib.request
url, path, file, cookie, token = sys.argv[1:]
req = urllib.request.Request(url + "api/v1" + path, data=open(file, "rb").read(), method="POST",
                             headers={"Cookie": cookie, "X-CSRF-Token": token, "Content-Type": "application/json"})
print(urllib.request.urlopen(req).status)
PY
}
post /clients "$root/examples/client.json" >/dev/null

cat >"$work/line.json" <<'JSON'
{"B_Produto": "C01", "A_Zona_Taxacao": "01", "Escalao": "50", "E_Velocidade": "0", "Formato": "02",
 "PreTratamento": "1", "Desconto": "0", "CodAmbitoDist": "0", "Entrega_Sampling": "0", "ListaServesp": "0"}
JSON
lua_for() {  # lua_for BODY_FILE: a wrk script posting that body with the session
  cat <<LUA
wrk.method = "POST"
local f = io.open("$1", "rb"); wrk.body = f:read("*a"); f:close()
wrk.headers["Content-Type"] = "application/json"
wrk.headers["Cookie"] = "$cookie"
wrk.headers["X-CSRF-Token"] = "$token"
local non201 = 0
response = function(status) if status >= 300 then non201 = non201 + 1 end end
LUA
}
lua_for "$work/line.json" >"$work/line.lua"
lua_for "$root/examples/valid-guia.json" >"$work/guia.lua"

echo "POST /api/v1/lines/check, 50 keep-alive connections, ${seconds}s (goal: >= 20000 req/s, p99 < 5 ms):"
wrk -t2 -c50 -d"${seconds}s" --latency -s "$work/line.lua" "${url}api/v1/lines/check" | grep -E "Requests/sec|  50%|  99%|Non-2xx|Socket errors"
echo "POST /api/v1/guias on SQLite, 50 keep-alive connections, ${seconds}s (goal: >= 1000 saved/s):"
before=$(python3 -c "import sqlite3,sys; print(sqlite3.connect(sys.argv[1]).execute('select count(*) from Tbl_Cab').fetchone()[0])" "$work/bench.db")
wrk -t2 -c50 -d"${seconds}s" --latency -s "$work/guia.lua" "${url}api/v1/guias" | grep -E "Requests/sec|  50%|  99%|Non-2xx|Socket errors"
after=$(python3 -c "import sqlite3,sys; print(sqlite3.connect(sys.argv[1]).execute('select count(*) from Tbl_Cab').fetchone()[0])" "$work/bench.db")
echo "Guias saved: $((after - before)) in ${seconds}s = $(( (after - before) / seconds ))/s"
