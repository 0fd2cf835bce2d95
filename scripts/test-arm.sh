#!/usr/bin/env bash
# The 32-bit Arm (armhf) lane: cross-builds the library, the tests and the
# heron tool into build-arm/ (static executables), runs the whole test suite
# under qemu-arm, and checks that armhf and the build machine produce the same
# bytes: every designer over a parameter sweep (built once more with NEON for
# the designers, their tests also run under qemu-arm), and the records that
# `heron populate` writes for the examples and what `heron convert` rebuilds
# from them, at 44100 and 48000 Hz.
#
# Usage: scripts/test-arm.sh          (make test-arm)
# Environment: JOBS (default 2), ARM_BUILD_DIR (build-arm),
#              ARM_NEON_BUILD_DIR (build-arm-neon, the designers with NEON),
#              HOST_BUILD_DIR (build-hostid, the build machine's side; heron is
#              taken from build/ instead when that one is up to date).
# The heron part is skipped, with a message, while the tree has no heron tool
# or no examples/.
set -euo pipefail

ROOT=$(cd "$(dirname "$0")/.." && pwd)
JOBS=${JOBS:-2}
ARM=${ARM_BUILD_DIR:-$ROOT/build-arm}
HOST=${HOST_BUILD_DIR:-$ROOT/build-hostid}
SYSROOT=$ARM/sysroot
QEMU=qemu-arm
START=$SECONDS

step() { echo; echo "== test-arm [$((SECONDS - START)) s]: $*"; }
die() { echo "test-arm: $*" >&2; exit 1; }

# ---------------------------------------------------------------------------
step "tools"
"$ROOT/scripts/install-deps.sh" g++-arm-linux-gnueabihf qemu-user
command -v "$QEMU" >/dev/null || die "qemu-arm not found after installing qemu-user"

step "armhf packages"
"$ROOT/scripts/armhf-sysroot.sh" "$SYSROOT"

# ---------------------------------------------------------------------------
step "cross build into $ARM"
if [ ! -f "$ARM/build.ninja" ]; then
  cmake -S "$ROOT" -B "$ARM" -G Ninja \
    -DCMAKE_TOOLCHAIN_FILE="$ROOT/cmake/toolchain-armhf.cmake" \
    -DQH_ARMHF_SYSROOT="$SYSROOT" >"$ARM.configure.log" 2>&1 \
    || { cat "$ARM.configure.log"; die "cross configure failed"; }
fi
cmake --build "$ARM" -j"$JOBS"

step "armhf artefacts"
SO=$(find "$ARM/lib" -maxdepth 1 -name 'libquillheron.so.*.*' | head -n 1)
[ -n "$SO" ] || die "libquillheron.so was not built"
readelf -h "$SO" | grep -q 'Type:.*DYN' || die "$SO is not a shared object"
readelf -h "$SO" | grep -q 'Machine:.*ARM' || die "$SO is not an Arm object"
readelf -h "$SO" | grep -q 'hard-float ABI' || die "$SO is not hard-float"
echo "shared library: $(basename "$SO"), Arm hard-float shared object, needs:" \
  "$(readelf -d "$SO" | sed -n 's/.*Shared library: \[\(.*\)\]/\1/p' | tr '\n' ' ')"
# The test programs here are static, so the interposition test cannot run;
# instead: no PLT slot of the library names a function it defines itself
# (MinimalIwl, MaxAbs, ScaleCascadedTransposedDirectForm2IIR, ...).
"$ROOT/tests/integration/check_self_binding.sh" readelf "$SO" \
  || die "$SO calls its own exported functions through the PLT"
readelf -W -r "$SO" | grep -E 'JUMP_SLOT.* (MinimalIwl|MaxAbs|ScaleCascadedTransposedDirectForm2IIR)(@|$)' \
  && die "$SO calls MinimalIwl, MaxAbs or the scaling pass through the PLT"
