# shellcheck shell=sh disable=SC2034
# Sourced by the scripts.

# need WHAT:PACKAGE...: installs the Debian packages whose WHAT (a command, or the path of a file)
# is missing here, and says which on standard error. Does nothing when nothing is missing.
need() {
  _missing=
  for _item in "$@"; do
    _what=${_item%%:*}
    case $_what in
      /*) [ -e "$_what" ] || _missing="$_missing ${_item#*:}" ;;
      *) command -v "$_what" >/dev/null 2>&1 || _missing="$_missing ${_item#*:}" ;;
    esac
  done
  [ -n "$_missing" ] || return 0

  if ! command -v apt-get >/dev/null 2>&1; then
    echo "Missing here (Debian's names):$_missing" >&2
    return 1
  fi
  _sudo=
  if [ "$(id -u)" -ne 0 ]; then
    if ! command -v sudo >/dev/null 2>&1; then
      echo "Some packages are missing. Run this as root, then try again:" >&2
      echo "  apt-get update && apt-get install -y --no-install-recommends$_missing" >&2
      return 1
    fi
    _sudo=sudo
  fi
  echo "Installing:$_missing" >&2
  # shellcheck disable=SC2086 # both are lists of words
  $_sudo apt-get -qq update </dev/null >&2 &&
    $_sudo env DEBIAN_FRONTEND=noninteractive \
      apt-get -qq install -y --no-install-recommends $_missing </dev/null >&2
}

# need_build WHAT:PACKAGE...: the same, with what every build takes.
need_build() {
  need g++:g++ make:make cmake:cmake /usr/include/expat.h:libexpat1-dev "$@"
}

# quietly LOG COMMAND...: runs the command with its output in LOG, shown only when it fails.
quietly() {
  _log=$1
  shift
  "$@" >"$_log" 2>&1 </dev/null || {
    cat "$_log" >&2
    return 1
  }
}

jobs=$(nproc 2>/dev/null || echo 2)
