#!/usr/bin/env bash
# Times our extract + mux of a ~1 GB MKV against the two bare ffmpeg commands that do the
# same work and against cp of the same file (what the disk allows). The generated video is
# kept in the build folder and reused; every output is removed after its run.
# ROUNDS=n changes the number of rounds (default 6); VERBOSE=1 prints every sample.
set -euo pipefail
build=${1:-build/bench}
driver="$build/bench/velto-media-extract-mux"
work="$build/media-bench"
source=$("$(dirname "$0")/make-big-mkv" "$work")

rounds=${ROUNDS:-6}
source "$(dirname "$0")/timing.bash"
remove_outputs() {
  rm -f "$work/out.mkv" "$work/bare.mkv" "$work/copy.mkv" "$work"/source_*.srt "$work/bare.srt"
}
clean() {
  remove_outputs
  sync # each run starts without the previous one's writes still pending
}
trap remove_outputs EXIT

size=$(stat -c %s "$source" 2>/dev/null || stat -f %z "$source")
cat "$source" > /dev/null # every contender starts with the file in the page cache
clean

run_ours() {
  local e m
  read -r e m <<< "$("$driver" "$source" "$work" "$work/out.mkv")"
  ours_extract+=" $e" ours_mux+=" $m"
  ours+=" $(awk -v a="$e" -v b="$m" 'BEGIN { printf "%.3f", a + b }')"
}
run_bare() {
  local start middle end
  start=$(now)
  ffmpeg -y -v error -i "$source" -map 0:2 -c:s copy "$work/bare.srt"
  middle=$(now)
  ffmpeg -y -v error -i "$source" -sub_charenc UTF-8 -i "$work/bare.srt" -map 0 -map 1:0 -c copy \
    -map_metadata 0 -map_chapters 0 -metadata:s:s:1 language=spa -metadata:s:s:1 title=Español \
    -disposition:s:0 0 -disposition:s:1 default "$work/bare.mkv"
  end=$(now)
  bare_extract+=" $(elapsed "$start" "$middle")" bare_mux+=" $(elapsed "$middle" "$end")"
  bare+=" $(elapsed "$start" "$end")"
}
run_cp() {
  local start
  start=$(now)
  cp "$source" "$work/copy.mkv"
  copy+=" $(elapsed "$start" "$(now)")"
}

# The run that follows another large write is often the slower one, so the order alternates.
ours_extract="" ours_mux="" ours="" bare_extract="" bare_mux="" bare="" copy=""
for ((round = 1; round <= rounds; round++)); do
  if ((round % 2)); then order="run_ours run_bare run_cp"; else order="run_bare run_ours run_cp"; fi
  for contender in $order; do
    "$contender"
    clean
  done
done

m() { median <<< "$1"; }
if [ -n "${VERBOSE:-}" ]; then
  printf 'samples, ours:%s\n         bare:%s\n         cp:%s\n' "$ours" "$bare" "$copy"
fi
printf 'file: %s (%d MB), median of %d rounds, seconds\n' "$source" $((size / 1000000)) "$rounds"
printf '%-26s %8s %8s %8s\n' "" extract mux total
printf '%-26s %8s %8s %8s\n' "VeltoKit extract + mux" "$(m "$ours_extract")" "$(m "$ours_mux")" "$(m "$ours")"
printf '%-26s %8s %8s %8s\n' "bare ffmpeg, two commands" "$(m "$bare_extract")" "$(m "$bare_mux")" "$(m "$bare")"
printf '%-26s %8s %8s %8s\n' "cp" "" "" "$(m "$copy")"
printf 'ours / bare ffmpeg: %s   ours / cp: %s   bare ffmpeg / cp: %s\n' \
  "$(ratio "$(m "$ours")" "$(m "$bare")")" "$(ratio "$(m "$ours")" "$(m "$copy")")" \
  "$(ratio "$(m "$bare")" "$(m "$copy")")"
