#!/usr/bin/env bash
# fetch_duckdb_windows.sh FOLDER: puts DuckDB's library for Windows into a folder, unless it is there, for tests
# under Wine, which has no curl and no tar. The package is the one that the command for Windows would fetch. Needs
# npm and a network.
set -eu
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
mkdir -p "$1"
folder=$(readlink -f "$1")
mapfile -t facts < <(grep -o '"[^"]*"' "$root/src/command/duckdb/duckdb_package_windows.cpp" | tr -d '"' | grep -v '\.h$')
name=${facts[0]} version=${facts[1]} digest=${facts[2]} member=${facts[3]}
if [ "$(cat "$folder/digest" 2>/dev/null)" = "$digest" ]; then
  echo "DuckDB of $name@$version is in $folder"
  exit 0
fi
packed=$(mktemp -d)
trap 'rm -rf "$packed"' EXIT
(cd "$packed" && npm pack --silent --no-audit --no-update-notifier "$name@$version" >/dev/null)
found="sha512-$(sha512sum "$packed"/*.tgz | cut -c 1-128 | tr a-f A-F | basenc --base16 -d | base64 -w 0)"
if [ "$found" != "$digest" ]; then
  echo "the package $name@$version has another digest" >&2
  exit 1
fi
tar -xzf "$packed"/*.tgz -C "$folder" --strip-components=1 "$member"
echo "$digest" >"$folder/digest"
echo "DuckDB of $name@$version is in $folder"
