#!/bin/sh
# The library's calls to its own exported functions bind inside it: no PLT
# slot (JUMP_SLOT relocation) names a function the library itself defines,
# so a host defining MinimalIwl, MaxAbs or any other exported name cannot
# replace it. Works on any ELF target (x86-64, armhf) with binutils' readelf.
# usage: check_self_binding.sh <readelf> <libquillheron.so>
set -eu
READELF=$1 SO=$2
WORK=$(mktemp -d "${TMPDIR:-/tmp}/qh-binding.XXXXXX")
trap 'rm -rf "$WORK"' EXIT

# Functions the library defines and exports (symbol versions stripped).
"$READELF" -W --dyn-syms "$SO" \
  | awk '$4 == "FUNC" && $7 != "UND" && NF >= 8 { sub(/@.*/, "", $8); print $8 }' | sort -u >"$WORK/defined"
# Symbols called through the PLT.
"$READELF" -W -r "$SO" | awk '/JUMP_SLOT/ { sub(/@.*/, "", $5); print $5 }' | sort -u >"$WORK/plt"

grep -qx MinimalIwl "$WORK/defined" || { echo "check_self_binding: MinimalIwl not found in $SO"; exit 1; }
[ -s "$WORK/plt" ] || { echo "check_self_binding: no PLT relocations read from $SO"; exit 1; }
comm -12 "$WORK/defined" "$WORK/plt" >"$WORK/self"
if [ -s "$WORK/self" ]; then
  echo "check_self_binding: $(wc -l <"$WORK/self") exported functions are called through the PLT, e.g.:"
  head -n 10 "$WORK/self"
  exit 1
fi
echo "check_self_binding: $(wc -l <"$WORK/defined") exported functions, none called through the PLT" \
  "($(wc -l <"$WORK/plt") PLT slots, all for other libraries)"
