#!/usr/bin/env bash
# Fails on every source file that clang-format would change.
cd "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")/.." || exit 1
tools/own_files.sh | grep -zE '\.(h|cpp)$' | xargs -0 -r clang-format-14 --dry-run -Werror
