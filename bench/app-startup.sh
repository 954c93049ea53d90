#!/usr/bin/env bash
# The desktop app's start-up: time from launch to the first shown window and resident memory
# at rest (medians of ROUNDS runs, default 10), then the longest GUI-thread stall while a job
# translates a sample video with the echo engine. Runs under Xvfb when there is no display.
set -euo pipefail
build=${1:-build/bench}
here=$(cd "$(dirname "$0")" && pwd)
probe="$build/bench/velto-app-startup"
rounds=${ROUNDS:-10}
source "$here/timing.bash"

if [ -z "${DISPLAY:-}" ] && [ -z "${WAYLAND_DISPLAY:-}" ] && [ -z "${VELTO_UNDER_XVFB:-}" ]; then
  exec env VELTO_UNDER_XVFB=1 xvfb-run -a -s "-screen 0 1920x1080x24" "$0" "$@"
fi

shown="" rss=""
for _ in $(seq "$rounds"); do
  output=$(VELTO_LAUNCHED_NS=$(date +%s%N) "$probe" 2> /dev/null)
  shown+=" $(awk '/^shown_ms/ { print $2 }' <<< "$output")"
  rss+=" $(awk '/^rss_kb/ { print $2 }' <<< "$output")"
done
echo "launch to first shown window: median $(median <<< "$shown") ms, fastest $(minimum <<< "$shown") ms"
echo "memory at rest: median $(( $(median <<< "$rss") / 1024 )) MB resident"

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
"$here/../scripts/make-sample" "$work/sample.mkv" > /dev/null
output=$("$probe" "$work/sample.mkv" 2> /dev/null)
echo "longest GUI stall while translating the sample: $(awk '/^stall_ms/ { print $2 }' <<< "$output") ms"
grep '^failed' <<< "$output" || true
