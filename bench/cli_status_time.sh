#!/bin/sh
# Wall-clock time of `dialtone --simulate status`: starting the simulated modem, the worker, the modem's
# initialisation (its escape wait is one second), the status requests, and stopping everything again.
# Usage: bench/cli_status_time.sh [build folder] [runs]. Prints each run and the slowest; the goal is 1.5 s.
set -eu

build=${1:-build}
runs=${2:-5}
program="$build/src/cli/dialtone"
if [ ! -x "$program" ]; then
    echo "no $program: build the dialtone target first" >&2
    exit 2
fi

home=$(mktemp -d)
trap 'rm -rf "$home"' EXIT

worst=0
i=0
while [ "$i" -lt "$runs" ]; do
    start=$(date +%s%N)
    HOME="$home" "$program" --simulate status >/dev/null
    end=$(date +%s%N)
    ms=$(((end - start) / 1000000))
    echo "run $((i + 1)): ${ms} ms"
    [ "$ms" -gt "$worst" ] && worst=$ms
    i=$((i + 1))
done
echo "slowest: ${worst} ms (goal: 1500 ms)"
[ "$worst" -le 1500 ]
