#!/bin/sh
# Installs a quillheron build tree into a temporary prefix, then configures,
# builds and runs the consumer project against it with find_package, and
# compiles it once more with the flags from the installed pkg-config file.
# usage: run_consumer.sh <cmake> <build-dir> <consumer-src> <generator> <cxx> <cxx-flags> <linker-flags>
set -eu
CMAKE=$1 BUILD=$2 SRC=$3 GEN=$4 CXX=$5 CXXFLAGS=$6 LDFLAGS=$7

WORK=$(mktemp -d "${TMPDIR:-/tmp}/qh-consumer.XXXXXX")
trap 'rm -rf "$WORK"' EXIT
PREFIX=$WORK/prefix

"$CMAKE" --install "$BUILD" --prefix "$PREFIX" >"$WORK/install.log" \
  || { cat "$WORK/install.log"; exit 1; }

"$CMAKE" -S "$SRC" -B "$WORK/build" -G "$GEN" \
  -DCMAKE_PREFIX_PATH="$PREFIX" -DCMAKE_CXX_COMPILER="$CXX" \
  -DCMAKE_CXX_FLAGS="$CXXFLAGS" -DCMAKE_EXE_LINKER_FLAGS="$LDFLAGS"
"$CMAKE" --build "$WORK/build" -j2
"$WORK/build/consumer"

if command -v pkg-config >/dev/null 2>&1; then
  PCDIR=$(dirname "$(find "$PREFIX" -name quillheron.pc | head -n 1)")
  FLAGS=$(PKG_CONFIG_PATH="$PCDIR" pkg-config --cflags --libs quillheron)
  LIBDIR=$(PKG_CONFIG_PATH="$PCDIR" pkg-config --variable=libdir quillheron)
  # shellcheck disable=SC2086
  "$CXX" -std=c++17 $CXXFLAGS "$SRC/main.cpp" -o "$WORK/consumer-pc" $FLAGS \
    -Wl,-rpath,"$LIBDIR" $LDFLAGS
  "$WORK/consumer-pc"
fi
