#!/usr/bin/env bash
# check_completion.sh FILE COMMAND: loads the completion of a command and asks it what it would offer.
set -uo pipefail
PATH=$(dirname "$2"):$PATH
# shellcheck disable=SC1090
source "$1"
failures=0
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
touch "$scratch/assays.ovt" "$scratch/two words.ovt"
cd "$scratch" || exit 1
# Outside an interactive line there is nothing to set options for.
compopt() { :; }

# offers EXPECTED WORD...: what is offered for the last word, parted by bars, sorted.
offers() {
  local expected=$1 offered
  shift
  COMP_WORDS=("$@") COMP_CWORD=$(($# - 1)) COMPREPLY=()
  _ovfile
  offered=$(printf '%s\n' "${COMPREPLY[@]}" | sort | paste -sd '|')
  [ "$offered" = "$expected" ] && return
  echo "for '$*' it offers '$offered' in place of '$expected'" >&2
  failures=$((failures + 1))
}

[ "$(complete -p ovfile)" = "complete -F _ovfile ovfile" ] || failures=1
offers "schema|set|settings|setup|sign|sort|sql|stats" ovfile s
offers "export" ovfile ex
offers "--version" ovfile --v
offers "--descending" ovfile sort assays.ovt --desc
offers "--json" ovfile info --j
offers "assays.ovt" ovfile info as
offers "assays.ovt|two words.ovt" ovfile info ""
offers "" ovfile info nothing-of-that-name
exit $((failures > 0))
