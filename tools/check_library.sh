#!/usr/bin/env bash
# check_library.sh SYSTEM LIBRARY FOLDER CXX_FLAGS: holds the names that a library exports, the libraries
# that it needs, and on Windows its resources, against what the .map and .rc files of its folder under src
# say: src/server for the library, src/filter for the evaluator.
set -u
system=$1 library=$2 folder=$3 flags=$4
map=$(echo "$folder"/*.map)
name=$(basename "$map" .map)
failures=0
fail() { printf '%s\n' "$*" >&2; failures=$((failures + 1)); }

# same WHAT EXPECTED ACTUAL: both are lists of lines.
same() {
  local difference
  difference=$(diff <(sort -u <<<"$2") <(sort -u <<<"$3") | grep '^[<>]')
  [ -z "$difference" ] || fail "$1 (<: missing, >: too much):" $'\n'"$difference"
}

check_linux() {
  local listed exported needed node standard
  node=$(awk '/[{]/ { print $1; exit }' "$map")
  listed=$(sed -n '/global:/,/local:/p' "$map" | sed 's://.*::; s:#.*::' | tr -d ' \t' |
    tr ';' '\n' | sed 's/^global://; /^local:/d; /^$/d')
  [ -n "$listed" ] || fail "$map lists no names"
  # Names in C are listed one by one; those of C++ (the published exception's type) by pattern.
  exported=$(nm -D --defined-only "$library" | awk '$2 != "A" { print $3 }')
  same "exported functions" "$(grep -v '[*"+{}]\|^_Z' <<<"$listed")" \
    "$(sed 's/@.*//' <<<"$exported" | grep -v '^_Z')"
  grep -v '16MyExceptionClass' <<<"$(grep '^_Z' <<<"$exported")" | grep . &&
    fail "the library exports these C++ names"
  grep -vF "@@$node" <<<"$exported" | grep . && fail "these names stand outside $node"
  # Sanitizer builds need more.
  case $flags in *-fsanitize*) return ;; esac
  needed=$(objdump -p "$library" | awk '$1 == "NEEDED" { print $2 }')
  standard='lib(stdc\+\+|gcc_s|c|m|pthread|dl)\.so\.[0-9]+|ld-linux.*'
  # Components have the library's runtime, and are found without a SONAME.
  [ "$name" = ovfile ] || standard+='|libovfile\.so\.[0-9]+'
  grep -vxE "$standard" <<<"$needed" | grep . &&
    fail "the library needs these libraries beside the standard ones"
  [ "$name" != ovfile ] || objdump -p "$library" | grep -q 'SONAME *libovfile\.so\.[0-9]*$' ||
    fail "no SONAME libovfile.so.N"
}

check_windows() {
  local exported needed
  exported=$(objdump -p "$library" |
    awk '/Ordinal\/Name Pointer/ { on = 1; next } on && !NF { exit } on { print $NF }')
  same "exported functions" \
    "$(printf '%s\n' DllCanUnloadNow DllGetClassObject DllRegisterServer DllUnregisterServer)" "$exported"
  needed=$(objdump -p "$library" | awk '/DLL Name:/ { print tolower($3) }')
  grep -vxE '(kernel32|user32|msvcrt|ole32|oleaut32|advapi32|ntdll|shell32)\.dll|api-ms-win-.*' <<<"$needed" |
    grep . && fail "the library needs these DLLs beside the system's"
  [ ! -e "$folder/$name.rc" ] || check_resources
}

# The resource folder's first level names the kinds: 6 is the string table, 16 the version information.
check_resources() {
  local dump
  dump=$(objdump -p "$library" | sed -n '/\.rsrc/,$p')
  grep -q 'Type Table' <<<"$dump" || { fail "the library has no resources"; return; }
  grep -q 'STRINGTABLE' "$folder/$name.rc" && ! grep -qE 'Entry: ID: 0x0*6,' <<<"$dump" &&
    fail "no string table in the library"
  grep -q 'VERSIONINFO' "$folder/$name.rc" && ! grep -qE 'Entry: ID: 0x0*10,' <<<"$dump" &&
    fail "no version information in the library"
  grep -q 'TYPELIB' "$folder/$name.rc" && ! grep -q 'TYPELIB' <<<"$dump" &&
    fail "no type library in the library"
}

case $system in
  Windows) check_windows ;;
  *) check_linux ;;
esac
exit $((failures > 0))
