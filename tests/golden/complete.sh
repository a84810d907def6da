#!/usr/bin/env bash
# Usage: complete.sh EXPORTS GOLDEN CHANGELOG
# Every exported function and table has golden hashes, nothing else has, and the changelog knows these hashes: a changed
# result is told to the users or does not pass.
set -eu
listed=$(sed -nE 's/^(hook|function|data) //p' "$1" | sort)
hashed=$(sed -nE '/^#/d; s/\/.*//p' "$2" | sort -u)
diff <(echo "$listed") <(echo "$hashed") || { echo 'FAIL: exported (<) and hashed (>) names differ'; exit 1; }

digest=$(sha256sum "$2" | cut -c1-16)
newest=$(sed -nE '0,/^Golden hashes: `/s/^Golden hashes: `([0-9a-f]+)`.*/\1/p' "$3")
[ "$newest" = "$digest" ] || {
  echo "FAIL: the golden hashes have the digest $digest, the newest entry of $(basename "$3") says '$newest'."
  echo "Results changed? Say which and why in the changelog, with the line: Golden hashes: \`$digest\`"
  exit 1
}
