#!/usr/bin/env bash
# Usage: run.sh BUILD_DIR CMAKE CC
# Installs the build, moves the installed tree, and builds and runs the examples from it: by CMake, by pkg-config, and
# loading the library by name.
set -eu
build=$1 cmake=$2 cc=$3
here=$(cd "$(dirname "$0")" && pwd)
examples=$here/../../examples/c
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

"$cmake" --install "$build" --prefix "$work/first" > "$work/install.log"
mv "$work/first" "$work/moved"

"$cmake" -S "$examples" -B "$work/by-cmake" -DCMAKE_C_COMPILER="$cc" -DCMAKE_PREFIX_PATH="$work/moved" \
  -DCMAKE_C_FLAGS='-Wall -Wextra -Werror' > "$work/configure.log"
"$cmake" --build "$work/by-cmake" > "$work/build.log" || { cat "$work/build.log"; exit 1; }

PKG_CONFIG_PATH=$(dirname "$(find "$work/moved" -name quoFPAlg.pc)")
export PKG_CONFIG_PATH
[ "$(pkg-config --modversion quoFPAlg)" = 75 ]
cp -r "$examples" "$work/by-pkg-config"
make -s -C "$work/by-pkg-config" CC="$cc" CFLAGS='-std=c11 -Wall -Wextra -Werror'

libdir=$(pkg-config --variable=libdir quoFPAlg)
"$here/programs.sh" "$work/by-cmake" "$libdir/libquoFPAlg.so"
LD_LIBRARY_PATH=$libdir "$here/programs.sh" "$work/by-pkg-config" libquoFPAlg.so.75
