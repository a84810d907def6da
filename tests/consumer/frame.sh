#!/usr/bin/env bash
# Usage: frame.sh FILE
# Writes a PGM frame of 160 x 160 pixels: ridges of 16 pixels on a flat, bright background.
set -eu
repeat() { for ((i = 0; i < $2; i++)); do printf "$1"; done; }
bright=$(repeat '\\346' 160)
margin=$(repeat '\\346' 20)
ridges=$(for ((ridge = 0; ridge < 15; ridge++)); do repeat "$([ $((ridge % 2)) = 0 ] && echo '\\132' || echo '\\226')" 8; done)
{
  printf 'P5\n160 160\n255\n'
  repeat "$bright" 20
  repeat "$margin$ridges$margin" 120
  repeat "$bright" 20
} > "$1"
