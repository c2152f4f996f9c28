#!/bin/sh
# The tour of nxhost: serves the lists of the package iso-codes on the loopback and runs tour.lua on them.
# usage: tour.sh   (finds nxhost on PATH)
set -eu
here=$(cd "$(dirname "$0")" && pwd)
lists=/usr/share/iso-codes/json
log=$(mktemp)
python3 -u -m http.server 0 --bind 127.0.0.1 --directory "$lists" >"$log" 2>&1 &
server=$!
trap 'kill $server; rm -f "$log"' EXIT
port=
while [ -z "$port" ]; do
    kill -0 $server || { cat "$log" >&2; exit 1; }
    sleep 0.1
    port=$(sed -n 's/^Serving HTTP on .* port \([0-9]*\) .*/\1/p' "$log")
done
nxhost --cache 64K "$here/tour.lua" "http://127.0.0.1:$port" "$lists"
