# Sourced by ./ovfile and ./check: the Debian packages that building and testing need.

command_packages=(g++ cmake curl ninja-build binutils libcli11-dev libfmt-dev libfast-float-dev nlohmann-json3-dev)
native_packages=("${command_packages[@]}" googletest libbenchmark-dev libsqlite3-dev)
check_packages=(python3 dpkg-dev pkg-config clang-14 libclang-rt-14-dev clang-format-14 clang-tidy-14 clang-tidy lld-14
  g++-mingw-w64-x86-64-posix g++-mingw-w64-i686-posix mingw-w64-tools libwine-dev wine wine64
  wine64-preloader)  # without it one start in some 10,000 ends with error 1359: its heap is where Windows has a page

python_packages=(python3-numpy python3-pandas python3-pytest python3-setuptools python3-wheel python3-pip
  python3-venv python3-dask python3-distributed python3-openpyxl)

missing_packages() {
  local package
  for package in "$@"; do
    dpkg-query -W -f '${db:Status-Status}\n' "$package" 2>/dev/null | grep -qx installed || echo "$package"
  done
}

# ensure_packages NAME...: installs what is missing when this user may; else names it and fails.
ensure_packages() {
  local missing log as_root=()
  if ! command -v dpkg-query >/dev/null; then
    echo "This is no Debian system: going on in the hope that these are there: $*" >&2
    return 0
  fi
  mapfile -t missing < <(missing_packages "$@")
  [ ${#missing[@]} -gt 0 ] || return 0
  if [ "$(id -u)" != 0 ]; then
    as_root=(sudo -n)
    if ! sudo -n true 2>/dev/null; then
      echo "Please install these packages first: apt-get install ${missing[*]}" >&2
      return 1
    fi
  fi
  echo "Installing ${missing[*]}" >&2
  log=$(mktemp)
  if ! { "${as_root[@]}" apt-get update &&
    "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
      apt-get install -y --no-install-recommends "${missing[@]}"; } >"$log" 2>&1 </dev/null; then
    tail -n 20 "$log" >&2
    rm -f "$log"
    echo "These packages could not be installed: ${missing[*]}" >&2
    return 1
  fi
  rm -f "$log"
}
