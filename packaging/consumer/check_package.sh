#!/usr/bin/env bash
# check_package.sh CMAKE BUILD COMPILER: makes the Debian package of a build, unpacks it into a folder,
# builds a project against it both ways, and tries the command from there.
set -euo pipefail
cmake=$1 build=$2 compiler=$3
sources=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

fail() {
  echo "$*" >&2
  exit 1
}

(cd "$build" && "$(dirname "$cmake")/cpack" -G DEB -B "$scratch/made") >"$scratch/cpack.log" 2>&1 || {
  cat "$scratch/cpack.log"
  fail "the package could not be made"
}
package=$(echo "$scratch"/made/libovfile_*.deb)
dpkg-deb --field "$package" Depends | grep -q libstdc++ || fail "the package names no dependencies"
dpkg-deb --extract "$package" "$scratch/unpacked"
root=$scratch/unpacked/usr

for file in bin/ovfile lib/libovfile.so lib/libovfilter.so lib/ovfile-components.reg include/ovfile/ovfile.h \
  lib/pkgconfig/ovfile.pc share/man/man1/ovfile.1 share/bash-completion/completions/ovfile; do
  [ -e "$root/$file" ] || fail "the package has no $file"
done
"$root/bin/ovfile" --version >/dev/null || fail "the packaged command does not run"
while read -r command; do
  grep -q "^\.B $command$" "$root/share/man/man1/ovfile.1" || fail "the manual page does not know $command"
done < <("$root/bin/ovfile" --help | sed -n '/^Subcommands:/,/^$/s/^  \([a-z][a-z-]*\).*/\1/p')

"$cmake" -S "$sources" -B "$scratch/consumer" -DCMAKE_CXX_COMPILER="$compiler" \
  -DCMAKE_PREFIX_PATH="$root" >"$scratch/configure.log" 2>&1 || { cat "$scratch/configure.log"; fail "find_package failed"; }
"$cmake" --build "$scratch/consumer" >"$scratch/build.log" 2>&1 || { cat "$scratch/build.log"; fail "the consumer does not build"; }
answer=$("$scratch/consumer/consumer" "$scratch/points.ovt")
[ "$answer" = "12.5 1" ] || fail "the consumer says: $answer"

if command -v pkg-config >/dev/null; then
  # shellcheck disable=SC2046
  "$compiler" "$sources/main.cpp" -o "$scratch/linked" \
    $(PKG_CONFIG_PATH=$root/lib/pkgconfig pkg-config --cflags --libs ovfile)
  answer=$(LD_LIBRARY_PATH=$root/lib "$scratch/linked" "$scratch/points.ovt")
  [ "$answer" = "12.5 1" ] || fail "the program made with pkg-config says: $answer"
fi
