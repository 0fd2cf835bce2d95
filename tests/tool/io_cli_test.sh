#!/usr/bin/env bash
# The heron tool: reading inputs, writing outputs, usage errors and round
# trips. Usage: io_cli_test.sh HERON SOURCE_DIR CASE
. "$(dirname "$0")/cli_lib.sh" "$@"

# one_line_error STATUS SUBJECT CMD...: CMD exits STATUS with exactly one
# line on stderr, "heron: SUBJECT: ...".
one_line_error() {
  local status=$1 subject=$2; shift 2
  expect "$status" "$@"
  [ "$(wc -l <"$T/err")" -eq 1 ] || { cat "$T/err"; fail "'$*': not one line"; }
  grep -q -F -- "heron: $subject: " "$T/err" || { cat "$T/err"; fail "'$*': does not name $subject"; }
}

case "$CASE" in
round_trip)
  # convert --as-route gives a route populate takes as it is; from zeroed
  # records the only region that does not come back is the Brio high-pass,
  # rebuilt into coeff_32 while its loader reads coeff_16.
  expect 0 "$HERON" populate "$ROUTE" --model "$MODEL" --premix-out "$T/pre.bin" --postmix-out "$T/post.bin"
  expect 0 "$HERON" convert --premix "$T/pre.bin" --postmix "$T/post.bin" --with-room-models --as-route \
    -o "$T/route.txtpb"
  expect 0 "$HERON" populate "$T/route.txtpb" --premix-out "$T/pre2.bin" --postmix-out "$T/post2.bin"
  cmp "$T/pre.bin" "$T/pre2.bin" || fail "premix records differ"
  [ "$(cmp -l "$T/post.bin" "$T/post2.bin" | awk '$1 < 61325 || $1 > 61364' | wc -l)" -eq 0 ] \
    || fail "postmix records differ outside brio_hpf.coeffs"
  # fmt: text -> json -> binary -> text is the identity.
  expect 0 "$HERON" fmt "$T/route.txtpb" --output-format json -o "$T/r.json"
  contains "$T/err" "read as route"
  expect 0 "$HERON" fmt "$T/r.json" --output-format binary -o "$T/r.pb"
  expect 0 "$HERON" fmt "$T/r.pb" --type route -o "$T/r2.txtpb"
  cmp "$T/route.txtpb" "$T/r2.txtpb" || fail "fmt round trip changed the route"
  contains "$T/r2.txtpb" "coeff_16: \[-"
  one_line_error 2 "$T/r.pb" "$HERON" fmt "$T/r.pb"
  expect 0 "$HERON" fmt "$MODEL" -o "$T/m.txtpb"
  contains "$T/err" "read as model"
  ;;
outputs_are_never_clobbered)
  expect 0 "$HERON" populate "$ROUTE" --model "$MODEL" --premix-out "$T/pre.bin"
  # A device: written through, never replaced. A made node, not /dev/full.
  if mknod "$T/full" c 1 7 2>/dev/null; then
    one_line_error 1 "$T/full" "$HERON" convert --premix "$T/pre.bin" -o "$T/full"
    contains "$T/err" "No space left on device"
    [ -c "$T/full" ] || fail "the device node was replaced"
  fi
  # A pipe with a reader gets the bytes and stays a pipe.
  mkfifo "$T/fifo"
  cat "$T/fifo" >"$T/fifo.out" & reader=$!
  expect 0 "$HERON" convert --premix "$T/pre.bin" -o "$T/fifo"
  wait "$reader"
  [ -p "$T/fifo" ] && grep -q '^premix {' "$T/fifo.out" || fail "the pipe's reader got nothing"
  # A symlink: its target is replaced, with its permission bits.
  touch "$T/target" && chmod 640 "$T/target" && ln -s target "$T/link"
  expect 0 "$HERON" convert --premix "$T/pre.bin" -o "$T/link"
  [ -L "$T/link" ] && [ "$(stat -c %a "$T/target")" = 640 ] && grep -q steady "$T/target" \
    || fail "the link or the target's mode was not kept"
  # All or nothing: one output that cannot be written leaves the other alone.
  echo old >"$T/ok.bin"
  one_line_error 1 "$T/no/dir/x.bin" "$HERON" populate "$ROUTE" --premix-out "$T/ok.bin" --postmix-out "$T/no/dir/x.bin"
  [ "$(cat "$T/ok.bin")" = old ] || fail "ok.bin was replaced"
  [ -z "$(find "$T" -name '*heron-*')" ] || fail "a temporary file was left"
  ;;
input_errors_create_no_output)
  mkdir "$T/dir.txtpb"
  printf 'route: NOT_A_ROUTE\n' >"$T/bad.txtpb"
  printf '{\n  "route": "AR_OUT_USB",\n  "tech": [ { "heron_v1_1": { ,\n}}]}\n' >"$T/bad.json"
  head -c 100 /dev/zero >"$T/short.bin"
  printf 'x' >"$T/route.unknown"
  while IFS='|' read -r subject args; do
    # shellcheck disable=SC2086
    one_line_error 2 "$subject" "$HERON" $args --premix-out "$T/a.bin" --postmix-out "$T/b.bin"
  done <<ROWS
