#!/bin/sh
# The dynamic symbol table of libquillheron.so holds exactly the public
# surface: the designers, the C entry point, the converter class, the QuillPb
# functions, nullGuid, the generated message classes (with their vtables,
# type information and protobuf's Arena::CreateMaybeMessage specialisations
# for them) and the descriptor tables of the message files. Nothing of
# protobuf's own runtime.
# usage: check_exports.sh <nm> <libquillheron.so>
set -eu
NM=$1 SO=$2
WORK=$(mktemp -d "${TMPDIR:-/tmp}/qh-exports.XXXXXX")
trap 'rm -rf "$WORK"' EXIT

# Defined dynamic symbols, demangled, one per line (version nodes aside).
"$NM" -D --defined-only -C "$SO" | sed -E 's/^[0-9a-f]+ [A-Za-z] //' | sort -u >"$WORK/all"

# Everything outside these forms is a leak.
grep -Ev -e '^(OVA_[A-Za-z0-9_]+|QUILL_McDyn_FilterDesign(Float|Fxp32)|quill_distprev_config_designer)$' \
  -e '^(MinimalIwl|MaxAbs|ScaleCascadedTransposedDirectForm2IIR)$' \
  -e '^quillheron_[a-z_]+$' \
  -e '^descriptor_table_[A-Za-z0-9_]+_2eproto$' \
  -e '^nullGuid(\[abi:cxx11\])?$' \
  -e '^(QuillHeron_v1_1_Pb|QuillPb)::' \
  -e '^((vtable|typeinfo|typeinfo name) for )?quill::pb::[A-Za-z0-9_:]+([^A-Za-z0-9_:]|$)' \
  "$WORK/all" >"$WORK/leaks" || true
# The message-class form above also admits function templates whose demangled
# name starts with a quill::pb return type: only protobuf's templates
# instantiated for that same message type may (CreateMaybeMessage always; an
# unoptimised build also keeps the Arena helpers it calls out of line).
grep -E '^quill::pb::[A-Za-z0-9_:]+\* ' "$WORK/all" \
  | grep -Ev '^(quill::pb::[A-Za-z0-9_:]+)\* google::protobuf::(Arena|MessageLite)::[A-Za-z:]*(<\1>)?[A-Za-z:]*<(\1|google::protobuf::Arena\*)?>?\(.*\)$' \
  >>"$WORK/leaks" || true
if [ -s "$WORK/leaks" ]; then
  echo "check_exports: $(wc -l <"$WORK/leaks") symbols beyond the public surface, for example:"
  head -n 20 "$WORK/leaks"
  exit 1
fi

# And the surface itself is there.
for want in MinimalIwl OVA_IirFilterDesignFxp32 quill_distprev_config_designer quillheron_version \
    quillheron_populate_postmix quillheron_convert 'QuillHeron_v1_1_Pb::QuillHeron_v1_1_Pb(int)' \
    'nullGuid[abi:cxx11]' 'vtable for quill::pb::hub::RouteConfiguration' \
    'quill::pb::tech::Mbhl* google::protobuf::Arena::CreateMaybeMessage<quill::pb::tech::Mbhl>(google::protobuf::Arena*)' \
    descriptor_table_routeconfiguration_2eproto; do
  grep -Fxq "$want" "$WORK/all" || { echo "check_exports: '$want' is not exported"; exit 1; }
done
echo "check_exports: $(wc -l <"$WORK/all") symbols, all of the public surface"
