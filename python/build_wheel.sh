#!/usr/bin/env bash
# Makes a wheel of the package that carries the library, so that nothing else has to be installed:
#   python/build_wheel.sh LIBRARY_FOLDER OUTPUT_FOLDER
# LIBRARY_FOLDER holds libovfile.so, libovfilter.so and ovfile-components.reg, or OvFile.dll and
# OvFilter.dll for a wheel for 64-bit Windows, which is made on Linux as well. Needs Debian's
# python3-setuptools, python3-wheel and python3-pip, and no network. PYTHON names another interpreter.
set -eu
if [ $# != 2 ]; then
  sed -n '2,6s/^# *//p' "$0"
  exit 2
fi
source=$(dirname "$(readlink -f "$0")")
libraries=$(readlink -f "$1")
mkdir -p "$2"
output=$(readlink -f "$2")
python=${PYTHON:-/usr/bin/python3}
platform=()
if [ -e "$libraries/OvFile.dll" ]; then
  files=(OvFile.dll OvFilter.dll)
  platform=(--config-settings "--build-option=--plat-name=win_amd64")
else
  files=(libovfile.so libovfilter.so ovfile-components.reg)
fi
for file in "${files[@]}"; do
  [ -e "$libraries/$file" ] || {
    echo "$libraries has no $file" >&2
    exit 1
  }
done

stage=$(mktemp -d)
trap 'rm -rf "$stage"' EXIT
mkdir -p "$stage/ovfile/lib"
cp "$source"/pyproject.toml "$source"/setup.py "$source"/../LICENSE "$stage"
cp "$source"/ovfile/*.py "$source"/ovfile/py.typed "$stage/ovfile"
for file in "${files[@]}"; do
  # Through links, which a wheel cannot hold.
  cp -L "$libraries/$file" "$stage/ovfile/lib/$file"
  case $file in
    *.so) strip --strip-unneeded "$stage/ovfile/lib/$file" ;;
  esac
done
cd "$stage"
"$python" -m pip wheel --quiet --no-build-isolation --no-index --no-deps --disable-pip-version-check \
  "${platform[@]}" --wheel-dir "$output" .
