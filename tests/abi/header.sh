#!/usr/bin/env bash
# Usage: header.sh INCLUDE_DIR EXPORTS CC CXX
# The public header stands alone in every C and C++ that a caller may use, and declares exactly the exported names.
set -eu
include=$1 exports=$2 cc=$3 cxx=$4
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

listed=$(sed -nE 's/^(hook|function|data) //p' "$exports" | sort)
{
  echo '#include "quoFPAlg.h"'
  for name in $listed; do
    echo "extern const int declared_$name[sizeof(&$name) > 0 ? 1 : -1];"
  done
} > "$work/declared.c"
cp "$work/declared.c" "$work/declared.cpp"
for standard in c99 c11 c17; do
  "$cc" -std=$standard -pedantic -Wall -Wextra -Wundef -Wstrict-prototypes -Werror -I"$include" -fsyntax-only "$work/declared.c"
done
for standard in c++11 c++14 c++17 c++20; do
  "$cxx" -std=$standard -pedantic -Wall -Wextra -Wundef -Werror -I"$include" -fsyntax-only "$work/declared.cpp"
done

# The other way round: nothing is declared that the list lacks.
declared=$(sed -nE '/^#/d; s/^QUO_API [^;(]*[ *]([A-Za-z_][A-Za-z_0-9]*)[([].*/\1/p' "$include/quoFPAlg.h" | sort)
diff <(echo "$listed") <(echo "$declared") || { echo 'FAIL: listed (<) and declared (>) names differ'; exit 1; }
