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
  lib/pkgconfig/ovfile.pc share/man/man1/ovfile.1 share/bash-completion/completions/ovfile \
  share/doc/libovfile/{copyright,CHANGELOG.md,command.md,filters.md,hosts.md,examples/read_column.cpp}; do
  [ -e "$root/$file" ] || fail "the package has no $file"
done
[ "$(ls "$root/share/doc")" = libovfile ] || fail "documentation lies elsewhere too: $(ls "$root/share/doc")"
grep -q '^\.IR share/doc/libovfile \.$' "$root/share/man/man1/ovfile.1" ||
  fail "the manual page does not say where the documentation lies"
grep -n "/usr" "$root/share/man/man1/ovfile.1" "$root/lib/pkgconfig/ovfile.pc" &&
  fail "the package knows where it was built for"
"$root/bin/ovfile" --version >/dev/null || fail "the packaged command does not run"
"$sources/check_completion.sh" "$root/share/bash-completion/completions/ovfile" "$root/bin/ovfile" ||
  fail "the completion does not complete"
while read -r command; do
  grep -q "^\.B $command$" "$root/share/man/man1/ovfile.1" || fail "the manual page does not know $command"
done < <("$root/bin/ovfile" --help | sed -n '/^Subcommands:/,/^$/s/^  \([a-z][a-z-]*\).*/\1/p')

"$cmake" -S "$sources" -B "$scratch/consumer" -DCMAKE_CXX_COMPILER="$compiler" \
  -DCMAKE_PREFIX_PATH="$root" >"$scratch/configure.log" 2>&1 || { cat "$scratch/configure.log"; fail "find_package failed"; }
"$cmake" --build "$scratch/consumer" >"$scratch/build.log" 2>&1 || { cat "$scratch/build.log"; fail "the consumer does not build"; }
answer=$("$scratch/consumer/consumer" "$scratch/points.ovt" "XPT > 12")
[ "$answer" = "12.5 1" ] || fail "the consumer says: $answer"

# made_with_pkg_config LIBDIR: builds and runs the consumer by what LIBDIR/pkgconfig says.
made_with_pkg_config() {
  # shellcheck disable=SC2046
  "$compiler" "$sources/main.cpp" -o "$scratch/linked" \
    $(PKG_CONFIG_PATH=$1/pkgconfig pkg-config --cflags --libs ovfile) || fail "$1: pkg-config misleads"
  answer=$(LD_LIBRARY_PATH=$1 "$scratch/linked" "$scratch/points.ovt" "XPT > 12")
  [ "$answer" = "12.5 1" ] || fail "$1: the program made with pkg-config says: $answer"
  # Its prefix is the package's, whatever the library folder is called.
  [ "$(readlink -f "$(PKG_CONFIG_PATH=$1/pkgconfig pkg-config --variable=prefix ovfile)")" = "$root" ] ||
    fail "$1: pkg-config gives another prefix"
}

if command -v pkg-config >/dev/null; then
  made_with_pkg_config "$root/lib"
  # Debian's own library folder is two steps below the prefix. What is described there is put there.
  "$cmake" -S "$sources/../.." -B "$scratch/second" -DCMAKE_INSTALL_PREFIX=/usr -DOVFILE_TESTS=OFF \
    -DCMAKE_CXX_COMPILER="$compiler" >"$scratch/second.log" 2>&1 || { cat "$scratch/second.log"; fail "no second build"; }
  folder=$(sed -n 's/^CMAKE_INSTALL_LIBDIR:PATH=//p' "$scratch/second/CMakeCache.txt")
  [[ $folder = lib/* ]] || fail "the library folder of a system package is $folder"
  mkdir -p "$root/$folder"
  mv "$root"/lib/{libov*,ovfile-components.reg} "$root/$folder"
  mkdir "$root/$folder/pkgconfig"
  cp "$scratch/second/ovfile.pc" "$root/$folder/pkgconfig"
  made_with_pkg_config "$root/$folder"
fi
