#!/usr/bin/env bash
# run.sh [FOLDER]: runs every benchmark of a build (default: build/release) and repeats at the end the
# lines that count. OVFILE_BENCH_ROWS=100000 makes it a quick look; TMPDIR says where the tables go
# (10 million rows take about 2.5 GB there).
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
programs=${1:-$root/build/release}/bin

log=$(mktemp)
trap 'rm -f "$log"' EXIT
status=0
for name in opening memory walk append scattered filter ranges sort sign stream; do
  program=$programs/bench_$name
  if [ ! -x "$program" ]; then
    echo "bench: $program is not there; build the preset \`release\` first" >&2
    exit 1
  fi
  "$program" | tee -a "$log" || status=1
done

echo
echo "Summary"
grep -E 'ratio|target' "$log" || true
exit $status
