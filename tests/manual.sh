#!/bin/sh
# manual.sh TOOL PAGE...: the examples in manual pages. Each display after a line `.\" file` is read
# by the tool, which has to print what the display after the next line `.\" prints` shows.
tool=$1
shift
dir=$(mktemp -d) || exit 1
trap 'rm -rf "$dir"' EXIT

# Displays as files: 1.conf, 1.out, 2.conf, ...
awk -v dir="$dir" '
  /^\.\\" file$/ { to = dir "/" ++n ".conf" }
  /^\.\\" prints$/ { to = dir "/" n ".out" }
  /^\.Ed$/ && shown { close(to); to = ""; shown = 0 }
  shown {
    gsub(/\\ /, " "); gsub(/\\&/, ""); gsub(/\\e/, "\\")
    print > to
  }
  /^\.Bd -literal/ && to { shown = 1 }' "$@"

[ -f "$dir/1.conf" ] || { echo "no examples found"; exit 1; }
failed=0
for file in "$dir"/*.conf; do
  "$tool" "$file" 2>&1 | diff -u "${file%.conf}.out" - || { cat "$file"; failed=1; }
done
exit $failed
