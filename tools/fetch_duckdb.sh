#!/usr/bin/env bash
# fetch_duckdb.sh PROGRAM FOLDER: lets `PROGRAM setup sql` put DuckDB's library into a folder, unless a usable
# one is there. Where npm is installed it brings the package: it knows the registry that this user is to ask.
# Fails without a network.
set -eu
program=$(readlink -f "$1")
mkdir -p "$2"
folder=$(readlink -f "$2")

if version=$("$program" setup sql --try "$folder/libduckdb.so" 2>/dev/null); then
  echo "DuckDB $version is in $folder/libduckdb.so"
  exit 0
fi
if ! command -v npm >/dev/null; then
  exec "$program" setup sql --folder "$folder"
fi
packed=$(mktemp -d)
trap 'rm -rf "$packed"' EXIT
package=$("$program" setup sql --package)
(cd "$packed" && npm pack --silent --no-audit --no-update-notifier "$package" >/dev/null)
"$program" setup sql --folder "$folder" --from "$packed"/*.tgz
