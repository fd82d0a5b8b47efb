#!/usr/bin/env bash
# link_with_lld.sh COMPILER ARGUMENT...: links a program as g++ for Windows would, but by LLVM's linker. That of GNU
# takes a time that grows with the square of the inline functions of a source: half a minute for a test program.
set -eu
line=$("$@" '-###' 2>&1 | grep -F /collect2 | tail -n 1)
eval "words=($line)" # g++ quotes them for a shell
arguments=()
for word in "${words[@]:1}"; do
  case $word in
    -plugin | -plugin-opt=* | */liblto_plugin.so) ;; # GNU's own
    *) arguments+=("$word") ;;
  esac
done
exec ld.lld-14 "${arguments[@]}"
