#!/usr/bin/env bash
# Names the designer-sweep cases in which two sweep outputs differ, with the
# first differing 32-bit words of each (as hex, little-endian as stored).
# usage: explain_diff.sh HOST_FILE ARM_FILE [MAX_CASES]
# HOST_FILE.index maps byte offsets to case labels (written by designer_sweep).
set -euo pipefail
A=$1 B=$2 MAX=${3:-25}
word() { od -An -tx4 -j "$2" -N 4 "$1" | tr -d ' '; }

{ cmp -l "$A" "$B" 2>/dev/null || true; } | awk -v max="$MAX" '
  NR == FNR { off[n] = $1; $1 = ""; label[n++] = substr($0, 2); next }
  {
    o = $1 - 1
    while (i + 1 < n && off[i + 1] <= o) i++
    if (!(i in count)) order[k++] = i
    count[i]++
    w = int((o - off[i]) / 4) * 4
    if (!((i, w) in seen) && words[i] < 3) { seen[i, w] = 1; words[i]++; at[i] = at[i] " " off[i] + w }
  }
  END {
    printf "%d differing bytes in %d cases", NR - n, k
    if (k > max) printf " (first %d shown)", max
    printf "\n"
    for (j = 0; j < k && j < max; j++) print count[order[j]] "\t" label[order[j]] "\t" at[order[j]]
  }' "$A.index" - |
while IFS=$'\t' read -r count label offsets; do
  if [ -z "${label:-}" ]; then echo "$count"; continue; fi
  line="  $label: $count bytes;"
  for o in $offsets; do line="$line @$o host $(word "$A" "$o") armhf $(word "$B" "$o")"; done
  echo "$line"
done
