#!/bin/sh
# CPU use of a process whose worker is initialised against the simulated modem and left idle, with the
# one-second detect timer polling. Usage: bench/worker_idle_cpu.sh [build folder] [seconds]
# Prints the share of one core used over the window (user + system time of the whole process).
set -eu

build=${1:-build}
seconds=${2:-30}
program="$build/tests/e2e_tests"
if [ ! -x "$program" ]; then
    echo "no $program: build the e2e_tests target first" >&2
    exit 2
fi

home=$(mktemp -d)
out=$(mktemp)
trap 'rm -rf "$home" "$out"' EXIT

HOME="$home" DIALTONE_IDLE_SECONDS=$((seconds + 5)) "$program" --gtest_also_run_disabled_tests \
    --gtest_filter='WorkerE2E.DISABLED_IdleForBenchmark' >"$out" 2>/dev/null &
pid=$!

# Wait for the worker to be initialised.
tries=0
until grep -q IDLE_START "$out"; do
    tries=$((tries + 1))
    if [ "$tries" -gt 200 ] || ! kill -0 "$pid" 2>/dev/null; then
        echo "the worker did not start" >&2
        kill "$pid" 2>/dev/null || true
        exit 1
    fi
    sleep 0.1
done

ticks() { awk '{ print $14 + $15 }' "/proc/$pid/stat"; }
hz=$(getconf CLK_TCK)
start=$(ticks)
sleep "$seconds"
end=$(ticks)
wait "$pid" || true

awk -v t=$((end - start)) -v hz="$hz" -v s="$seconds" \
    'BEGIN { printf "worker idle CPU: %.2f%% of one core over %d s (%d ticks at %d/s)\n",
                 100 * t / hz / s, s, t, hz }'
