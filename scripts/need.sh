# shellcheck shell=sh disable=SC2034,SC2154
# Sourced by the scripts, which set $root: installs packages, chooses and configures build
# directories.

jobs=$(nproc 2>/dev/null || echo 2)

# missing WHAT:PACKAGE...: the packages whose WHAT (a command, or the path of a file) is missing.
missing() {
  _missing=
  for _item in "$@"; do
    _what=${_item%%:*}
    case $_what in
      /*) [ -e "$_what" ] || _missing="$_missing ${_item#*:}" ;;
      *) command -v "$_what" >/dev/null 2>&1 || _missing="$_missing ${_item#*:}" ;;
    esac
  done
  printf %s "$_missing"
}

# need WHAT:PACKAGE...: installs what is missing with apt-get, as root or by sudo, and says so on
# standard error. Where that can't be done it shows the command for somebody who may.
need() {
  _missing=$(missing "$@")
  [ -n "$_missing" ] || return 0
  if ! command -v apt-get >/dev/null 2>&1; then
    echo "Missing here (Debian's names):$_missing" >&2
    return 1
  fi
  _sudo=
  [ "$(id -u)" -eq 0 ] || _sudo=sudo
  if [ -z "$_sudo" ] || command -v sudo >/dev/null 2>&1; then
    echo "Installing:$_missing" >&2
    _said=$($_sudo sh -c "apt-get -qq update; export DEBIAN_FRONTEND=noninteractive
      apt-get -qq install -y --no-install-recommends $_missing" </dev/null 2>&1) && return 0
    [ -z "$_said" ] || printf '%s\n' "$_said" >&2
  fi
  echo "Some packages are missing. Run this as root, then try again:" >&2
  echo "  apt-get update && apt-get install -y --no-install-recommends$_missing" >&2
  return 1
}

# need_build WHAT:PACKAGE...: what every build takes, and the arguments. When any of it is missing,
# all that the other scripts take is installed too, so that an administrator is asked once.
need_build() {
  set -- g++:g++ make:make cmake:cmake /usr/include/expat.h:libexpat1-dev \
    /usr/include/nlohmann/json.hpp:nlohmann-json3-dev "$@"
  [ -n "$(missing "$@")" ] || return 0
  for _item in /usr/include/gtest/gtest.h:libgtest-dev gzip:gzip dpkg-shlibdeps:dpkg-dev \
    file:file strip:binutils; do
    case " $* " in *" $_item "*) ;; *) set -- "$@" "$_item" ;; esac
  done
  need "$@"
}

# quietly LOG COMMAND...: runs the command with its output in LOG. When it fails, the last lines are
# shown, but for those that tell the progress.
quietly() {
  _log=$1
  shift
  "$@" >"$_log" 2>&1 </dev/null && return 0
  grep -v '^\[ *[0-9]*%\]' "$_log" | tail -n 60 >&2
  echo "Failed: $* (all it said: $_log)" >&2
  return 1
}

# build_directory PRESET: sets $out, and makes the directory: $ZM_BUILD_DIR/PRESET, else
# build/PRESET in this tree, or in the user's cache when the tree can't be written.
build_directory() {
  if [ -n "${ZM_BUILD_DIR:-}" ]; then
    mkdir -p "$ZM_BUILD_DIR"
    out=$(readlink -f -- "$ZM_BUILD_DIR")/$1
  elif mkdir -p "$root/build/$1" 2>/dev/null && [ -w "$root/build/$1" ]; then
    out=$root/build/$1
  else
    _tree=$(basename "$root")-$(printf %s "$root" | cksum | cut -d ' ' -f 1)
    out=${XDG_CACHE_HOME:-${HOME:?can\'t be guessed, set ZM_BUILD_DIR}/.cache}/torvel/$_tree/$1
    [ -d "$out" ] || echo "Can't write to $root/build: building in $out" >&2
  fi
  mkdir -p "$out"
}

# configure PRESET: sets $out and configures the preset there, afresh if the tree or the build
# directory was moved or copied: what CMake keeps are paths of the old place.
configure() {
  build_directory "$1"
  if [ -f "$out/CMakeCache.txt" ] &&
    ! { grep -qxF "CMAKE_HOME_DIRECTORY:INTERNAL=$root" "$out/CMakeCache.txt" &&
      grep -qxF "CMAKE_CACHEFILE_DIR:INTERNAL=$out" "$out/CMakeCache.txt"; }; then
    echo "Configured for another place: building afresh in $out" >&2
    rm -rf "$out"
    mkdir -p "$out"
  fi
  quietly "$out/configure.log" cmake -S "$root" --preset "$1" -B "$out"
}

# build TARGET: in $out.
build() {
  quietly "$out/build.log" cmake --build "$out" -j "$jobs" --target "$1"
}
