#!/bin/sh
# Checks of the installed package, one step per ctest test:
#   install         installs the library components of a build tree, stripped,
#                   into <work>/prefix (the fixture the other steps use) and
#                   checks what they hold; the tool component separately
#   readme          builds and runs the README consumer (tests/consumer) through
#                   find_package, on the shipped examples
#   pkg_config      compiles the same program, and the C consumer, with the
#                   flags of the installed quillheron.pc
#   strict          builds and runs tests/consumer/strict: a C++14 project, every
#                   message type, a C program
#   wrong_protobuf  a project finding another protobuf fails at configure time
#                   with a clear message
# usage: run_consumer.sh <step> <work> <cmake> <build-dir> <source-dir> <generator>
#                        <cxx> <cc> <cxx-flags> <linker-flags>
# The C++ flags (a sanitizer lane's, say) serve for C as well.
set -eu
STEP=$1 WORK=$2 CMAKE=$3 BUILD=$4 SRC=$5 GEN=$6 CXX=$7 CC=$8 CXXFLAGS=$9
shift 9
LDFLAGS=$1
PREFIX=$WORK/prefix
CONSUMER=$SRC/tests/consumer

configure() {  # configure <source> <build> [extra cmake args]
  src=$1 bld=$2
  shift 2
  rm -rf "$bld"
  "$CMAKE" -S "$src" -B "$bld" -G "$GEN" -DCMAKE_PREFIX_PATH="$PREFIX" \
    -DCMAKE_CXX_COMPILER="$CXX" -DCMAKE_C_COMPILER="$CC" \
    -DCMAKE_CXX_FLAGS="$CXXFLAGS" -DCMAKE_C_FLAGS="$CXXFLAGS" -DCMAKE_EXE_LINKER_FLAGS="$LDFLAGS" "$@"
}

case $STEP in
install)
  rm -rf "$WORK"
  mkdir -p "$WORK"
  for component in runtime development; do
    "$CMAKE" --install "$BUILD" --prefix "$PREFIX" --strip --component $component >"$WORK/install.log" \
      || { cat "$WORK/install.log"; exit 1; }
  done
  LIB=$(find "$PREFIX" -name 'libquillheron.so.*.*' | head -n 1)
  [ -n "$LIB" ] || { echo "no libquillheron.so installed"; exit 1; }
  if readelf -S -W "$LIB" | grep -q '\.debug_'; then echo "$LIB keeps debug information"; exit 1; fi
  [ ! -e "$PREFIX/bin/heron" ] || { echo "the library components installed the tool"; exit 1; }
  [ -f "$PREFIX/include/quillheron/quillheron_version.h" ] || { echo "no version header"; exit 1; }
  echo "library: $(basename "$LIB"), $(stat -c %s "$LIB") bytes stripped"
  # The tool is its own component.
  if [ -f "$BUILD/bin/heron" ]; then
    "$CMAKE" --install "$BUILD" --prefix "$WORK/tool" --strip --component tool >"$WORK/install.log"
    [ -x "$WORK/tool/bin/heron" ] && [ ! -d "$WORK/tool/include" ] || { echo "tool component wrong"; exit 1; }
    echo "tool: heron, $(stat -c %s "$WORK/tool/bin/heron") bytes stripped"
    rm -rf "$WORK/tool"
  fi
  ;;
readme)
  configure "$CONSUMER" "$WORK/readme"
  "$CMAKE" --build "$WORK/readme" -j2
  "$WORK/readme/consumer" "$SRC/examples/headphone_route.txtpb" "$SRC/examples/listening_model.txtpb"
  ;;
pkg_config)
  PCDIR=$(dirname "$(find "$PREFIX" -name quillheron.pc | head -n 1)")
  export PKG_CONFIG_PATH="$PCDIR"
  pkg-config --print-requires quillheron
  FLAGS=$(pkg-config --cflags --libs quillheron)
  LIBDIR=$(pkg-config --variable=libdir quillheron)
  mkdir -p "$WORK/pc"
  # shellcheck disable=SC2086
  "$CXX" -std=c++17 $CXXFLAGS "$CONSUMER/main.cpp" -o "$WORK/pc/consumer" $FLAGS -Wl,-rpath,"$LIBDIR" $LDFLAGS
  "$WORK/pc/consumer" "$SRC/examples/headphone_route.txtpb" "$SRC/examples/listening_model.txtpb"
  # shellcheck disable=SC2086
  "$CC" -std=c99 $CXXFLAGS "$CONSUMER/strict/c_consumer.c" -o "$WORK/pc/c_consumer" $FLAGS \
    -Wl,-rpath,"$LIBDIR" $LDFLAGS
  "$WORK/pc/c_consumer"
  ;;
strict)
  configure "$CONSUMER/strict" "$WORK/strict"
  "$CMAKE" --build "$WORK/strict" -j2
  "$WORK/strict/every_message"
  "$WORK/strict/c_consumer"
  ;;
wrong_protobuf)
  if configure "$CONSUMER/wrong_protobuf" "$WORK/wrong" >"$WORK/wrong.log" 2>&1; then
    echo "configure succeeded with another protobuf"; exit 1
  fi
  # The message wraps; join its lines first.
  tr -s ' \n' '  ' <"$WORK/wrong.log" >"$WORK/wrong.flat"
  grep -q 'needs protobuf 3\.21\.x' "$WORK/wrong.flat" && grep -q 'found protobuf 4\.25\.3' "$WORK/wrong.flat" \
    || { cat "$WORK/wrong.log"; exit 1; }
  sed -n '/Reason given by package/,/^$/p' "$WORK/wrong.log"
  ;;
*)
  echo "run_consumer.sh: unknown step $STEP"; exit 2
  ;;
esac
