#!/bin/bash
# Measures how long a new process takes to draw a medium tile at scale 2 into a PNG file, and compares it with rsvg-convert,
# which draws an SVG file of the same tile. The two take turns. Prints the medians in milliseconds, and their ratio.
#
#     bench/cold_bench.sh [FOLDER OF THE PROGRAMS] [RUNS]
set -eu

programs=${1:-build/release/bin}
runs=${2:-41}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
export XDG_DATA_HOME="$work/data"

cat >"$work/report.json" <<'REPORT'
{"schema": "tarno.remote.v1", "device_name": "Kivo's Mac", "status": "locked", "reason": "Locked by the user.",
 "face_present": true, "companion_present": true, "input_idle_seconds": 3}
REPORT
mkdir -p "$XDG_DATA_HOME"
"$programs/tarno-status" save "$work/report.json" >"$work/saved"
"$programs/tarno-widget" render --family medium --scale 2 --output "$work/tile.svg"

# Runs a command and prints how long it took. Starts no other process while it measures.
microseconds() {
  local start=${EPOCHREALTIME/./} end
  "$@"
  end=${EPOCHREALTIME/./}
  echo $((end - start))
}

i=0
while [ "$i" -lt "$runs" ]; do
  microseconds "$programs/tarno-widget" render --family medium --scale 2 --output "$work/ours.png" >>"$work/ours"
  microseconds rsvg-convert --zoom 2 "$work/tile.svg" --output "$work/peer.png" >>"$work/peer"
  i=$((i + 1))
done

median() { sort -n "$1" | sed -n "$((runs / 2 + 1))p"; }
awk -v ours="$(median "$work/ours")" -v peer="$(median "$work/peer")" \
  'BEGIN { printf "cold start: ours %.2f ms, rsvg-convert %.2f ms, ratio %.2f\n", ours / 1000, peer / 1000, ours / peer }'
