#!/usr/bin/env bash
# The heron tool: heron design. Usage: design_cli_test.sh HERON SOURCE_DIR CASE
. "$(dirname "$0")/cli_lib.sh" "$@"

case "$CASE" in
design_json)
  expect 0 "$HERON" design butterworth --type low --cutoff 1000 --order 2 --format fxp32 --json --response
  contains "$T/out" '"design": "butterworth", "rate": 48000, "format": "fxp32", "result": 0, "output": \['
  contains "$T/out" '"sections": \[{"name": "section 0", "iwl": '
  contains "$T/out" '"response": \[\[10\.0, '
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
*)
  fail "unknown case $CASE"
  ;;
esac
echo "PASS: $CASE"
