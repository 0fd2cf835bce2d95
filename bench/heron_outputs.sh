#!/bin/sh
# Writes the heron tool's outputs for the shipped examples and a spread of
# designs into OUTDIR, one file per command, so two builds can be compared
# byte for byte after an optimisation:
#   bench/heron_outputs.sh build-a/bin/heron /tmp/a
#   bench/heron_outputs.sh build-b/bin/heron /tmp/b && diff -r /tmp/a /tmp/b
set -eu
HERON=$1
OUT=$2
SRC=$(cd "$(dirname "$0")/.." && pwd)
mkdir -p "$OUT"
ROUTE=$SRC/examples/headphone_route.txtpb
MODEL=$SRC/examples/listening_model.txtpb

for rate in 48000 44100 32000; do
  "$HERON" populate "$ROUTE" --model "$MODEL" --rate $rate \
    --premix-out "$OUT/premix_$rate.bin" --postmix-out "$OUT/postmix_$rate.bin" \
    > "$OUT/populate_$rate.txt" || true
  # ... and back: the records rebuilt into settings, with and without rooms.
  "$HERON" convert --rate $rate --premix "$OUT/premix_$rate.bin" --postmix "$OUT/postmix_$rate.bin" \
    -o "$OUT/convert_$rate.txtpb" || true
  "$HERON" convert --rate $rate --postmix "$OUT/postmix_$rate.bin" --with-room-models \
    --output-format binary -o "$OUT/convert_rooms_$rate.pb" || true
done

n=0
run() {  # run NAME ARGS...: one design, JSON output
  name=$1; shift
  n=$((n + 1))
  "$HERON" design "$@" --json > "$OUT/design_${n}_$name.json" 2>&1 || true
}
for fmt in float fxp32 fxp24 fxp16; do
  for order in 1 2 3 4 5 8; do
    for rate in 48000 44100; do
      run bw butterworth --format $fmt --rate $rate --type low --cutoff 1000 --order $order
      run bw butterworth --format $fmt --rate $rate --type high --cutoff 120 --order $order
      run bw butterworth --format $fmt --rate $rate --type low --cutoff 20 --order $order
    done
  done
  run thumpx thumpx --format $fmt --speaker-size 100
  run thumpx thumpx --format $fmt --rate 44100 --speaker-size 40 --bass-ctrl 1
done
for fmt in float fxp32 fxp32-noscale fxp24 fxp16; do
  run peq peq --format $fmt --band 0,1000,1.4,6
  run peq peq --format $fmt --band 1,100,0.7,-6 --band 2,8000,0.7,4 --band 5,300,20,0 \
    --band 6,2000,1.5,0 --band 8,500,3,-9
  run peq peq --format $fmt --rate 44100 --band 3,200,0.7,3 --band 4,60,0.7,0 --band 7,5000,10,0 \
    --band 9,0,1,-3 --band 0,12000,2,2,1 --band 0,31.5,0.5,12 --band 1,40,1,3 \
    --band 2,16000,1,-3 --band 5,50,20,0 --band 6,19000,20,0
done
for fmt in float fxp32; do
  run xover crossover --format $fmt --freq 300
  run xover crossover --format $fmt --rate 44100 --freq 5000
done
run distprev distprev --nf-band-ct 6 --nf-base-freq 150 --nf-width 1 --nf-slope -3 --nf-base-attn-max -12
run distprev distprev --nf-band-ct 4 --nf-spacing 1 --nf-base-freq 220 --nf-thld -20 --nf-sense -30
