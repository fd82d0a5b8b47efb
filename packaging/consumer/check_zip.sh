#!/usr/bin/env bash
# check_zip.sh CMAKE BUILD TOOLCHAIN EMULATOR...: makes the zip of a Windows build, unpacks it into a folder,
# runs the command from there, and builds and runs a project against it.
set -euo pipefail
cmake=$1 build=$2 toolchain=$3
shift 3
sources=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

fail() {
  echo "$*" >&2
  exit 1
}
# run FOLDER PROGRAM [ARGUMENT...]: under the emulator, lines without carriage returns.
run() {
  local folder=$1
  shift
  (cd "$folder" && "${emulator[@]}" "$@") | tr -d '\r'
}
emulator=("$@")

(cd "$build" && "$(dirname "$cmake")/cpack" -G ZIP -B "$scratch/made") >"$scratch/cpack.log" 2>&1 || {
  cat "$scratch/cpack.log"
  fail "the package could not be made"
}
(cd "$scratch" && "$cmake" -E tar xf "$scratch"/made/ovfile-*.zip)
root=$(echo "$scratch"/ovfile-*-windows-*)

for file in bin/{ovfile.exe,OvFile.dll,OvFilter.dll} include/ovfile/{ovfile.h,smart.h} lib/libOvFile.dll.a \
  lib/cmake/OvFile/OvFileConfig.cmake type_library/{OvFileLib.tlb,OvFileLib.h} LICENSE.txt HOWTO-windows.txt \
  docs/{command.md,filters.md,hosts.md} docs/examples/{load_library_windows.cpp,make_table.vbs}; do
  [ -s "$root/$file" ] || fail "the package has no $file"
done
# What the short manual speaks of is there, the 32-bit modules only where they were built too.
for path in $(sed -n 's/^\([a-zA-Z0-9_]*\\[a-zA-Z0-9_.\\]*\) .*/\1/p' "$root/HOWTO-windows.txt"); do
  [[ -e "$root/${path//\\//}" || $path = bin32* ]] || fail "HOWTO-windows.txt speaks of $path"
done

modules=$(sed -n 's/^OVFILE_32_BIT_FOLDER:PATH=//p' "$build/CMakeCache.txt")
if [ -n "$modules" ] && [ -e "$modules/OvFile.dll" ]; then
  for file in OvFile.dll OvFilter.dll; do
    objdump -f "$root/bin32/$file" | grep -q 'pei-i386' || fail "bin32/$file is not for 32 bits"
  done
fi

[ "$(run "$root/bin" ovfile.exe --version)" ] || fail "the packaged command does not run"
run "$root/bin" ovfile.exe new made.ovt --template points >/dev/null || fail "the packaged command makes no table"
run "$root/bin" ovfile.exe info made.ovt | grep -q XPT || fail "the packaged command does not read its table"

"$cmake" -S "$sources" -B "$scratch/consumer" -DCMAKE_TOOLCHAIN_FILE="$toolchain" \
  -DOvFile_DIR="$root/lib/cmake/OvFile" >"$scratch/configure.log" 2>&1 || { cat "$scratch/configure.log"; fail "find_package failed"; }
"$cmake" --build "$scratch/consumer" >"$scratch/build.log" 2>&1 || { cat "$scratch/build.log"; fail "the consumer does not build"; }
cp "$root/bin/OvFile.dll" "$scratch/consumer"
answer=$(run "$scratch/consumer" consumer.exe points.ovt) || fail "the consumer fails"
[ "$answer" = "12.5 0" ] || fail "the consumer says: $answer"
