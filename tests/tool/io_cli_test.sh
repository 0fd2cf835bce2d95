#!/usr/bin/env bash
# The heron tool: reading inputs, writing outputs, usage errors and round trips. Usage: io_cli_test.sh HERON SOURCE_DIR CASE
. "$(dirname "$0")/cli_lib.sh" "$@"

case "$CASE" in
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
*)
  fail "unknown case $CASE"
  ;;
esac
echo "PASS: $CASE"
