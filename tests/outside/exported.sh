#!/bin/sh
# exported.sh LIBRARY: the classes and functions that a shared library shows have to be those in
# exported.txt; instances of the standard library's templates are nobody's.
here=$(dirname -- "$0")
nm -DC --defined-only "$1" | sed 's/[(<:].*//; s/.* //' | grep -vx -e std -e __gnu_cxx |
  LC_ALL=C sort -u | diff "$here/exported.txt" -
