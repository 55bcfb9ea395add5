#!/usr/bin/env bash
# Checks one example of docs/guide.md: the source shown after "<!-- example: NAME -->" is the
# file, and the output shown after it is what the built program prints.
# Usage: check_example.sh GUIDE NAME SOURCE PROGRAM
set -euo pipefail
guide=$1 name=$2 source=$3 program=$4

# The fenced block number $2 (1 the source, 2 the output) after the example's marker.
block() {
  awk -v marker="<!-- example: $name -->" -v wanted="$1" '
    $0 == marker { found = 1; next }
    found && /^```/ { if (inside) { if (++count == wanted) exit; inside = 0 } else inside = 1; next }
    found && inside && count + 1 == wanted { print }
  ' "$guide"
}

if ! diff -u <(block 1) "$source"; then
  echo "docs/guide.md shows another source for $name"
  exit 1
fi
if ! diff -u <(block 2) <("$program" | tr -d '\r'); then
  echo "$name prints something else than docs/guide.md shows"
  exit 1
fi