readelf -d "$SO" | grep -q 'Flags:.*NODELETE' || die "$SO is not marked nodelete"
static_count=0
for exe in "$ARM"/tests/* "$ARM"/bin/*; do
  [ -f "$exe" ] && [ -x "$exe" ] || continue
  readelf -h "$exe" >/dev/null 2>&1 || continue  # scripts, not programs
  readelf -h "$exe" | grep -q 'Machine:.*ARM' || die "$exe is not an Arm program"
  if readelf -l "$exe" | grep -q 'INTERP'; then die "$exe is dynamically linked"; fi
  static_count=$((static_count + 1))
done
echo "executables: $static_count, all statically linked Arm programs"

# ---------------------------------------------------------------------------
step "test suite under $QEMU"
# ctest runs every program test through the emulator. The heron_cli cases are
# shell scripts that call the heron binary they are given directly; they run
# below with a wrapper that starts heron under the emulator.
ctest --test-dir "$ARM" -j"$JOBS" --output-on-failure -E '^heron_cli\.'
cli_cases=$(ctest --test-dir "$ARM" -N -R '^heron_cli\.' | sed -n 's/.*Test *#[0-9]*: heron_cli\.//p')
if [ -n "$cli_cases" ]; then
  WRAP=$ARM/heron-under-qemu
  printf '#!/bin/sh\nexec %s %s "$@"\n' "$(command -v "$QEMU")" "$ARM/bin/heron" >"$WRAP"
  chmod +x "$WRAP"
  cli_pass=0 cli_fail=0
  for c in $cli_cases; do
    # heron_cli.<area>.<case> runs tests/tool/<area>_cli_test.sh <case>.
    if "$ROOT/tests/tool/${c%%.*}_cli_test.sh" "$WRAP" "$ROOT" "${c#*.}" >"$ARM/heron_cli.$c.log" 2>&1; then
      cli_pass=$((cli_pass + 1))
    else
      cli_fail=$((cli_fail + 1)); echo "heron_cli.$c FAILED:"; cat "$ARM/heron_cli.$c.log"
    fi
  done
  echo "heron_cli under $QEMU: $cli_pass passed, $cli_fail failed"
  [ "$cli_fail" -eq 0 ] || die "heron_cli cases failed under $QEMU"
fi

# ---------------------------------------------------------------------------
step "build-machine side in $HOST"
if [ ! -f "$HOST/build.ninja" ]; then
  cmake -S "$ROOT" -B "$HOST" -G Ninja >"$HOST.configure.log" 2>&1 \
    || { cat "$HOST.configure.log"; die "host configure failed"; }
fi
host_targets=(designer_sweep)
have_heron=0 HOST_HERON=
if [ -x "$ARM/bin/heron" ]; then
  have_heron=1
  # The main build's heron serves when it is newer than every source it is
  # built from (as after `make test`); otherwise it is built here.
  main_heron=$ROOT/build/bin/heron
  if [ -x "$main_heron" ] && [ -z "$(find "$ROOT"/{tools,convert,filterdesign,include,proto} \
       -type f -newer "$main_heron" -print -quit 2>/dev/null)" ]; then
    HOST_HERON=$main_heron
  else
    host_targets+=(heron)
    HOST_HERON=$HOST/bin/heron
  fi
  echo "build-machine heron: $HOST_HERON"
fi
cmake --build "$HOST" -j"$JOBS" --target "${host_targets[@]}"

OUT=$ARM/identity
rm -rf "$OUT"
mkdir -p "$OUT/host" "$OUT/arm"
compared_bytes=0 compared_files=0 differing_files=0 differing_bytes=0

# compare NAME: host/NAME against arm/NAME, byte for byte.
compare() {
  local a=$OUT/host/$1 b=$OUT/arm/$1 n diffs
  n=$(stat -c %s "$a")
  diffs=$(cmp -l "$a" "$b" 2>/dev/null | wc -l) || true
  if [ "$(stat -c %s "$b")" -ne "$n" ]; then
    echo "  $1: sizes differ (host $n, armhf $(stat -c %s "$b") bytes)"
    differing_files=$((differing_files + 1))
    differing_bytes=$((differing_bytes + diffs))
  elif [ "$diffs" -ne 0 ]; then
    echo "  $1: $diffs of $n bytes differ"
    differing_files=$((differing_files + 1))
    differing_bytes=$((differing_bytes + diffs))
  else
    echo "  $1: $n bytes identical"
  fi
  compared_bytes=$((compared_bytes + n))
  compared_files=$((compared_files + 1))
}

step "designer sweep: armhf against the build machine"
"$HOST/tests/designer_sweep" "$OUT/host/designer_sweep.bin"
"$QEMU" "$ARM/tests/designer_sweep" "$OUT/arm/designer_sweep.bin"
compare designer_sweep.bin
compare designer_sweep.bin.index
if ! cmp -s "$OUT/host/designer_sweep.bin" "$OUT/arm/designer_sweep.bin"; then
  "$ROOT/tests/identity/explain_diff.sh" "$OUT/host/designer_sweep.bin" "$OUT/arm/designer_sweep.bin" || true
fi

# ---------------------------------------------------------------------------
# NEON steps: the designers once more, built with QH_FILTERDESIGN_NEON=ON (as on
# Android's 32-bit Arm ABI) in $ARM_NEON: their tests under the emulator and
# the designer sweep against the build machine. The rest of the suite does not
# depend on it and is not built again.
ARM_NEON=${ARM_NEON_BUILD_DIR:-$ROOT/build-arm-neon}
step "NEON designers: cross build into $ARM_NEON"
if [ ! -f "$ARM_NEON/build.ninja" ]; then
  cmake -S "$ROOT" -B "$ARM_NEON" -G Ninja \
    -DCMAKE_TOOLCHAIN_FILE="$ROOT/cmake/toolchain-armhf.cmake" \
    -DQH_ARMHF_SYSROOT="$SYSROOT" -DQH_FILTERDESIGN_NEON=ON -DQH_BUILD_TOOLS=OFF \
    >"$ARM_NEON.configure.log" 2>&1 || { cat "$ARM_NEON.configure.log"; die "NEON cross configure failed"; }
fi
neon_tests=()
for src in "$ROOT"/tests/filterdesign/*_test.cpp; do neon_tests+=("$(basename "${src%.cpp}")"); done
cmake --build "$ARM_NEON" -j"$JOBS" --target qh_filterdesign designer_sweep "${neon_tests[@]}"
# The scaling pass must really run in NEON registers (q registers, .f32).
neon_ops=$(arm-linux-gnueabihf-objdump -d "$ARM_NEON/lib/libqh_filterdesign.a" | grep -cE 'v(add|mul)\.f32[[:space:]]+q') || true
[ "${neon_ops:-0}" -gt 0 ] || die "libqh_filterdesign.a in $ARM_NEON holds no NEON arithmetic"
echo "NEON float arithmetic instructions in libqh_filterdesign.a: $neon_ops"

step "NEON designers: their tests under $QEMU"
neon_fail=0
for t in "${neon_tests[@]}"; do
  if "$QEMU" "$ARM_NEON/tests/$t" --gtest_brief=1 >"$ARM_NEON/$t.log" 2>&1; then
    echo "  $t: passed"
  else
    neon_fail=$((neon_fail + 1)); echo "  $t FAILED:"; cat "$ARM_NEON/$t.log"
  fi
done
[ "$neon_fail" -eq 0 ] || die "$neon_fail designer test programs failed with NEON under $QEMU"

step "NEON designers: designer sweep against the build machine"
cp "$OUT/host/designer_sweep.bin" "$OUT/host/designer_sweep.neon.bin"
cp "$OUT/host/designer_sweep.bin.index" "$OUT/host/designer_sweep.neon.bin.index"
"$QEMU" "$ARM_NEON/tests/designer_sweep" "$OUT/arm/designer_sweep.neon.bin"
compare designer_sweep.neon.bin
compare designer_sweep.neon.bin.index
if ! cmp -s "$OUT/host/designer_sweep.neon.bin" "$OUT/arm/designer_sweep.neon.bin"; then
  "$ROOT/tests/identity/explain_diff.sh" "$OUT/host/designer_sweep.neon.bin" "$OUT/arm/designer_sweep.neon.bin" || true
fi
# End of the NEON steps.

# ---------------------------------------------------------------------------
step "heron populate and convert on the examples: armhf against the build machine"
examples=()
if [ -d "$ROOT/examples" ]; then
  while IFS= read -r f; do examples+=("$f"); done < <(
    find "$ROOT/examples" -maxdepth 2 -type f \
      \( -name '*.txtpb' -o -name '*.textproto' -o -name '*.pbtxt' -o -name '*.pb' \
         -o -name '*.binpb' -o -name '*.json' \) | sort)
fi
if [ "$have_heron" -eq 0 ]; then
  echo "SKIPPED: no heron tool in this tree yet (tools/CMakeLists.txt absent)"
elif [ ${#examples[@]} -eq 0 ]; then
  echo "SKIPPED: no example settings under examples/ yet"
else
  # Files named *model* are listening models, handed to every route; every
  # other file is a route configuration.
  models=() routes=()
  for f in "${examples[@]}"; do
    case "$(basename "$f")" in
      *model*) models+=(--model "$f") ;;
      *) routes+=("$f") ;;
    esac
  done
  # run SIDE NAME CMD...: runs heron on one side, keeping its output and status.
  run() {
    local side=$1 name=$2; shift 2
    local heron=("$HOST_HERON")
    [ "$side" = arm ] && heron=("$QEMU" "$ARM/bin/heron")
    set +e
    (cd "$OUT/$side" && "${heron[@]}" "$@" >"$name.stdout" 2>"$name.stderr")
    echo $? >"$OUT/$side/$name.status"
    set -e
  }
  for route in "${routes[@]}"; do
    stem=$(basename "${route%.*}")
    for rate in 44100 48000; do
      n=$stem.$rate
      for side in host arm; do
        run "$side" "$n.populate" populate "$route" "${models[@]}" --rate "$rate" \
          --premix-out "$n.premix.bin" --postmix-out "$n.postmix.bin"
        run "$side" "$n.convert" convert --premix "$n.premix.bin" --postmix "$n.postmix.bin" \
          --with-room-models --rate "$rate" --output-format binary -o "$n.settings.pb"
        run "$side" "$n.convert-text" convert --premix "$n.premix.bin" --postmix "$n.postmix.bin" \
          --with-room-models --rate "$rate" --output-format text -o "$n.settings.txtpb"
      done
      echo "$(basename "$route") at $rate Hz (populate exit status $(cat "$OUT/host/$n.populate.status")):"
      for f in populate.status populate.stdout premix.bin postmix.bin convert.status \
               settings.pb convert-text.status settings.txtpb; do
        if [ -f "$OUT/host/$n.$f" ] && [ -f "$OUT/arm/$n.$f" ]; then
          compare "$n.$f"
        elif [ -f "$OUT/host/$n.$f" ] || [ -f "$OUT/arm/$n.$f" ]; then
          echo "  $n.$f: written on one side only"; differing_files=$((differing_files + 1))
        fi
      done
    done
  done
fi

# ---------------------------------------------------------------------------
step "result"
echo "cross-architecture identity: $compared_files files, $compared_bytes bytes compared," \
     "$differing_bytes bytes differ in $differing_files files"
echo "armhf lane took $((SECONDS - START)) s"
[ "$differing_files" -eq 0 ] || die "armhf and the build machine disagree (outputs in $OUT)"
