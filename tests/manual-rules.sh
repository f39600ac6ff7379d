#!/bin/sh
# manual-rules.sh TOOL PAGE: the rules in the manual page have to be those of the tool. Without PAGE
# it prints what has to stand there.
rules() {
  "$1" --rules | awk '
    { gsub(/\\/, "\\e"); text = $0; sub(/^ */, "", text); sub(/^[.\x27]/, "\\\\&&", text) }
    /^        / {
      if (!shown) print ".Bd -literal -offset indent -compact"
      shown = 1
      print text
      next
    }
    shown { print ".Ed"; shown = 0 }
    /^[a-z]/ { gsub(/[()]/, ""); print ".It Sy " $1 " Pq " $2; next }
    { print text }'
}

[ $# -gt 1 ] || { rules "$1"; exit; }
made=$(mktemp) || exit 1
trap 'rm -f "$made"' EXIT
rules "$1" >"$made"
sed -n '/^\.\\" rules$/,/^\.\\" end$/{/^\.\\"/!p}' "$2" | diff -u "$made" -
