#!/usr/bin/env bash
# The heron tool: populate, dump and validate. Usage: records_cli_test.sh HERON SOURCE_DIR CASE
. "$(dirname "$0")/cli_lib.sh" "$@"

case "$CASE" in
populate_summary)
  expect 0 "$HERON" populate "$ROUTE" --model "$MODEL" --json
  contains "$T/out" '"rate": 48000, "premix": 0, "postmix": 0, "premix_fader": {"result": 0, "shadow": 1, "out_length": 480'
  expect 0 "$HERON" populate "$ROUTE" --model "$MODEL"
  contains "$T/out" 'front room: .*1024 taps at 48000 Hz'
  contains "$T/out" 'Thumpx: .*designed from filterDesignParams'
  ;;
populate_negative_result_still_writes)
  # The example's design parameters are for 48000 Hz: at 44100 the bass
  # design fails (-998), the records are still written and the exit is 3.
  expect 3 "$HERON" populate "$ROUTE" --model "$MODEL" --rate 44100 --json --postmix-out "$T/post.bin"
  contains "$T/out" '"postmix": -998'
  [ "$(stat -c %s "$T/post.bin")" -eq 66108 ] || fail "postmix record not written"
  ;;
dump)
  expect 0 "$HERON" populate "$ROUTE" --model "$MODEL" --premix-out "$T/pre.bin" --postmix-out "$T/post.bin"
  expect 0 "$HERON" dump "$T/pre.bin"
  contains "$T/out" "premix record, 156 bytes"
  contains "$T/out" "   124  bypass_mode  *\[0, 0, 1, 0, 0\]"
  expect 0 "$HERON" dump "$T/post.bin" --json
  contains "$T/out" '{"name": "front_room.uuid", "offset": 33328, "value": "5f1c2a7e-3b9d-4c21-8e6f-0a1b2c3d4e01"}'
  head -c 488 "$T/post.bin" >"$T/ctrl.bin"
  expect 0 "$HERON" dump "$T/ctrl.bin"
  contains "$T/out" "lyra_multi_ch  *0"
  expect 2 "$HERON" dump "$T/ctrl.bin" --record premix
  ;;
validate)
  expect 0 "$HERON" validate "$ROUTE" --model "$MODEL"
  cat >"$T/lint.txtpb" <<'TXT'
route: AR_OUT_ATTACHED0
tech { heron_v1_1 { postmix {
  bypass_mode: [0, 0, 0, 0, 0, 0, 0]
  geq10b { band3_gain: 40000 }
  brio { enable: 1 thumpx { enable: 1 speaker_size: 11 } }
  thumpx_coef { coeffs { sampleRate: 48000 coeff_32: [1, 2] } }
  frontRoom { uuid: "{5F1C2A7E-3B9D-4C21-8E6F-0A1B2C3D4E01}" }
  aeqCoef { uuid: "not-an-id" }
} DesignerParameters { mbhl_nf_design_params { nf_band_ct: 9 } } } }
TXT
  expect 4 "$HERON" validate "$T/lint.txtpb" --model "$MODEL"
  contains "$T/out" "postmix.bypass_mode: 7 values"
  contains "$T/out" "postmix.geq10b.band3_gain: 40000 does not fit"
  contains "$T/out" "speaker_size: 11 is not 12"
  contains "$T/out" "frontRoom\[0\].uuid: .*only when braces are ignored"
  contains "$T/out" "aeqCoef\[0\].uuid: malformed identifier"
  contains "$T/out" "nf_band_ct: 9 is outside 0 to 6"
  printf 'route: AR_OUT_USB\n' >"$T/legacy.txtpb"
  expect 4 "$HERON" validate "$T/legacy.txtpb"
  contains "$T/out" "no heron_v1_1 settings"
  ;;
*)
  fail "unknown case $CASE"
  ;;
esac
echo "PASS: $CASE"
