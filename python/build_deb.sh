#!/usr/bin/env bash
# Makes the Debian package python3-ovfile, which uses the installed library (package libovfile):
#   python/build_deb.sh OUTPUT_FOLDER
# Needs dpkg-dev and Debian's python3-setuptools, python3-wheel and python3-pip.
set -eu
if [ $# != 1 ]; then
  sed -n '2,4s/^# *//p' "$0"
  exit 2
fi
source=$(dirname "$(readlink -f "$0")")
mkdir -p "$1"
output=$(readlink -f "$1")
python=${PYTHON:-/usr/bin/python3}
version=$(sed -n 's/^__version__ = "\(.*\)"$/\1/p' "$source/ovfile/_version.py")

stage=$(mktemp -d)
trap 'rm -rf "$stage"' EXIT
mkdir -p "$stage/source/ovfile" "$stage/tree/DEBIAN"
cp "$source"/pyproject.toml "$source"/setup.py "$stage/source"
cp "$source"/ovfile/*.py "$source"/ovfile/py.typed "$stage/source/ovfile"
packages="$stage/tree/usr/lib/python3/dist-packages"
(cd "$stage/source" && "$python" -m pip install --quiet --no-build-isolation --no-index --no-deps \
  --disable-pip-version-check --root-user-action=ignore --no-compile --target "$packages" .)
rm -rf "$packages"/ovfile-*.dist-info/{RECORD,direct_url.json,INSTALLER,REQUESTED}
install -D -m 644 "$source/../LICENSE" "$stage/tree/usr/share/doc/python3-ovfile/copyright"
size=$(du -sk "$stage/tree/usr" | cut -f1)
cat >"$stage/tree/DEBIAN/control" <<CONTROL
Package: python3-ovfile
Version: $version
Architecture: all
Section: python
Priority: optional
Maintainer: OvFile <ovfile@localhost>
Installed-Size: $size
Depends: python3 (>= 3.9), python3-numpy, libovfile (>= $version)
Recommends: python3-pandas
Suggests: python3-dask, python3-distributed
Description: Table files of mines as numpy arrays and data frames
 Opens, reads, makes and changes the table files in which mines keep drillholes,
 block models, wireframes and estimates: whole columns as numpy arrays, tables as
 pandas data frames, rows chosen by conditions.
CONTROL
cat >"$stage/tree/DEBIAN/postinst" <<'SCRIPT'
#!/bin/sh
set -e
if [ "$1" = configure ] && command -v py3compile >/dev/null; then
  py3compile -p python3-ovfile
fi
SCRIPT
cat >"$stage/tree/DEBIAN/prerm" <<'SCRIPT'
#!/bin/sh
set -e
if command -v py3clean >/dev/null; then
  py3clean -p python3-ovfile
fi
SCRIPT
chmod -R u+rwX,go+rX,go-w "$stage/tree"
chmod 755 "$stage/tree/DEBIAN/postinst" "$stage/tree/DEBIAN/prerm"
dpkg-deb --root-owner-group --build "$stage/tree" "$output/python3-ovfile_${version}_all.deb"
