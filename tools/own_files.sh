#!/usr/bin/env bash
# own_files.sh: the project's files, each ended by a NUL: what is tracked or would be. Outside a
# repository (an unpacked archive) everything but the build folder.
cd "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")/.." || exit 1
if [ "$(git rev-parse --show-toplevel 2>/dev/null)" = "$PWD" ]; then
  git ls-files -z --cached --others --exclude-standard |
    while IFS= read -r -d '' file; do [ ! -e "$file" ] || printf '%s\0' "$file"; done
else
  find . -path ./build -prune -o -path ./.git -prune -o -type f -printf '%P\0'
fi
