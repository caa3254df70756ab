#!/bin/sh
# dialtoned against the simulated modem on a private session bus: the median wall-clock time of
# `dialtone status` through the service (goal 50 ms) and of a property read with busctl (goal 10 ms), the
# service's CPU use while idle (goal below 0.5 % of a core) and its resident memory (goal below 30 MB).
# Usage: bench/service_status_time.sh [build folder] [runs] [idle seconds]. Exits 1 when a figure misses.
set -eu

build=${1:-build}
runs=${2:-20}
idle=${3:-30}
tool="$build/src/cli/dialtone"
service="$build/src/dialtoned/dialtoned"
simulator="$build/tools/modemsim/dialtone-modemsim"
for program in "$tool" "$service" "$simulator"; do
    if [ ! -x "$program" ]; then
        echo "no $program: build the dialtone, dialtoned and dialtone-modemsim targets first" >&2
        exit 2
    fi
done
for command in dbus-daemon busctl; do
    command -v "$command" >/dev/null || { echo "$command is missing (scripts/bootstrap installs it)" >&2; exit 2; }
done
service=$(realpath "$service")

work=$(mktemp -d)
sim_pid=
bus_pid=
service_pid=
cleanup() {
    status=$?
    if [ -n "$service_pid" ] && kill "$service_pid" 2>/dev/null; then
        # It saves its files on the way out; the bus, not this script, is its parent.
        tries=0
        while [ -d "/proc/$service_pid" ] && [ "$tries" -lt 100 ]; do
            sleep 0.1
            tries=$((tries + 1))
        done
    fi
    [ -n "$bus_pid" ] && kill "$bus_pid" 2>/dev/null
    [ -n "$sim_pid" ] && kill "$sim_pid" 2>/dev/null
    wait 2>/dev/null
    rm -rf "$work" || true
    exit "$status"
}
trap cleanup EXIT
mkdir -p "$work/dev" "$work/home" "$work/services"

"$simulator" --dev-dir "$work/dev" >"$work/sim.out" 2>&1 &
sim_pid=$!
tries=0
until [ -S "$work/dev/modemsim.sock" ]; do
    tries=$((tries + 1))
    [ "$tries" -le 100 ] || { echo "the simulator did not start" >&2; exit 2; }
    sleep 0.1
done

# The service stays for the idle measurement however long it takes.
printf '[D-BUS Service]\nName=org.dialtone.Modem1\nExec=%s --idle-exit 0\n' "$service" \
    >"$work/services/org.dialtone.Modem1.service"
cat >"$work/bus.conf" <<EOF
<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <type>session</type>
  <listen>unix:tmpdir=/tmp</listen>
  <servicedir>$work/services</servicedir>
  <policy context="default"><allow send_destination="*" eavesdrop="true"/><allow eavesdrop="true"/><allow own="*"/></policy>
</busconfig>
EOF
env -u DBUS_SESSION_BUS_ADDRESS DIALTONE_DEV_DIR="$work/dev" HOME="$work/home" \
    dbus-daemon --config-file="$work/bus.conf" --fork --print-address=1 --print-pid=1 >"$work/bus.out" 2>"$work/bus.err"
address=$(sed -n 1p "$work/bus.out")
bus_pid=$(sed -n 2p "$work/bus.out")
export DBUS_SESSION_BUS_ADDRESS="$address" HOME="$work/home"
unset DIALTONE_DEV_DIR

# The first call starts the service and the modem; the figures are for a running service.
"$tool" status >/dev/null
service_pid=$(busctl --user call org.freedesktop.DBus /org/freedesktop/DBus org.freedesktop.DBus \
    GetConnectionUnixProcessID s org.dialtone.Modem1 | awk '{print $2}')

now_us() { echo $(($(date +%s%N) / 1000)); }
# The median of the runs of a command, in microseconds.
median_us() {
    i=0
    : >"$work/times"
    while [ "$i" -lt "$runs" ]; do
        start=$(now_us)
        "$@" >/dev/null
        end=$(now_us)
        echo $((end - start)) >>"$work/times"
        i=$((i + 1))
    done
    sort -n "$work/times" | awk '{ v[NR] = $1 } END { print (NR % 2) ? v[(NR + 1) / 2] : int((v[NR / 2] + v[NR / 2 + 1]) / 2) }'
}

status_us=$(median_us "$tool" status)
property_us=$(median_us busctl --user get-property org.dialtone.Modem1 /org/dialtone/Modem1 org.dialtone.Modem1 \
    ModemState)

# CPU time of the service (user and system, in clock ticks) while nobody asks it anything.
ticks() { sed 's/.*) //' "/proc/$service_pid/stat" | awk '{ print $12 + $13 }'; }
before=$(ticks)
sleep "$idle"
after=$(ticks)
hz=$(getconf CLK_TCK)
rss_kb=$(awk '/^VmRSS:/ { print $2 }' "/proc/$service_pid/status")

failed=0
report() { # name value unit goal verdict
    printf '%-34s %10s %-6s (goal: %s)%s\n' "$1" "$2" "$3" "$4" "$5"
}
check() { # an awk condition on the figures; sets verdict
    if awk "BEGIN { exit !($1) }"; then verdict=""; else failed=1; verdict="  MISSED"; fi
}
check "$status_us <= 50000"
report "dialtone status, median of $runs" "$(awk "BEGIN { printf \"%.1f\", $status_us / 1000 }")" ms "<= 50 ms" "$verdict"
check "$property_us <= 10000"
report "busctl get-property, median of $runs" "$(awk "BEGIN { printf \"%.1f\", $property_us / 1000 }")" ms "<= 10 ms" "$verdict"
cpu=$(awk "BEGIN { printf \"%.2f\", ($after - $before) * 100 / $hz / $idle }")
check "$cpu < 0.5"
report "service CPU while idle ${idle} s" "$cpu" "%" "< 0.5 % of a core" "$verdict"
rss=$(awk "BEGIN { printf \"%.1f\", $rss_kb / 1024 }")
check "$rss_kb < 30 * 1024"
report "service resident memory" "$rss" MB "< 30 MB" "$verdict"
exit "$failed"
