# Sourced by the shell benchmarks: wall-clock stamps, differences, ratios and medians.
now() { date +%s.%N; }
elapsed() { awk -v a="$1" -v b="$2" 'BEGIN { printf "%.3f", b - a }'; }
ratio() { awk -v a="$1" -v b="$2" 'BEGIN { printf "%.2f", a / b }'; }
# The median of the numbers in a blank-separated list on standard input.
median() { tr ' ' '\n' | sed '/^$/d' | sort -g | awk '{ v[NR] = $1 } END { print v[int((NR + 1) / 2)] }'; }
# The smallest number of such a list: the run least disturbed by the rest of the machine.
minimum() { tr ' ' '\n' | sed '/^$/d' | sort -g | head -n 1; }
