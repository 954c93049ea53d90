#!/usr/bin/env bash
# A ten-episode season (one without subtitles, one already in Spanish, one with image tracks
# only, one broken) through the queue against the same videos one by one, with the echo
# engine; and the memory the queue holds after each episode. Usage: queue-season.sh [BUILD]
# (ROUNDS=9 for more rounds).
set -euo pipefail
build=${1:-build/bench}
"$build/bench/velto-queue-season" "${ROUNDS:-5}"
