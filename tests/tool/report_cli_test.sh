#!/usr/bin/env bash
# The heron tool: `heron report`, its page and its exit statuses, and the page
# opened in headless Chromium. Usage: report_cli_test.sh HERON SOURCE_DIR CASE
. "$(dirname "$0")/cli_lib.sh" "$@"

# The example's filters at each rate: 44100 Hz fails at the bass-enhancement
# step, so the steps after it are shown as missing there and the second
# distortion-prevention design is not loaded.
BOTH="output_hpf aeq.bank0 aeq.bank1 brio_crossover brio_hpf thumpx mbhl.low mbhl.mid distprev0.sense distprev0.notch headphone_eq"
CHARTS=$(for f in $BOTH; do printf '%s@44100,%s@48000,' "$f" "$f"; done)
CHARTS="${CHARTS}distprev1.sense@48000,distprev1.notch@48000"

case "$CASE" in
example)
  # Written (exit 4: validate's error at 44100 Hz), small, self-contained.
  expect 4 "$HERON" report "$ROUTE" --model "$MODEL" -o "$T/r.html"
  contains "$T/out" "^$T/r.html: 24 charts at 44100, 48000 Hz, 1 error, 1 warning"
  [ "$(stat -c %s "$T/r.html")" -lt 2000000 ] || fail "the page is $(stat -c %s "$T/r.html") bytes"
  ! grep -q -E '(src|href)="(https?:)?//' "$T/r.html" || fail "the page refers to something outside it"
  contains "$T/r.html" "<td><code>$ROUTE</code></td><td>$(stat -c %s "$ROUTE")</td>"
  contains "$T/r.html" 'Rates: 44100 Hz, 48000 Hz'
  contains "$T/r.html" '<tr id="populate-44100" class="fail">.*fails at thumpx (-998): design parameters are for 48000 Hz, not 44100 Hz'
  contains "$T/r.html" '<tr id="populate-48000" class="ok">'
  # Errors first, each linked to the chart of its filter.
  grep -o 'class="finding [a-z]*"' "$T/r.html" | head -1 | grep -q error || fail "the first finding is not the error"
  contains "$T/r.html" '<a href="#chart-thumpx-44100"><code>postmix.thumpx_coef.filterDesignParams</code></a>'
  [ "$(grep -c 'class="chart' "$T/r.html")" -eq 24 ] || fail "$(grep -c 'class="chart' "$T/r.html") charts, expected 24"
  contains "$T/r.html" 'id="chart-brio_crossover-48000"'
  contains "$T/r.html" 'sum of both outputs'
  contains "$T/r.html" 'class="analysis">largest quantisation error [0-9.e-]* dB at [0-9]* Hz against the float design; stable'
  contains "$T/r.html" '<td>headphone EQ</td><td>48000 Hz</td><td>256</td>'
  ;;
broken)
  # A failing rate and a broken table: both in the header.
  sed '153s/order: 2/order: 4/' "$ROUTE" >"$T/broken.txtpb"
  expect 4 "$HERON" report "$T/broken.txtpb" --model "$MODEL" -o "$T/r.html"
  contains "$T/r.html" '<tr id="populate-44100" class="fail">'
  contains "$T/r.html" 'class="finding warning" data-rate="48000"><span class="severity">warning</span> 48000 Hz <a href="#chart-output_hpf-48000"><code>postmix.hpf_coef.coeffs</code></a>: coeff_32 holds 8 values; order 4 needs 14'
  ;;
clean)
  expect 0 "$HERON" report "$ROUTE" --model "$MODEL" --rate 48000 -o "$T/r.html"
  contains "$T/r.html" 'validate finds nothing at these rates'
  [ "$(grep -c 'class="chart' "$T/r.html")" -eq 13 ] || fail "expected 13 charts at 48000 Hz"
  ;;
errors)
  expect 2 "$HERON" report "$T/none.txtpb" -o "$T/r.html"
  expect 2 "$HERON" report "$ROUTE" --rate 44k -o "$T/r.html"
  contains "$T/err" "--rate"
  expect 2 "$HERON" report "$ROUTE"
  expect 1 "$HERON" report "$ROUTE" --model "$MODEL" -o "$T/missing/r.html"
  [ ! -e "$T/r.html" ] || fail "a page was written on an input error"
  ;;
browser)
  # Headless Chromium opens the page from disk: no console message, no
  # request, a screenshot with something on it, every chart and finding.
  CHROMIUM=$(command -v chromium-headless-shell || true)
  if [ -z "$CHROMIUM" ]; then
    [ "${CI:-}" != true ] || fail "chromium-headless-shell is not installed (scripts/install-deps.sh installs it in CI)"
    echo "chromium-headless-shell is not installed; not run (QH_BROWSER_TEST=1 make deps installs it)"
    exit 0
  fi
  expect 4 "$HERON" report "$ROUTE" --model "$MODEL" -o "$T/r.html"
  python3 "$SRC/tests/tool/report_browser_check.py" "$CHROMIUM" "$T/r.html" "$T" "$CHARTS" 2 ||
    fail "the page does not open cleanly"
  ;;
esac
