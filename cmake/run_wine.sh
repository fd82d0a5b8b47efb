#!/usr/bin/env bash
# run_wine.sh PREFIX PROGRAM [ARGUMENT...]: runs a Windows program under Wine with a prefix of its own.
# Safe to call many times at once: the first caller makes the prefix and starts its server, the others
# wait for that. The server leaves by itself a minute after its last program.
set -eu
export WINEPREFIX=$1
shift
export WINEDEBUG=-all WINEARCH=win64
# Without the two last names each start waits for background processes that hold our output.
export WINEDLLOVERRIDES='mscoree,mshtml,explorer.exe,winedbg.exe='
unset DISPLAY WAYLAND_DISPLAY
# Wine keeps the socket of its server there: every caller must look in the same place.
unset TMPDIR

mkdir -p "$WINEPREFIX"
if ! { [ -e "$WINEPREFIX/ready" ] && wineserver -k0 2>/dev/null; }; then
  exec 9>"$WINEPREFIX/lock"
  flock 9
  if ! { [ -e "$WINEPREFIX/ready" ] && wineserver -k0 2>/dev/null; }; then
    wineserver -p60 9>&- >/dev/null 2>&1 </dev/null || true
    wineboot 9>&- >/dev/null 2>&1 </dev/null || {
      echo "run_wine.sh: wineboot fails with $?" >&2
      exit 1
    }
    touch "$WINEPREFIX/ready"
  fi
  exec 9>&-
fi

# Programs read folders as Windows names them.
case ${OVFILE_SHARED:-} in
  /*) export OVFILE_SHARED="Z:$OVFILE_SHARED" ;;
esac
case ${OVFILE_DUCKDB_WINDOWS:-} in
  /*) export OVFILE_DUCKDB="Z:$OVFILE_DUCKDB_WINDOWS" ;;
  *) unset OVFILE_DUCKDB ;;
esac

exec wine "$@"
