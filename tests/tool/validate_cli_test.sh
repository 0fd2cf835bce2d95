#!/usr/bin/env bash
# The heron tool: validate's rules and its promise that an error is reported
# exactly when populate fails. Usage: validate_cli_test.sh HERON SOURCE_DIR CASE
. "$(dirname "$0")/cli_lib.sh" "$@"

# variant NAME SED: the example route with one edit, as $T/NAME.txtpb.
variant() { sed "$2" "$ROUTE" >"$T/$1.txtpb"; }

case "$CASE" in
rules)
  # The example is clean at 48000 Hz; each row breaks one thing and expects
  # one finding (severity, path and message) at that rate.
  expect 0 "$HERON" validate "$ROUTE" --model "$MODEL" --rate 48000
  contains "$T/out" "clean at 48000 Hz"
  while IFS='|' read -r edit want; do
    variant row "$edit"
    "$HERON" validate "$T/row.txtpb" --model "$MODEL" --rate 48000 >"$T/out" 2>"$T/err"
    grep -q -E -- "$want" "$T/out" || { cat "$T/out" "$T/err"; fail "'$edit': no line matching '$want'"; }
  done <<'ROWS'
s/custom_speaker_size: 100/custom_speaker_size: 30/|^error postmix.thumpx_coef.filterDesignParams: populate at 48000 Hz fails at step thumpx \(-998\): .*speaker size 30 is outside 40 to 600
s/custom_low_cross: 300/custom_low_cross: 24000/|^error DesignerParameters.mbhl_design_params: .* step mbhl_crossover .*not below half the rate
s/lyra_input_gain: \[16384, 16384, 16384, 16384, 16384, 16384\]/lyra_input_gain: [1, 2]/|^warning postmix.lyra_input_gain: 2 values for 6 mode slots
s/nf_base_q: 10/nf_base_q: 0/|^warning DesignerParameters.mbhl_nf_design_params\[0\].nf_base_q: 0 is not positive
153s/order: 2/order: 4/|^warning postmix.hpf_coef.coeffs: at 48000 Hz, coeff_32 holds 8 values; order 4 needs 14
152s/cutoff: 80/cutoff: 200/|^warning postmix.hpf_coef.coeffs: at 48000 Hz, differs from a Butterworth high-pass of order 2 at 200 Hz by up to [0-9.]* dB
131s/cutoff: 250/cutoff: 30000/|^warning postmix.brio_xover_coef.cutoff: at 48000 Hz, 30000 Hz is at or above half of 48000 Hz
ROWS
  # A quantised table with a pole on the unit circle, and widths that disagree.
  cat >"$T/tables.txtpb" <<'TXT'
route: AR_OUT_ATTACHED0
tech { heron_v1_1 { postmix { hpf_coef { order: 2 coeffs { sampleRate: 48000
  coeff_32: [2, 1073741824, 0, 0, 1073741824, 0, 1, 1073741824]
  coeff_16: [2, 16384, 0, 0, 0, 0, 1, 16384] } } } } }
TXT
  expect 0 "$HERON" validate "$T/tables.txtpb" --rate 48000
  contains "$T/out" "^warning postmix.hpf_coef.coeffs: at 48000 Hz, section 0 is marginal (pole radius 1)"
  contains "$T/out" "^warning postmix.hpf_coef.coeffs: at 48000 Hz, coeff_16 and coeff_32 (the one loaded) describe different filters"
  expect 4 "$HERON" validate "$T/tables.txtpb" --rate 48000 --strict
  # Bass coefficients without Brio settings are never read: no finding, and
  # populate agrees.
  printf 'route: AR_OUT_ATTACHED0\ntech { heron_v1_1 { postmix { thumpx_coef { coeffs { sampleRate: 44100 coeff_32: [1, 2] } } } } }\n' \
    >"$T/nobrio.txtpb"
  expect 0 "$HERON" validate "$T/nobrio.txtpb"
  printf 'route: AR_OUT_USB\n' >"$T/legacy.txtpb"
  expect 4 "$HERON" validate "$T/legacy.txtpb" --json
  contains "$T/out" '{"severity": "error", "rate": 48000, "path": "tech", "step": "settings", "message": "populate at 48000 Hz fails at step settings (-1000): no heron_v1_1 settings"}'
  ;;
predicts_populate)
  # Routes with tables removed or parameters changed, at three rates: validate
  # has an error at a rate exactly when populate there returns a negative
  # result, and names the step populate's trace says failed.
  variant base ''
  variant no_hpf_48k '159s/sampleRate: 48000/sampleRate: 47999/'
  variant brio_hpf_44k '/brio_hpf_coef/,/^      }/s/sampleRate: 44100/sampleRate: 44000/'
  variant speaker '/filterDesignParams/,/}/s/custom_speaker_size: 100/custom_speaker_size: 700/'
  variant mbhl_rate '/mbhl_design_params/,/}/s/sampling_rate: 48000/sampling_rate: 32000/'
  variant ref_htest 's/ref_htest: \[/ref_htest: [-1, /'
  variant no_room 's/5f1c2a7e-3b9d-4c21-8e6f-0a1b2c3d4e01/5f1c2a7e-3b9d-4c21-8e6f-0a1b2c3d4eff/'
  for v in base no_hpf_48k brio_hpf_44k speaker mbhl_rate ref_htest no_room; do
    for rate in 32000 44100 48000; do
      "$HERON" validate "$T/$v.txtpb" --model "$MODEL" --rate "$rate" --json >"$T/v.json" 2>/dev/null
      "$HERON" populate "$T/$v.txtpb" --model "$MODEL" --rate "$rate" --json >"$T/p.json" 2>/dev/null
      /usr/bin/python3 - "$T/v.json" "$T/p.json" "$v" "$rate" <<'PY' || fail "validate and populate disagree on $v at $rate Hz"
import json, sys
v, p = (json.load(open(f)) for f in sys.argv[1:3])
errors = [f for f in v["findings"] if f["severity"] == "error"]
negative = p["premix"] < 0 or p["postmix"] < 0
failed = [s["step"] for s in p["postmix_steps"] if s["outcome"] == "failed"]
steps = [e["step"] for e in errors]
ok = bool(errors) == negative and all(s in steps for s in failed) and (p["premix"] >= 0 or "premix" in steps)
if not ok:
    print(sys.argv[3], sys.argv[4], steps, p["premix"], p["postmix"], failed)
sys.exit(0 if ok else 1)
PY
    done
  done
  ;;
*)
  fail "unknown case $CASE"
  ;;
esac
echo "PASS: $CASE"
