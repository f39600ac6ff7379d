#!/bin/sh
# check.sh TOOL: what the tool says of each file NAME.conf in tests/check, status included and with
# the arguments in NAME.args, has to be what NAME.out holds. There has to be a file for each rule,
# named for it, that shows it, and the broken examples have to show all of them.
tool=$1
cd "$(dirname "$0")/check" || exit 1
failed=0
for file in *.conf; do
  args=$(cat "${file%.conf}.args" 2>/dev/null)
  { "$tool" $args "$file" 2>&1; echo "status $?"; } | diff -u "${file%.conf}.out" - || failed=1
done
"$tool" --rules | sed -n 's/^\([a-z-]*\) (.*/\1/p' | while read -r rule; do
  grep -q "\[$rule\]" "$rule.out" || { echo "$rule: no file shows it"; exit 1; }
  cat ../../examples/broken*.out | grep -q "\[$rule\]" || { echo "$rule: no example"; exit 1; }
done || failed=1
"$tool" - <long-line.conf 2>&1 | grep -q '^<stdin>:' || { echo "standard input"; failed=1; }
"$tool" long-line.conf >/dev/full 2>&1
[ $? -eq 2 ] || { echo "output that can't be written"; failed=1; }
exit $failed
