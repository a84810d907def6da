#!/usr/bin/env bash
# Usage: run-c-blocks.sh MARKDOWN INCLUDE_DIR LIBRARY CC
# Compiles and runs every C block of a page that has a main function; each must exit with 0.
set -eu
page=$1 include=$2 library=$3 cc=$4
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
awk -v out="$work/block" '/^```c$/ {n++; inside = 1; next} /^```/ {inside = 0} inside {print > (out n ".c")}' "$page"
count=0
for source in "$work"/block*.c; do
  grep -q 'int main' "$source" || continue
  "$cc" -std=c11 -Wall -Wextra -Werror -I"$include" "$source" "$library" -Wl,-rpath,"$(dirname "$library")" -o "$work/program"
  (cd "$work" && ./program)
  count=$((count + 1))
done
[ "$count" -gt 0 ] || { echo "no program found in $page"; exit 1; }
