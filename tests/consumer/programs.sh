#!/usr/bin/env bash
# Usage: programs.sh FOLDER LIBRARY
# Runs the three example programs of a folder on a frame and looks at what they say.
set -eu
folder=$1 library=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
expect() { # TEXT COMMAND...
  local said
  said=$("${@:2}")
  [ "$said" = "$1" ] || { echo "FAIL: ${*:2} says '$said', not '$1'"; exit 1; }
}
"$(dirname "$0")/frame.sh" "$work/frame.pgm"
expect 'coverage 64 %, quality 88' "$folder/clean_frame" "$work/frame.pgm" "$work/cleaned.pgm"
[ "$(wc -c < "$work/cleaned.pgm")" = 25615 ]
expect 'templates of 276 and 64 bytes, score 83' "$folder/match" "$work/cleaned.pgm" "$work/frame.pgm"
expect 'version 75, signal 86, noise 8, ratio 127' "$folder/load" "$library" "$work/frame.pgm"
