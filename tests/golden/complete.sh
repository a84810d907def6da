#!/usr/bin/env bash
# Usage: complete.sh EXPORTS GOLDEN
# Every exported function and table has golden hashes, and nothing else has.
set -eu
listed=$(sed -nE 's/^(hook|function|data) //p' "$1" | sort)
hashed=$(sed -nE '/^#/d; s/\/.*//p' "$2" | sort -u)
diff <(echo "$listed") <(echo "$hashed") || { echo 'FAIL: exported (<) and hashed (>) names differ'; exit 1; }
