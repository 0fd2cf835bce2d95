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
  expect 0 "$HERON" design butterworth --type high --cutoff 200 --order 4 --format fxp16 --plot "$T/r.svg" \
    --phase --group-delay --csv "$T/r.csv"
  head -c 4 "$T/r.svg" | grep -q '<svg' || fail "no SVG written"
  for text in "Frequency (Hz)" "de-quantised" "cut-off 200 Hz" ">0 dB<" ">-3 dB<" "Phase (degrees)" "Group delay (samples)"; do
    contains "$T/r.svg" "$text"
  done
  contains "$T/r.csv" '^hz,"Butterworth high-pass, order 4 (float design) dB","[^"]* degrees","[^"]* samples",'
  [ "$(wc -l <"$T/r.csv")" -eq 201 ] || fail "the CSV does not hold the 200-point grid"
  # A crossover's sum, each parametric band faintly, and a not-a-number design named.
  expect 0 "$HERON" design crossover --freq 300 --plot "$T/x.svg"
  contains "$T/x.svg" "sum of both halves"
  expect 0 "$HERON" design peq --band peaking,1000,2,6 --band lowshelf,100,0.7,-3 --plot "$T/p.svg"
  contains "$T/p.svg" 'stroke-opacity="0.7"'
  expect 0 "$HERON" design peq --band peaking,1000,0,6 --unchecked --plot "$T/n.svg"
  contains "$T/n.svg" "not a number"
  ;;
design_analysis)
  # fxp16 puts both poles of a 20 Hz high-pass on the unit circle (A1 + A2 = 1):
  # written, but not what was asked (exit 4).
  expect 4 "$HERON" design butterworth --type high --cutoff 20 --order 4 --format fxp16
  contains "$T/out" "^problem: section 0: marginal, pole radius 1 (a pole on the unit circle)$"
  contains "$T/out" "^problem: magnitude error [0-9.]* dB at [0-9.]* Hz, above the tolerance of 0.5 dB$"
  expect 4 "$HERON" design butterworth --type high --cutoff 20 --order 4 --format fxp16 --json
  contains "$T/out" '"analysis": {"max_error_db": [0-9.]*, "at_hz": [0-9.]*, "silent": false, "saturated": 0, "sections": \[{"name": "section 0", "pole_radius": 1.0, "stability": "marginal"}'
  # Healthy designs stay clean, the iwl 0 one and the limiter's high-pass half included.
  for args in "butterworth --type low --cutoff 12000 --order 2 --format fxp32" "crossover --freq 5000 --format fxp32" \
              "thumpx --speaker-size 100 --format fxp32" "distprev --nf-band-ct 6"; do
    # shellcheck disable=SC2086
    expect 0 "$HERON" design $args
    contains "$T/out" "^analysis: largest magnitude error .* sections stable; no saturated words$"
  done
  # A zero-Q band, unchecked: a silent cascade is itself a problem.
  expect 4 "$HERON" design peq --band peaking,1000,0,6 --unchecked --format fxp32
  contains "$T/out" "^problem: silent: every stored numerator word is zero$"
  expect 0 "$HERON" design butterworth --type high --cutoff 20 --order 4 --format fxp32 --tolerance-db 1
  ;;
design_refusals)
  # Designs a person did not mean: arguments | the one-line message.
  while IFS='|' read -r args message; do
    # shellcheck disable=SC2086
    expect 2 "$HERON" design $args </dev/null
    [ "$(cat "$T/err")" = "$message" ] || fail "'$args' said '$(cat "$T/err")', not '$message'"
    [ -s "$T/out" ] && fail "'$args' printed a design"
  done <<'EOF_CASES'
peq --band peaking,1000,0,6|heron: --band: band 0 (peaking): the Q 0 is not finite and positive
peq --band 0,1000,1,0 --band lowshelf,100,-1,3|heron: --band: band 1 (lowshelf): the shelf slope (Q) -1 is not finite and positive
peq --band highpass,1000,0,inf|heron: --band: band 0 (highpass): the resonance (gain) inf dB is not finite
peq --band notch,nan,2,0|heron: --band: band 0 (notch): the frequency nan Hz is not finite and positive
peq --band gain,0,0,nan|heron: --band: band 0 (gain): the gain nan dB is not finite
butterworth --type low --cutoff 1000 --order 17|heron: --order: the order 17 is outside 1 to 16
butterworth --type high --cutoff 0 --order 2|heron: --cutoff: the cut-off 0 Hz is not finite and positive
crossover --freq -300|heron: --freq: the crossover frequency -300 Hz is not finite and positive
thumpx --speaker-size 100 --pre-lp-freq 0|heron: --pre-lp-freq: pre_lp_freq 0 Hz is not finite and positive
distprev --nf-band-ct 7|heron: --nf-band-ct: nf_band_ct 7 is outside 0 to 6
distprev --nf-base-q 0|heron: --nf-base-q: nf_base_q 0 is not finite and positive
distprev --nf-attk-ms 0|heron: --nf-attk-ms: the attack time 0 ms is not finite and positive
distprev --nf-rel-ms -5|heron: --nf-rel-ms: the release time -5 ms is not finite and positive
EOF_CASES
  # Neither frequency nor Q of a gain band, nor the Q of a low-pass, is checked.
  expect 0 "$HERON" design peq --band gain,0,0,6 --band lowpass,1000,0,3
  ;;
design_unchecked)
  # The engine's own computation: NaN coefficients, result 0.
  expect 0 "$HERON" design peq --band peaking,1000,0,6 --unchecked
  contains "$T/out" "band 0:  b0 nan"
  expect 0 "$HERON" design distprev --nf-band-ct 7 --count 1 --unchecked
  contains "$T/out" "notch band 5"
  # Only the did-not-mean checks are skipped: the designer still rejects.
  expect 3 "$HERON" design butterworth --type low --cutoff 30000 --order 20 --unchecked
  ;;
design_plot_not_svg)
  expect 2 "$HERON" design butterworth --type low --cutoff 1000 --order 2 --plot "$T/r.png"
  contains "$T/err" "^heron: --plot: '.*r.png' does not end in .svg"
  [ -e "$T/r.png" ] && fail "a .png file was written"
  ;;
design_distprev_rate)
  expect 0 "$HERON" design distprev --rate 44100
  contains "$T/err" "^heron: --rate: does not apply to distprev, which always designs 48000, 44100 and 32000 Hz$"
  contains "$T/out" "^distprev, record: result 0$"
  expect 0 "$HERON" design distprev
  [ -s "$T/err" ] && fail "a note without --rate"
  ;;
*)
  fail "unknown case $CASE"
  ;;
esac
echo "PASS: $CASE"
