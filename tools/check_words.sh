#!/usr/bin/env bash
# Fails on words that speak of how the work was planned or where it was done instead of the project.
# The brackets keep this file from finding itself.
cd "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")/.." || exit 1
words='\bPart [1-5]\.[1-7]\b|\bspec[.]md\b|\bspec[i]fication\b|\bdesign[.]md\b|\bdesign[ ]point\b'
words+='|\bissue #?[0-9]+\b|/wor[k]/|/far[m]/|/hom[e]/|/roo[t]/'
found=$(tools/own_files.sh | xargs -0 -r grep -nHIiE "$words" --)
[ -z "$found" ] || {
  echo "$found"
  exit 1
}
