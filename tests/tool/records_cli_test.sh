#!/usr/bin/env bash
# The heron tool: populate, dump and validate. Usage: records_cli_test.sh HERON SOURCE_DIR CASE
. "$(dirname "$0")/cli_lib.sh" "$@"

case "$CASE" in
populate_summary)
  expect 0 "$HERON" populate "$ROUTE" --model "$MODEL" --json
  contains "$T/out" '"rate": 48000, "premix": 0, "postmix": 0, "premix_fader": {"result": 0, "shadow": 1, "out_length": 480'
  contains "$T/out" '"postmix_steps": \[{"step": "control", "outcome": "loaded", "result": 0'
  contains "$T/out" '{"step": "thumpx", "outcome": "loaded", "result": 0, "source": "design", "reason": "none", "rate": 48000, "count": 63'
  expect 0 "$HERON" populate "$ROUTE" --model "$MODEL"
  contains "$T/out" 'front_room\[0\] *@33328 *5f1c2a7e-.* from .*listening_model.txtpb, 1024 values at 48000 Hz'
  contains "$T/out" 'thumpx *@61424 *designed from parameters for 48000 Hz, 63 values'
  ;;
populate_failing_step)
  # The example's design parameters are for 48000 Hz: at 44100 the bass
  # design fails (-998), the steps after it are not run, the records are
  # still written and the exit is 3.
  expect 3 "$HERON" populate "$ROUTE" --model "$MODEL" --rate 44100 --postmix-out "$T/post.bin"
  contains "$T/out" 'failed at step thumpx (-998): design parameters are for 48000 Hz, not 44100 Hz'
  contains "$T/out" 'mbhl_crossover *@61676 *not loaded: an earlier step failed'
  contains "$T/out" 'distortion_prevention *@61772 *not loaded: an earlier step failed'
  [ "$(stat -c %s "$T/post.bin")" -eq 66108 ] || fail "postmix record not written"
  expect 3 "$HERON" populate "$ROUTE" --model "$MODEL" --rate 44100 --json
  contains "$T/out" '"postmix": -998'
  contains "$T/out" '{"step": "thumpx", "outcome": "failed", "result": -998, "source": "design", "reason": "design_rate", "rate": 48000'
  contains "$T/out" '{"step": "mbhl_crossover", "outcome": "not_reached", "result": 0, "source": "none", "reason": "earlier_step_failed"'
  ;;
dump)
  expect 0 "$HERON" populate "$ROUTE" --model "$MODEL" --premix-out "$T/pre.bin" --postmix-out "$T/post.bin"
  expect 0 "$HERON" dump "$T/pre.bin"
  contains "$T/out" "premix record, 156 bytes"
  contains "$T/out" "   124  bypass_mode  *\[0, 0, 1, 0, 0\]"
  expect 0 "$HERON" dump "$T/post.bin" --json
  contains "$T/out" '"record": "postmix", "size": 66108'
  contains "$T/out" '{"name": "front_room.uuid", "offset": 33328, "value": "5f1c2a7e-3b9d-4c21-8e6f-0a1b2c3d4e01"}'
  head -c 488 "$T/post.bin" >"$T/ctrl.bin"
  expect 0 "$HERON" dump "$T/ctrl.bin"
  contains "$T/out" "postmix-control record, 488 bytes"
  contains "$T/out" "lyra_multi_ch  *0"
  contains "$T/out" "    48  bypass_hpeq  *\[HMO_Stereo=1, HMO_Front=0, HMO_Wide=0, HMO_Bypass=0, HMO_Multichannel=0, HMO_Downmix=0\]"
  expect 0 "$HERON" dump "$T/ctrl.bin" --json
  contains "$T/out" '{"name": "aeq_enable", "offset": 72, "value": \[0, 1, 1, 1, 1, 1\], "slots": \["HMO_Stereo", "HMO_Front", "HMO_Wide", "HMO_Bypass", "HMO_Multichannel", "HMO_Downmix"\]}'
  expect 2 "$HERON" dump "$T/ctrl.bin" --record premix
  # The old name of the postmix record is still accepted; --full hides nothing.
  expect 0 "$HERON" dump "$T/post.bin" --record coeffs
  contains "$T/out" "multich_room.coeffs .*, \.\.\. 16376 more\]"
  expect 0 "$HERON" dump "$T/post.bin" --full
  [ "$(grep 'multich_room.coeffs' "$T/out" | tr ',' '\n' | wc -l)" -eq 16400 ] || fail "--full left elements out"
  ;;
*)
  fail "unknown case $CASE"
  ;;
esac
echo "PASS: $CASE"
