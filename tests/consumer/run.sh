#!/usr/bin/env bash
# Usage: run.sh BUILD_DIR CMAKE CC
# Installs the build, moves the installed tree, and builds and runs the consumer from it, by CMake and by pkg-config.
set -eu
build=$1 cmake=$2 cc=$3
here=$(cd "$(dirname "$0")" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

"$cmake" --install "$build" --prefix "$work/first" > "$work/install.log"
mv "$work/first" "$work/moved"

"$cmake" -S "$here" -B "$work/by-cmake" -DCMAKE_C_COMPILER="$cc" -DCMAKE_PREFIX_PATH="$work/moved" > "$work/configure.log"
"$cmake" --build "$work/by-cmake" > "$work/build.log" || { cat "$work/build.log"; exit 1; }
"$work/by-cmake/consumer"

PKG_CONFIG_PATH=$(dirname "$(find "$work/moved" -name quoFPAlg.pc)")
export PKG_CONFIG_PATH
# shellcheck disable=SC2046
"$cc" "$here/consumer.c" $(pkg-config --cflags --libs quoFPAlg) -o "$work/by-pkg-config"
LD_LIBRARY_PATH=$(pkg-config --variable=libdir quoFPAlg) "$work/by-pkg-config"
[ "$(pkg-config --modversion quoFPAlg)" = 75 ]
