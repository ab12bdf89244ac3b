#!/usr/bin/env bash
# Start-up of the application on a real (virtual) display: from the moment
# the process is started to its first timer window exposed on screen, and
# its resident memory then, with an empty time sheet and with one of 100,000
# rows (and 50 timers, as the core's headless launch benchmark has). Then the
# processor time the idle application uses, with no timer running and with
# one running.
#
#   bench/tkStartupBench.sh <path to chronolet-plus>    (needs a display:
#   make bench runs it under xvfb-run -a)
set -euo pipefail

program=$(readlink -f "${1:?usage: $0 <chronolet-plus>}")
runs=${RUNS:-10}
idle_seconds=${IDLE_SECONDS:-10}
work=$(mktemp -d /tmp/tk-startup-bench.XXXXXX)
# The time sheet is named after the user's full name, as the program finds it.
user_name=$(getent passwd "$(id -u)" | cut -d: -f5 | cut -d, -f1)
[ -n "$user_name" ] || user_name=$(id -un)
trap 'rm -rf "$work"' EXIT

# A home with a preferences file, `timers` timers (the first running when
# $3 is "running") and a time sheet of `rows` rows.
make_home() {
    local home=$1 rows=$2 running=${3:-}
    local folder="$home/data/Tekamo"
    mkdir -p "$folder" "$home/config" "$home/runtime"
    chmod 700 "$home/runtime"
    printf '<tkPreferences><singleWindowMode>true</singleWindowMode><timesheetOpen>true</timesheetOpen><sortBy>date</sortBy></tkPreferences>' \
        > "$folder/Chronolet Preferences.txt"
    awk -v timers="$([ "$rows" -gt 0 ] && echo 50 || echo 1)" -v running="$running" -v now="$(date +%s)000" 'BEGIN {
        print "<timerArray>"
        for (i = 0; i < timers; i++) {
            started = (i == 0 && running == "running") ? "true" : "false"
            start = (started == "true") ? now : 0
            printf "\t<timer %d><title>Client %d</title><startTime>%s</startTime><priorRunningTime>%d</priorRunningTime>", i, i, start, i * 61000
            printf "<detailMode>true</detailMode><started>%s</started><id>id%d</id><record><date>3/4/24</date><duration>00:00:00</duration>", started, i
            printf "<employee>EMP%d</employee><job number>J%d</job number><fee code>F%d</fee code><description>Work for client %d</description></record></timer %d>\n", i % 7, 1000 + i, i % 5, i, i
        }
        print "\t<frontMostTimerNumber>0</frontMostTimerNumber>\n\t<timerOpen>true</timerOpen>\n\t<globalDetailMode>true</globalDetailMode>\n\t<drawerOpen>true</drawerOpen>\n</timerArray>"
    }' > "$folder/Chronolet Timers.txt"
    awk -v rows="$rows" 'BEGIN {
        for (i = 0; i < rows; i++)
            printf "%d/%d/24\t0%d:%d:00\tEMP%d\tJ%d\tF%d\tTask number %d\n", 1 + int(i / 8400) % 12, 1 + int(i / 280) % 28, i % 9, 10 + i % 50, i % 7, 1000 + i % 300, i % 5, i
    }' > "$folder/$user_name's Time Sheet.txt"
}

# Starts the program in a home and prints its pid; the probe file appears
# once the first window is exposed.
start_in() {
    local home=$1 probe=$2
    rm -f "$probe"
    HOME="$home" XDG_DATA_HOME="$home/data" XDG_CONFIG_HOME="$home/config" \
        XDG_RUNTIME_DIR="$home/runtime" CHRONOLET_STARTUP_PROBE="$probe" \
        "$program" > /dev/null 2>&1 &
    echo $!
}

wait_for() {
    local file=$1 pid=$2
    for _ in $(seq 1 6000); do
        [ -s "$file" ] && return 0
        kill -0 "$pid" 2> /dev/null || { echo "the program ended before showing a window" >&2; return 1; }
        sleep 0.01
    done
    echo "no window within a minute" >&2
    return 1
}

# Median start-up in ms and resident memory in MiB over $runs starts, after
# one start that warms the caches.
measure_startup() {
    local label=$1 home=$2
    local probe="$work/probe" times=() memory=()
    for run in $(seq 0 "$runs"); do
        local before pid
        before=$(date +%s%N)
        pid=$(start_in "$home" "$probe")
        wait_for "$probe" "$pid"
        read -r exposed rss _ < "$probe"
        kill -TERM "$pid"; wait "$pid" 2> /dev/null || true
        [ "$run" = 0 ] && continue
        times+=($(( (exposed - before) / 1000 )))
        memory+=("$rss")
    done
    local median_us median_kib
    median_us=$(printf '%s\n' "${times[@]}" | sort -n | awk '{ a[NR] = $1 } END { print a[int((NR + 1) / 2)] }')
    median_kib=$(printf '%s\n' "${memory[@]}" | sort -n | awk '{ a[NR] = $1 } END { print a[int((NR + 1) / 2)] }')
    awk -v label="$label" -v us="$median_us" -v kib="$median_kib" -v runs="$runs" 'BEGIN {
        printf "%-28s start to window exposed %6.1f ms (median of %d)   resident %5.1f MiB\n", label, us / 1000, runs, kib / 1024 }'
}

# Processor time used while idle, as a share of one core.
measure_idle() {
    local label=$1 home=$2 probe="$work/idle.probe"
    local pid ticks before after
    pid=$(start_in "$home" "$probe")
    wait_for "$probe" "$pid"
    sleep 1
    before=$(awk '{ print $14 + $15 }' "/proc/$pid/stat")
    sleep "$idle_seconds"
    after=$(awk '{ print $14 + $15 }' "/proc/$pid/stat")
    kill -TERM "$pid"; wait "$pid" 2> /dev/null || true
    ticks=$(getconf CLK_TCK)
    awk -v label="$label" -v used="$((after - before))" -v ticks="$ticks" -v seconds="$idle_seconds" 'BEGIN {
        printf "%-28s idle processor use %.3f %% of a core over %d s\n", label, used * 100 / ticks / seconds, seconds }'
}

make_home "$work/empty" 0
make_home "$work/large" 100000
make_home "$work/running" 0 running
measure_startup "empty time sheet" "$work/empty"
measure_startup "100,000 rows, 50 timers" "$work/large"
measure_idle "no timer running" "$work/empty"
measure_idle "one timer running" "$work/running"
