#!/usr/bin/env bash
# Regenerates the seed corpora under fuzz/corpus/ from the shipped examples
# and a few hand-made hostile messages (written below as text and encoded
# with protoc). Needs protoc and, for the records seeds, a built heron tool:
#   fuzz/make_seeds.sh [build-dir]      (default: build)
set -euo pipefail
cd "$(dirname "$0")/.."
BUILD=${1:-build}
OUT=fuzz/corpus
TMP=$(mktemp -d)
trap 'rm -rf "$TMP"' EXIT

encode() {  # encode <message type> < text > binary
  protoc --encode="$1" -I proto proto/*.proto 2>/dev/null
}
le32() {  # four little-endian bytes of $1
  local v=$1
  printf "\\x$(printf %02x $((v & 255)))\\x$(printf %02x $((v >> 8 & 255)))"
  printf "\\x$(printf %02x $((v >> 16 & 255)))\\x$(printf %02x $((v >> 24 & 255)))"
}
byte() { printf "\\x$(printf %02x "$1")"; }
ramp() {  # ramp <count> <first>: comma-separated count values
  seq -s, "$2" $(($2 + $1 - 1))
}

# Rate selectors of the harness input: 0 48000, 1 44100, 2 32000, 3 8000, 12 0.
R48=0 R44=1 R32=2 R8=3 R0=12

# ---- hand-made hostile messages ---------------------------------------------
cat > "$TMP/hostile_model.txtpb" <<TXT
rooms { uuid: "00000000-0000-0000-0000-0000000000a1" brirLength: 9 channelMask: 3 numPairs: 1
        coeffTables { sampleRate: 48000 coeff_16: [$(ramp 6151 1)] } }
rooms { uuid: "00000000-0000-0000-0000-0000000000A2"
        coeffTables { sampleRate: 48000 coeff_16: [$(ramp 6150 -3000)] } }
rooms { uuid: "{00000000-0000-0000-0000-0000000000a3}" coeffTables { sampleRate: 48000 } }
headphones { uuid: "00000000-0000-0000-0000-0000000000b1" ihpirLength: 129
             coeffTables { sampleRate: 48000 coeff_16: [$(ramp 282 -100)] } }
headphones { uuid: "00000000-0000-0000-0000-0000000000b2" ihpirLength: 100
             coeffTables { sampleRate: 48000 coeff_16: [$(ramp 300 40000)] } }
headphones { uuid: "00000000-0000-0000-0000-0000000000b3" ihpirLength: 4000000000
             coeffTables { sampleRate: 48000 coeff_16: [1, 2, 3] } }
aeqs { uuid: "00000000-0000-0000-0000-0000000000c1"
       coefficient_table { iirOrder: -5 iirCoefs { sampleRate: 48000 coeff_32: [$(ramp 80 1)] } } }
aeqs { uuid: "00000000-0000-0000-0000-0000000000c2" audio_route_info { route: AR_OUT_LINEOUT } }
aeqs { uuid: "00000000-0000-0000-0000-0000000000c3"
       coefficient_table { iirCoefs { sampleRate: 44100 coeff_32: [1] } }
       coefficient_table { iirCoefs { sampleRate: 48000 coeff_32: [2] } }
       coefficient_table { iirCoefs { sampleRate: 48000 coeff_32: [$(ramp 75 3)] } } }
TXT

cat > "$TMP/hostile_route.txtpb" <<TXT
route: AR_OUT_ATTACHED0
tech { heron {} }
tech { heron_v1_1 {
  premix { bypass_mode: [$(ramp 9 1)]
           enhance2 { htest: [$(ramp 10 1)] ref_htest: [5, -1, 7, 8, 9, 10, 11, 12] }
           steady { enable: 1 intensity_level: 70000 } }
  postmix {
    lyra_multi_ch: -1 lyra_input_gain: [$(ramp 8 10)] bypass_hpeq: [$(ramp 7 0)]
    aeq_enable: [1] bypass_mode: [$(ramp 6 0)]
    brio { enable: 1 input_gain: 99999 thumpx { enable: 1 speaker_size: 12 input_gain: -40000 } }
    lyra { super_stereo_coef: [1, 2, 3, 4, 5] }
    enhance2 { ref_htest: [1, 2, -3] }
    hpf_coef { order: 4 coeffs { sampleRate: 48000 coeff_32: [$(ramp 25 1)] } }
    brio_hpf_coef { order: 2 hpf_coeffs { sampleRate: 48000 coeff_16: [$(ramp 21 70000)] }
                    hpf_coeffs { sampleRate: 48000 coeff_16: [$(ramp 20 -40000)] } }
    brio_xover_coef { order: 3 lpf_coeffs { sampleRate: 48000 coeff_16: [$(ramp 30 1)] }
                      hpf_coeffs { sampleRate: 48000 coeff_16: [$(ramp 15 -7)] } }
    thumpx_coef { coeffs { sampleRate: 48000 coeff_32: [$(ramp 70 1)] } }
    mbhl { enable: 1 dist_prev_enable: 1 }
    mbhl_coef { low_cross_coeffs { sampleRate: 48000 coeff_32: [$(ramp 15 1)] }
                mid_cross_coeffs { sampleRate: 48000 coeff_32: [$(ramp 13 1)] } }
    mbhl_dist_prev {
      sense_config { bandCount: 9 bandSosCount: [$(ramp 8 1)] bandCoeffs: [$(ramp 150 1)]
                     bandCoeffsFloat32: [$(ramp 110 1)] }
      notch_config { bandCount: 7 bandAttenuationMax: [$(ramp 8 1)] bandGainScalars: [$(ramp 7 1)]
                     bandSosCount: [$(ramp 9 1)] smoothers: [$(ramp 12 1)] bandCoeffs: [$(ramp 146 1)]
                     bandCoeffsFloat32: [$(ramp 109 1)] } }
    mbhl_dist_prev {
      sense_config { bandSosCount: [1] }
      notch_config { smoothers: [1, 2] } }
    frontRoom { uuid: "00000000-0000-0000-0000-0000000000a1" }
    wideRoom { uuid: "00000000-0000-0000-0000-0000000000a2" }
    hpeqCoef { uuid: "00000000-0000-0000-0000-0000000000b1" }
    hpeqCoef { uuid: "00000000-0000-0000-0000-0000000000b2" }
    aeqCoef { uuid: "00000000-0000-0000-0000-0000000000c1" }
    aeqCoef { uuid: "00000000-0000-0000-0000-0000000000c3" }
  }
  DesignerParameters {
    mbhl_design_params { sampling_rate: 48000 custom_low_cross: 24000 custom_mid_cross: -5 }
    mbhl_nf_design_params { nf_band_ct: 9 nf_base_freq: 30000 nf_base_q: 0 nf_slope: 1e30 }
    mbhl_nf_design_params { nf_band_ct: -3 nf_thld: nan nf_attk_ms: inf }
  }
} }
TXT

cat > "$TMP/design_route.txtpb" <<TXT
route: AR_OUT_BLUETOOTH
tech { heron_v1_1 {
  postmix {
    brio { enable: 1 thumpx { enable: 1 speaker_size: 12 } }
    thumpx_coef { filterDesignParams { custom_speaker_size: 600 bass_ctrl: 1e300 hp_ratio: -0.0
                  ext_bass: nan lp_ratio: inf pre_lp_freq: -1e40 harm_hp_freq: 3.4028236e38
                  clip_level: 5e-324 sampling_rate: 48000 } }
    mbhl { enable: 1 dist_prev_enable: 1 }
    mbhl_dist_prev { sense_config {} notch_config {} }
    hpeqCoef { uuid: "" }
    model { rooms { uuid: "x" coeffTables { sampleRate: 48000 coeff_16: [1] } }
            headphones { uuid: "" coeffTables { sampleRate: 48000 coeff_16: [$(ramp 400 1)] } } }
  }
  DesignerParameters {
    mbhl_design_params { sampling_rate: 48000 custom_low_cross: 300 custom_mid_cross: 5000 }
    mbhl_nf_design_params { nf_mode: 1 nf_band_ct: 6 nf_base_freq: 150 nf_spacing: 1 nf_width: 1 }
    mbhl_nf_design_params { nf_mode: 2 nf_band_ct: 2147483647 nf_base_freq: 23999 nf_base_q: 1e-45 }
  }
} }
TXT

ROUTE=quill.pb.hub.RouteConfiguration
MODEL=quill.pb.model.listeningModel
encode $ROUTE < examples/headphone_route.txtpb > "$TMP/example_route.bin"
encode $MODEL < examples/listening_model.txtpb > "$TMP/example_model.bin"
for m in hostile_route design_route; do encode $ROUTE < "$TMP/$m.txtpb" > "$TMP/$m.bin"; done
encode $MODEL < "$TMP/hostile_model.txtpb" > "$TMP/hostile_model.bin"

# ---- route: rate, room mask, load_defaults, then length-prefixed messages ----
route_seed() {  # route_seed <name> <rate> <mask> <route file> [model files...]
  local name=$1 rate=$2 mask=$3 route=$4
  shift 4
  {
    byte "$rate"; byte "$mask"; byte 1
    le32 "$(stat -c %s "$route")"; cat "$route"
    for m in "$@"; do le32 "$(stat -c %s "$m")"; cat "$m"; done
  } > "$OUT/route/$name"
}
rm -rf "$OUT"
mkdir -p "$OUT/route" "$OUT/records" "$OUT/designers"
route_seed example_48k $R48 14 "$TMP/example_route.bin" "$TMP/example_model.bin"
route_seed example_44k $R44 2 "$TMP/example_route.bin" "$TMP/example_model.bin"
route_seed example_no_models $R32 8 "$TMP/example_route.bin"
route_seed hostile_48k $R48 14 "$TMP/hostile_route.bin" "$TMP/hostile_model.bin" "$TMP/example_model.bin"
route_seed hostile_rate0 $R0 15 "$TMP/hostile_route.bin" "$TMP/hostile_model.bin"
route_seed design_48k $R48 14 "$TMP/design_route.bin" "$TMP/hostile_model.bin"
route_seed design_8k $R8 4 "$TMP/design_route.bin"

# ---- records: rate, second rate, flags, fader values, then record bytes ------
records_seed() {  # records_seed <name> <flags> <body file or ->
  {
    byte $R48; byte $R44; byte "$2"
    for v in 1 1 0 1 0; do le32 $v; done
    if [ "$3" != - ]; then cat "$3"; fi
  } > "$OUT/records/$1"
}
HERON=$BUILD/bin/heron
if [ -x "$HERON" ]; then
  "$HERON" populate examples/headphone_route.txtpb --model examples/listening_model.txtpb \
    --premix-out "$TMP/premix.bin" --postmix-out "$TMP/postmix.bin" > /dev/null || true
  # The premix record, then the postmix control part and the coefficient
  # regions after the rooms (the room regions are left to the repetition).
  { cat "$TMP/premix.bin"; head -c 488 "$TMP/postmix.bin"; } > "$TMP/ctrl.bin"
  { cat "$TMP/premix.bin"; head -c 488 "$TMP/postmix.bin"; tail -c +58009 "$TMP/postmix.bin"; } > "$TMP/tail.bin"
  records_seed example_ctrl 7 "$TMP/ctrl.bin"
  records_seed example_regions 3 "$TMP/tail.bin"
fi
records_seed pattern_only 15 -
printf '\xff\x7f\x00\x80' > "$TMP/edges.bin"
records_seed edge_words 3 "$TMP/edges.bin"

# ---- designers: operation, then parameters --------------------------------
for op in $(seq 0 24); do
  { byte "$op"; for i in $(seq 1 16); do byte $((i * 37 % 256)); byte $((op * 11 % 224)); done; } \
    > "$OUT/designers/op$(printf %02d "$op")"
done
du -sh "$OUT"/*
