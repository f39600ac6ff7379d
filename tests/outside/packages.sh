#!/bin/sh
# Makes the Debian packages twice, in two directories, and wants the same bytes; then has lintian
# look at them and uses what they install.
#   packages.sh WORKDIR
set -eu
here=$(cd "$(dirname "$0")" && pwd)
top=$(cd "$here/../.." && pwd)
rm -rf "$1"
mkdir -p "$1/root" "$1/a/longer/way/to/the/same/tree"
work=$(cd "$1" && pwd)
copy=$work/a/longer/way/to/the/same/tree

"$top/scripts/package"
(cd "$top" && git ls-files -co --exclude-standard -z | xargs -0 cp --parents -t "$copy")
"$copy/scripts/package"
for made in "$top"/build/package/*.deb "$top"/build/package/src/api/libZmApi.a \
  "$top"/build/package/src/sbin/zmconfigfile; do
  cmp "$made" "$copy${made#"$top"}"
done

ls "$top"/build/package/libzmapi-doc_*.deb  # made only where Doxygen and dot are
lintian --fail-on error,warning --allow-root "$top"/build/package/*.deb
for package in "$top"/build/package/*.deb; do
  dpkg-deb -x "$package" "$work/root"
done
"$here/check.sh" "$work/root/usr" "$work/outside"
