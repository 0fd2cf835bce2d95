#!/usr/bin/env bash
# Drives the heron binary as a user would. Usage: heron_cli_test.sh HERON SOURCE_DIR CASE
set -u
HERON=$1
SRC=$2
CASE=$3
EX="$SRC/examples"
ROUTE="$EX/headphone_route.txtpb"
MODEL="$EX/listening_model.txtpb"
T=$(mktemp -d)
trap 'rm -rf "$T"' EXIT

fail() { echo "FAIL: $*"; exit 1; }
# expect STATUS CMD...: runs CMD, checks its exit status.
expect() {
  local want=$1; shift
  "$@" >"$T/out" 2>"$T/err"
  local got=$?
  [ "$got" -eq "$want" ] || { cat "$T/out" "$T/err"; fail "'$*' exited $got, expected $want"; }
}
contains() { grep -q -- "$2" "$1" || { cat "$1"; fail "$1 lacks '$2'"; }; }

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
round_trip)
  expect 0 "$HERON" populate "$ROUTE" --model "$MODEL" --premix-out "$T/pre.bin" --postmix-out "$T/post.bin"
  expect 0 "$HERON" convert --premix "$T/pre.bin" --postmix "$T/post.bin" --with-room-models \
    --premix-fader 1,480,0,480,0 --postmix-fader 1,960,240,960,0 -o "$T/settings.txtpb"
  { echo 'route: AR_OUT_ATTACHED0'; echo 'tech { heron_v1_1 {'; cat "$T/settings.txtpb"; echo '} }'; } >"$T/route.txtpb"
  # The second populate starts from the first records: the Brio high-pass is
  # rebuilt into coeff_32, which its loader (reading coeff_16) leaves alone.
  expect 0 "$HERON" populate "$T/route.txtpb" --premix-in "$T/pre.bin" --postmix-in "$T/post.bin" \
    --premix-out "$T/pre2.bin" --postmix-out "$T/post2.bin"
  cmp "$T/pre.bin" "$T/pre2.bin" || fail "premix records differ"
  cmp "$T/post.bin" "$T/post2.bin" || fail "postmix records differ"
  expect 0 "$HERON" convert --postmix "$T/post.bin" --output-format json -o "$T/settings.json"
  expect 0 "$HERON" convert --postmix "$T/post.bin" --output-format binary -o "$T/settings.pb"
  ;;
input_errors_create_no_output)
  expect 2 "$HERON" populate "$T/missing.txtpb" --premix-out "$T/a.bin"
  contains "$T/err" "missing.txtpb: cannot open"
  printf 'route: NOT_A_ROUTE\n' >"$T/bad.txtpb"
  expect 2 "$HERON" populate "$T/bad.txtpb" --premix-out "$T/a.bin" --postmix-out "$T/b.bin"
  contains "$T/err" "bad.txtpb: not a valid text quill.pb.hub.RouteConfiguration message: line "
  head -c 100 /dev/zero >"$T/short.bin"
  expect 2 "$HERON" populate "$ROUTE" --premix-in "$T/short.bin" --premix-out "$T/a.bin"
  contains "$T/err" "exactly 156 bytes"
  expect 2 "$HERON" populate "$ROUTE" --model "$T/bad.txtpb" --premix-out "$T/a.bin"
  expect 2 "$HERON" populate "$ROUTE" --input-format yaml --premix-out "$T/a.bin"
  printf 'x' >"$T/route.unknown"
  expect 2 "$HERON" populate "$T/route.unknown" --premix-out "$T/a.bin"
  contains "$T/err" "use --input-format"
  [ ! -e "$T/a.bin" ] && [ ! -e "$T/b.bin" ] || fail "an output file was created on an input error"
  [ "$(wc -l <"$T/err")" -eq 1 ] || fail "error message is not one line"
  ;;
write_failure)
  expect 1 "$HERON" populate "$ROUTE" --premix-out "$T/no/such/dir/pre.bin"
  contains "$T/err" "cannot write"
  ;;
usage_errors)
  expect 2 "$HERON"
  expect 2 "$HERON" populate
  expect 2 "$HERON" convert --premix-fader 1,2,3
  expect 2 "$HERON" design butterworth --type band --cutoff 100 --order 2
  expect 2 "$HERON" design peq --band wobble,100,1,0
  expect 2 "$HERON" design crossover --format fxp16
  expect 0 "$HERON" --help
  ;;
design_json)
  expect 0 "$HERON" design butterworth --type low --cutoff 1000 --order 2 --format fxp32 --json --response
  contains "$T/out" '"design": "butterworth", "rate": 48000, "format": "fxp32", "result": 0, "output": \['
  contains "$T/out" '"sections": \[{"name": "section 0", "iwl": '
  contains "$T/out" '"response": \[\[10, '
  contains "$T/out" '"response_quantised": \[\['
  expect 0 "$HERON" design peq --band peaking,1000,2,6 --band 3,5000,0.7,0,1 --format fxp16 --json
  expect 0 "$HERON" design thumpx --speaker-size 100 --format fxp24 --json
  contains "$T/out" '"output": \[.*23068672, 500, 44\]'
  expect 0 "$HERON" design distprev --nf-band-ct 3 --json
  contains "$T/out" '"header": "50000000000000000000000'
  expect 0 "$HERON" design crossover --freq 300
  contains "$T/out" 'high-pass: '
  ;;
design_rejections)
  expect 3 "$HERON" design butterworth --type low --cutoff 24000 --order 2
  contains "$T/err" "not below half the rate (24000 Hz)"
  expect 3 "$HERON" design thumpx --speaker-size 39
  contains "$T/err" "outside 40 to 600"
  expect 3 "$HERON" design thumpx --speaker-size 100 --rate 96000
  expect 3 "$HERON" design thumpx --speaker-size 100 --bass-ctrl 1.5
  expect 3 "$HERON" design crossover --freq 22050 --rate 44100 --json
  contains "$T/out" '"result": -1000'
  ;;
design_plot)
  expect 0 "$HERON" design butterworth --type high --cutoff 200 --order 4 --format fxp16 --plot "$T/r.svg"
  head -c 4 "$T/r.svg" | grep -q '<svg' || fail "no SVG written"
  contains "$T/r.svg" "Frequency (Hz)"
  contains "$T/r.svg" "de-quantised"
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
