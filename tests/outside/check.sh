#!/bin/sh
# Uses an installed tree as a stranger would: runs the tool, builds an example by CMake and by
# pkg-config, and compiles each header alone. A shared library has to show what is public, no more.
#   check.sh PREFIX WORKDIR
set -eu
here=$(cd "$(dirname "$0")" && pwd)
examples=$here/../../examples
prefix=$(cd "$1" && pwd)
rm -rf "$2"
mkdir -p "$2"
work=$(cd "$2" && pwd)
PKG_CONFIG_PATH=$(dirname "$(find "$prefix" -name ZmApi.pc)")
LD_LIBRARY_PATH=$(dirname "$PKG_CONFIG_PATH")
export PKG_CONFIG_PATH

"$prefix/bin/zmconfigfile" "$examples/farm.conf" | cmp - "$examples/farm.out"

try() {  # the program, built somehow
  LD_LIBRARY_PATH=$LD_LIBRARY_PATH "$@" "$examples/farm.conf" | cmp - "$examples/threads.out"
}

cmake -S "$here" -B "$work/cmake" -DCMAKE_PREFIX_PATH="$prefix" >"$work/cmake.log"
cmake --build "$work/cmake" >>"$work/cmake.log"
try "$work/cmake/outside"

for static in "" --static; do
  # shellcheck disable=SC2046,SC2086 # lists of words
  g++ -std=c++20 -o "$work/outside" "$examples/threads.cpp" \
    $(pkg-config --cflags --libs $static ZmApi)
  try "$work/outside"
done

for library in "$LD_LIBRARY_PATH"/libZmApi.so; do
  [ ! -e "$library" ] || "$here/exported.sh" "$library"
done

for header in "$prefix"/include/torvel/*.h; do
  echo "#include <torvel/$(basename "$header")>" >"$work/header.cpp"
  g++ -std=c++20 -fsyntax-only -I "$prefix/include" "$work/header.cpp"
done
echo "$prefix: the tool, CMake, pkg-config and each header work"
