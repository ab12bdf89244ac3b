#!/usr/bin/env bash
# The command line against the peer command-line tracker Timewarrior, on the same history:
# for each size, one hyperfine run per pair of
#   chronolet add 1   /  timew track <an hour> <tags>
#   chronolet start 1 /  timew start <tags>
#   chronolet total   /  timew summary :all
# Before every timed run both data folders are put back as generated, so each run adds to
# the same history (Timewarrior refuses an interval over one it holds already).
#
#   bench/tkCliBench.sh build-bench/chronolet [work folder]
# SIZES (default "10000 100000") chooses the history sizes, RUNS the runs of the slow pair.
set -euo pipefail

chronolet=$(realpath "$1")
work=${2:-$(mktemp -d)}
sizes=${SIZES:-"10000 100000"}
mkdir -p "$work"
work=$(realpath "$work")

# The history: 20 entries a day from 1 January 2012 on, of 5 to 39 minutes each, billed to a
# few employees, jobs and fee codes, with fifty kinds of description.
generate() {
    local n=$1 at=$2
    mkdir -p "$at/home/data/Tekamo" "$at/tw/data" "$at/run"
    chmod 700 "$at/run"
    awk -v n="$n" -v sheet="$at/home/sheet.txt" -v tw="$at/tw/data" '
    BEGIN {
        split("AB CD EF GH", employees, " ")
        split("F1 F2 F3 F4 F5", fees, " ")
        base = 1325376000  # 2012-01-01T00:00:00Z
        for (i = 0; i < n; i++) {
            day = base + int(i / 20) * 86400
            start = day + 6 * 3600 + (i % 20) * 2400
            minutes = 5 + (i * 7919) % 35
            employee = employees[1 + i % 4]
            job = "J" (100 + (i * 31) % 40)
            fee = fees[1 + (i * 17) % 5]
            description = "task " (i * 13) % 50
            split(strftime("%m %d %y", day, 1), d, " ")
            printf "%d/%d/%d\t00:%02d:00\t%s\t%s\t%s\t%s\n", d[1] + 0, d[2] + 0, d[3] + 0,
                minutes, employee, job, fee, description > sheet
            file = tw "/" strftime("%Y-%m", start, 1) ".data"
            printf "inc %s - %s # %s %s %s \"%s\"\n", strftime("%Y%m%dT%H%M%SZ", start, 1),
                strftime("%Y%m%dT%H%M%SZ", start + minutes * 60, 1), employee, fee, job,
                description > file
            tags[employee]++; tags[job]++; tags[fee]++; tags[description]++
        }
        printf "{" > (tw "/tags.data")
        sep = "\n"
        for (tag in tags) {
            printf "%s  \"%s\":{\"count\":%d}", sep, tag, tags[tag] > (tw "/tags.data")
            sep = ",\n"
        }
        printf "\n}" > (tw "/tags.data")
    }'
    : > "$at/tw/timewarrior.cfg"
    {
        printf '<tkPreferences>\n\t<timeSheetFile>~/sheet.txt</timeSheetFile>\n'
        printf '\t<tkKnownRecordItems>\n\t\t<job numbers>\n\t\t\t<code></code>\n'
        for j in $(seq 100 139); do printf '\t\t\t<code>J%s</code>\n' "$j"; done
        printf '\t\t</job numbers>\n\t\t<fee codes>\n\t\t\t<code></code>\n'
        for f in F1 F2 F3 F4 F5; do printf '\t\t\t<code>%s</code>\n' "$f"; done
        printf '\t\t</fee codes>\n\t\t<employees>\n\t\t\t<code></code>\n'
        for e in AB CD EF GH; do printf '\t\t\t<code>%s</code>\n' "$e"; done
        printf '\t\t</employees>\n\t</tkKnownRecordItems>\n</tkPreferences>\n'
    } > "$at/home/data/Tekamo/Chronolet Preferences.txt"
    printf '%s\n' '<timerArray>' \
        '	<timer 0><title>Design</title><startTime>0</startTime><priorRunningTime>3600000</priorRunningTime><detailMode>true</detailMode><started>false</started><id></id><record><date>1/1/24</date><duration>00:00:00</duration><employee>AB</employee><job number>J100</job number><fee code>F1</fee code><description>design</description></record></timer 0>' \
        '</timerArray>' > "$at/home/data/Tekamo/Chronolet Timers.txt"
}

for n in $sizes; do
    origin="$work/$n.origin"
    live="$work/$n"
    [ -d "$origin" ] || generate "$n" "$origin"
    printf 'rm -rf "%s" && cp -a "%s" "%s"\n' "$live" "$origin" "$live" > "$work/restore-$n.sh"
    restore="sh $work/restore-$n.sh"
    sh "$work/restore-$n.sh"
    export HOME="$live/home" XDG_DATA_HOME="$live/home/data" XDG_RUNTIME_DIR="$live/run"
    export TIMEWARRIORDB="$live/tw"
    echo "== $n entries: $(wc -c < "$live/home/sheet.txt") bytes of time sheet"
    # The same interval each run: the day after the history, 10 to 11.
    hyperfine -N --warmup 3 --prepare "$restore" \
        -n "chronolet add" "$chronolet add 1" \
        -n "timew track" "timew track 2030-01-02T10:00:00 - 2030-01-02T11:00:00 AB J100 F1 design"
    hyperfine -N --warmup 3 --prepare "$restore" \
        -n "chronolet start" "$chronolet start 1" \
        -n "timew start" "timew start AB J100 F1 design"
    runs=$([ "$n" -ge 100000 ] && echo "${RUNS:-3}" || echo 10)
    hyperfine -N --warmup 1 --runs "$runs" --prepare "$restore" \
        -n "chronolet total" "$chronolet total" \
        -n "timew summary :all" "timew summary :all"
done