$T/missing.txtpb|populate $T/missing.txtpb
$T/dir.txtpb|populate $T/dir.txtpb
$T/bad.txtpb|populate $T/bad.txtpb
$T/bad.json|populate $T/bad.json
$T/short.bin|populate $ROUTE --premix-in $T/short.bin
$T/dir.txtpb|populate $ROUTE --model $T/dir.txtpb
--input-format|populate $ROUTE --input-format yaml
$T/route.unknown|populate $T/route.unknown
--rate|populate $ROUTE --rate -44100
ROWS
  [ ! -e "$T/a.bin" ] && [ ! -e "$T/b.bin" ] || fail "an output file was created on an input error"
  expect 2 "$HERON" populate "$T/bad.json"
  contains "$T/err" "line 3, column 31: "
  expect 2 "$HERON" populate "$T/bad.txtpb"
  contains "$T/err" "message: line [0-9]*, column [0-9]*: "
  one_line_error 2 "$T/dir.txtpb" "$HERON" dump "$T/dir.txtpb"
  ;;
usage_errors)
  while IFS='|' read -r subject args; do
    # shellcheck disable=SC2086
    one_line_error 2 "$subject" "$HERON" $args
  done <<'ROWS'
COMMAND|
frobnicate|frobnicate
design COMMAND|design
ROUTE|populate
--bogus|populate x.txtpb --bogus
--order|design butterworth --type low --cutoff 100 --order x
--premix-fader|convert --premix-fader 1,2,3
--rate|convert --rate -5
--route|convert --as-route --route AR_NOWHERE
--type|fmt x.json --type song
ROWS
  expect 0 "$HERON" --help
  expect 0 "$HERON" --version
  grep -q -E '^heron [0-9]+\.[0-9]+\.[0-9]+ \(library [0-9]+\.[0-9]+\.[0-9]+, protobuf 3\.21\.[0-9]+\)$' "$T/out" \
    || fail "--version: $(cat "$T/out")"
  # Room-mask bits the library ignores pass on, with a note naming them.
  expect 0 "$HERON" populate "$ROUTE" --model "$MODEL" --room-mask 31
  contains "$T/err" "ignored: 1, 16 (0x11)"
  expect 3 "$HERON" populate "$ROUTE" --room-mask -1
  contains "$T/err" "ignored: 0xfffffff1"
  ;;
json_floats)
  # A negative zero stays one, and every float has a decimal point.
  head -c 66108 /dev/zero >"$T/post.bin"
  expect 0 "$HERON" dump "$T/post.bin" --json
  off=$(grep -o '"name": "dist_prev\[0\]\.sense_band_coeffs_float32", "offset": [0-9]*' "$T/out" | grep -o '[0-9]*$')
  printf '\000\000\000\200' | dd of="$T/post.bin" bs=1 seek="$off" conv=notrunc 2>/dev/null
  expect 0 "$HERON" dump "$T/post.bin" --json
  contains "$T/out" 'sense_band_coeffs_float32", "offset": [0-9]*, "value": \[-0\.0, 0\.0, '
  ;;
diff_records_and_settings)
  # Records: one array element and one scalar changed, by name and offset.
  expect 0 "$HERON" populate "$ROUTE" --model "$MODEL" --premix-out "$T/a.bin" --postmix-out "$T/pa.bin"
  cp "$T/pa.bin" "$T/pb.bin"
  printf '\001\000' | dd of="$T/pb.bin" bs=1 seek=34392 conv=notrunc 2>/dev/null
  expect 0 "$HERON" diff "$T/pa.bin" "$T/pa.bin"
  expect 1 "$HERON" diff "$T/pa.bin" "$T/pb.bin"
  contains "$T/out" '^ *34392  front_room.coeffs\[512\]: [-0-9]* -> 1$'
  contains "$T/out" '^1 difference'
  one_line_error 2 "$T/a.bin" "$HERON" diff "$T/pa.bin" "$T/a.bin"
  # --response: the limiter's low crossover designed at 400 instead of 300 Hz.
  sed 's/custom_low_cross: 300/custom_low_cross: 400/' "$ROUTE" >"$T/x.txtpb"
  expect 0 "$HERON" populate "$T/x.txtpb" --model "$MODEL" --postmix-out "$T/px.bin"
  expect 1 "$HERON" diff "$T/pa.bin" "$T/px.bin" --response
  contains "$T/out" '^response mbhl_coef.low_cross_coeffs: up to [0-9.]* dB at [0-9]* Hz$'
  grep -q '^response mbhl_coef.mid' "$T/out" && fail "an unchanged filter has a response line"
  # Settings: one nested field, across encodings.
  sed 's/intensity_level: 10/intensity_level: 11/' "$ROUTE" >"$T/b.txtpb"
  expect 0 "$HERON" fmt "$ROUTE" --output-format json -o "$T/a.json"
  expect 1 "$HERON" diff "$T/a.json" "$T/b.txtpb" --json
  contains "$T/out" '"path": "tech\[0\].heron_v1_1.premix.steady.intensity_level", "old": "10", "new": "11"'
  one_line_error 2 "$MODEL" "$HERON" diff "$ROUTE" "$MODEL"
  ;;
*)
  fail "unknown case $CASE"
  ;;
esac
echo "PASS: $CASE"
