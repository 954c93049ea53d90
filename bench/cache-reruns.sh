#!/usr/bin/env bash
# Times three runs in a row of the whole job (echo engine) on one video with 10,000 cues, with
# the translation cache and without it, from a fresh home, at the default batch size and at 5.
# Each run is a new start of the program, so the cache never hits: what this shows is what the
# cache costs, and whether that cost grows with the runs before (it must not).
# Also prints the size of the cache file after each run.
set -euo pipefail
build=${1:-build/bench}
cli=${CLI:-$build/cli/veltomkv-cli} # CLI=path times another build
work="$build/media-bench"
source=$("$(dirname "$0")/make-big-mkv" "$work" cues)
runs=${RUNS:-3}

source "$(dirname "$0")/timing.bash"
home=$(mktemp -d)
trap 'rm -rf "$home" "$work/cues.es.mkv"' EXIT

# Prints the seconds of each run, and the cache file's size in kB after it.
series() {
  local start sizes="" times="" file="$home/.local/share/VeltoMKV/Cache/cues.json"
  rm -rf "${home:?}"/.local
  for ((run = 1; run <= runs; run++)); do
    start=$(now)
    HOME=$home XDG_DATA_HOME="" "$cli" --engine echo --output "$work/cues.es.mkv" "$@" \
      "$source" > /dev/null
    times+=" $(elapsed "$start" "$(now)")"
    if [ -e "$file" ]; then sizes+=" $(($(wc -c < "$file") / 1000))"; else sizes+=" -"; fi
  done
  printf '%-34s runs:%s s   cache file:%s kB\n' "$*" "$times" "$sizes"
}

echo "10,000 cues, $runs runs each from a fresh home"
for batch in 40 5; do
  series --batch-size "$batch"
  series --batch-size "$batch" --no-cache
done
