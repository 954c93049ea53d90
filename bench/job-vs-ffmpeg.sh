#!/usr/bin/env bash
# Times the whole job (veltomkv-cli with the echo engine, no cache) against the bare ffprobe and
# ffmpeg commands it wraps (probe, extract, mux, probe the result), on two generated films side
# by side: ~311 MB with 20 minutes and 1,500 cues, and ~1 GB of 720p. Also reports
# veltomkv-cli's peak memory, in a run of its own. The rounds alternate who goes first, since a
# run right after another big write is slower; the fastest runs are shown beside the medians,
# since a big write now and then waits for the disk.
# ROUNDS=n changes the number of rounds (default 5); FILMS="film" leaves the 1 GB one out.
# Linux: the memory is read from /proc.
set -euo pipefail
build=${1:-build/bench}
cli=${CLI:-$build/cli/veltomkv-cli} # CLI=path times another build
work="$build/media-bench"
rounds=${ROUNDS:-5}
films=${FILMS:-film big}

source "$(dirname "$0")/timing.bash"
remove_outputs() {
  rm -f "$work/job.mkv" "$work/bare.mkv" "$work/bare.srt" "$work/times" "$work/stderr"
}
trap remove_outputs EXIT

# Writes the wall, user and system seconds of a command (with the processes it waited for)
# into $work/times; the command's own error output is shown only when it fails.
timed() {
  local TIMEFORMAT='%3R %3U %3S'
  if ! { time "$@" > /dev/null 2> "$work/stderr"; } 2> "$work/times"; then
    cat "$work/stderr" >&2
    return 1
  fi
}
# Appends the last timed run to the named lists of wall, user and system seconds.
record() {
  local -n wall_list=$1 user_list=$2 sys_list=$3
  local wall user sys
  read -r wall user sys < "$work/times"
  wall_list+=" $wall" user_list+=" $user" sys_list+=" $sys"
}
run_job() {
  timed "$cli" --engine echo --no-cache --output "$work/job.mkv" "$source"
  record job job_user job_sys
}
# The peak resident memory of veltomkv-cli alone (the tools it runs are processes of their
# own), read from /proc while it runs: VmHWM only grows, so the last reading is the peak.
# A run of its own: the polling would slow the timed ones down and end them late.
peak_memory() {
  local pid peak=0 key value
  "$cli" --engine echo --no-cache --output "$work/job.mkv" "$source" > /dev/null &
  pid=$!
  while [ -r "/proc/$pid/status" ]; do
    while read -r key value _; do
      [ "$key" = "VmHWM:" ] && peak=$value
    done < "/proc/$pid/status" 2> /dev/null || true
    kill -0 "$pid" 2> /dev/null || break
    sleep 0.05
  done
  wait "$pid"
  remove_outputs
  awk -v k="$peak" 'BEGIN { printf "%.1f", k / 1024 }'
}
# What the job runs, in its order, with the job's own arguments.
probe() {
  ffprobe -v error -print_format json -show_streams -select_streams s -show_format "$1" > /dev/null
}
bare_commands() {
  probe "$source"
  ffmpeg -y -v error -i "$source" -map 0:s:0 -c:s copy "$work/bare.srt"
  ffmpeg -y -v error -i "$source" -sub_charenc UTF-8 -i "$work/bare.srt" -map 0 -map 1:0 -c copy \
    -map_metadata 0 -map_chapters 0 -metadata:s:s:1 language=spa \
    -metadata:s:s:1 "title=Español (traducido)" -disposition:s:1 0 "$work/bare.mkv"
  probe "$work/bare.mkv"
}
run_bare() {
  timed bare_commands
  record bare bare_user bare_sys
}

m() { median <<< "$1"; }
low() { minimum <<< "$1"; }
for film in $films; do
  source=$("$(dirname "$0")/make-big-mkv" "$work" "$film")
  cat "$source" > /dev/null # both start with the file in the page cache
  job="" job_user="" job_sys="" bare="" bare_user="" bare_sys=""
  for ((round = 1; round <= rounds; round++)); do
    if ((round % 2)); then order="run_job run_bare"; else order="run_bare run_job"; fi
    for contender in $order; do
      "$contender"
      remove_outputs
      sync
    done
  done
  printf '\nfile: %s (%d MB), %d rounds: median (fastest)\n' "$source" \
    $(($(stat -c %s "$source" 2>/dev/null || stat -f %z "$source") / 1000000)) "$rounds"
  printf 'veltomkv-cli, whole job (echo engine):    %s s (%s s)\n' "$(m "$job")" "$(low "$job")"
  printf 'bare ffprobe + extract + mux + ffprobe:   %s s (%s s)\n' "$(m "$bare")" "$(low "$bare")"
  printf 'CPU, user + system (medians): job %s + %s s, bare %s + %s s\n' "$(m "$job_user")" \
    "$(m "$job_sys")" "$(m "$bare_user")" "$(m "$bare_sys")"
  printf 'job / bare ffmpeg: %s (fastest runs: %s; aim: at most 1.05)\n' \
    "$(ratio "$(m "$job")" "$(m "$bare")")" "$(ratio "$(low "$job")" "$(low "$bare")")"
  printf 'veltomkv-cli peak memory: %s MB\n' "$(peak_memory)"
done
