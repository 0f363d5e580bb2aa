#!/bin/bash
# The benchmark run of `make bench`: the micro-benchmarks, then the generated circuits at several
# sizes through morvane_stats, one table row per case.
#
#   bench/run_bench.sh [--quick] [--no-micro] [--sizes "1000 10000"] [--kinds "chain mesh"]
#                      [--times "10000 20000"] [--board-times "20000000"] [--boards "board6502"]
#                      [--peer] [--memory]
#
# --kinds "" skips the generated circuits. --times runs every kind and size at each of the given
# simulated times instead of one chosen by size: rows of one size then show the cost growing with
# time, rows of one time with N.
#
# --board-times runs the 6502 board of examples/board6502 (processor, RAM, EPROM, glue logic, a
# 1 MHz clock) for each simulated time in ns; "" skips it. --boards names the example boards to run
# (default board6502 and board6502pld, the same board with its glue in a programmable device).
#
# --memory prints the memory of long runs instead of the tables below: the board for 0.02, 0.2 and
# 2 s of simulated time (or --board-times) with cycles per wall second, peak memory and bytes of it
# per simulated cycle, so that rows of growing time show whether the cost is linear in time, and the
# LED count the program must show at the end, checked as -v checks it; then
# the generated circuits of --kinds and --sizes (default chain and mesh, 1000 and 10000, at
# --times or 50000 ns) with the growth of resident memory per recorded net update.
#
# --peer also runs the yardstick circuits of ../shared/bench/gen.py (chain and mesh, N = 1000 and
# 10000) through morvane beside the peer's script run_peer.sh, and prints the ratio of events/s.
set -euo pipefail

here=$(cd "$(dirname "$0")" && pwd)
root=$(dirname "$here")
build=${BUILD_DIR:-$root/build/bench}
work=${WORK_DIR:-/tmp/morvane-gen}
sizes="1000 10000 100000"
kinds="chain mesh fanout bus"
quick=0
micro=1
peer=0
memory=0
times=""
board_times="20000000"
boards="board6502 board6502pld"
sizes_given=""
kinds_given=""
board_times_given=""
while [ $# -gt 0 ]; do
    case $1 in
    --quick) quick=1; sizes="1000 10000" ;;
    --no-micro) micro=0 ;;
    --sizes) sizes=$2; sizes_given=$2; shift ;;
    --kinds) kinds=$2; kinds_given=$2; shift ;;
    --times) times=$2; shift ;;
    --board-times) board_times=$2; board_times_given=$2; shift ;;
    --boards) boards=$2; shift ;;
    --peer) peer=1 ;;
    --memory) memory=1; micro=0 ;;
    *) echo "unknown option $1" >&2; exit 2 ;;
    esac
    shift
done

cmake -S "$root" -B "$build" -DCMAKE_BUILD_TYPE=Release -DMORVANE_TESTS=OFF -DMORVANE_BENCH=ON >/dev/null
cmake --build "$build" -j "$(nproc)" >/dev/null

if [ $micro = 1 ]; then
    echo "## Micro-benchmarks (Release)"
    echo
    if [ $quick = 1 ]; then
        "$build/bench/hotpath_bench" --benchmark_min_time=0.05
    else
        "$build/bench/hotpath_bench"
    fi
fi

stats="$build/bench/morvane_stats"
if [ ! -x "$stats" ]; then
    echo
    echo "morvane_stats is not built: it needs the command-line verifier library (morvane_cli)."
    exit 0
fi

# Simulated time per case: long enough to take a second or so at N = 1000, shorter as N grows.
sim_time() {
    local kind=$1 n=$2
    case $kind in
    chain) echo $((500000000 / n)) ;;
    mesh) echo $((100000000 / n + 20000)) ;;
    fanout) echo $((400000000 / n + 20000)) ;;
    bus) echo $((200000000 / n + 20000)) ;;
    esac
}

# One case: its STATS line plus the wall time and peak memory of the whole process.
run_case() {
    local dir=$1
    local out
    out=$(/usr/bin/time -f "TIME wall_s=%e time_maxrss_kb=%M" "$stats" "$dir/circuit.ctc" "$dir/test.tv" 2>&1) || true
    echo "$out" | tr '\n' ' '
}

field() { echo "$1" | tr ' ' '\n' | sed -n "s/^$2=//p" | head -1; }

# The memory of long runs, as morvane runs them: once, with windows on what the test doesn't read.
if [ $memory = 1 ]; then
    echo "## 6502 board (examples/board6502, 1 MHz clock)"
    echo
    echo "| T ns | clock cycles | sim s | cycles per wall s | peak RSS MB | bytes per cycle | LEDs at T |"
    echo "|---|---|---|---|---|---|---|"
    for t in ${board_times_given:-20000000 200000000 2000000000}; do
        dir="$work/board6502_T$t"
        mkdir -p "$dir"
        cp "$root/examples/board6502/board.ctc" "$dir/circuit.ctc"
        # The program latches count k at 14.5 us + k * 21 us: the LEDs must show it at the end.
        leds=XX
        [ "$t" -lt 14500 ] || leds=$(printf '%02x' $(( ((t - 14500) / 21000) % 256 )))
        printf 'time nc => leds\n0 L XX\n%d L %s\n' "$t" "$leds" >"$dir/test.tv"
        line=$(run_case "$dir")
        awk -v t="$t" -v s="$(field "$line" sim_s)" -v w="$(field "$line" wall_s)" \
            -v r="$(field "$line" time_maxrss_kb)" -v l="$leds" -v p="$(field "$line" passed)" 'BEGIN {
            c = t / 1000
            printf "| %d | %d | %.2f | %.0f k | %.0f | %.0f | %s %s |\n", t, c, s, (w > 0 ? c / w / 1e3 : 0),
                r / 1024, r * 1024 / c, l, (p == 1 ? "checked" : "MISMATCH") }'
    done
    echo
    echo "## Generated circuits"
    echo
    echo "| kind | N | T ns | events | peak RSS MB | RSS growth bytes per event |"
    echo "|---|---|---|---|---|---|"
    for kind in ${kinds_given:-chain mesh}; do
        for n in ${sizes_given:-1000 10000}; do
            t=${times:-50000}
            dir="$work/${kind}_N${n}_T${t}"
            [ -f "$dir/circuit.ctc" ] || python3 "$here/gen_bench.py" "$kind" "$n" "$t" --out "$dir" >/dev/null
            line=$(run_case "$dir")
            awk -v k="$kind" -v n="$n" -v t="$t" -v e="$(field "$line" events)" \
                -v r="$(field "$line" time_maxrss_kb)" -v b="$(field "$line" rss_bytes_per_event)" 'BEGIN {
                printf "| %s | %d | %d | %d | %.0f | %s |\n", k, n, t, e, r / 1024, b }'
        done
    done
    exit 0
fi

echo
echo "## Generated circuits"
echo
echo "| kind | N | T ns | load s | sim s | wall s | events | evaluations | events/s (sim) | events/s (wall) | peak RSS MB | history B/entry | RSS growth B/entry |"
echo "|---|---|---|---|---|---|---|---|---|---|---|---|---|"
mkdir -p "$work"
for kind in $kinds; do
    for n in $sizes; do
        for t in ${times:-$(sim_time "$kind" "$n")}; do
            dir="$work/${kind}_N${n}_T${t}"
            [ -f "$dir/circuit.ctc" ] || python3 "$here/gen_bench.py" "$kind" "$n" "$t" --out "$dir" >/dev/null
            line=$(run_case "$dir")
            if ! echo "$line" | grep -q STATS; then
                echo "| $kind | $n | $t | failed: $(echo "$line" | cut -c1-120) |"
                continue
            fi
            load=$(field "$line" load_s); sim=$(field "$line" sim_s); wall=$(field "$line" wall_s)
            events=$(field "$line" events); evals=$(field "$line" evaluations)
            rss=$(field "$line" time_maxrss_kb); hb=$(field "$line" history_bytes_per_entry)
            rb=$(field "$line" rss_bytes_per_entry)
            awk -v k="$kind" -v n="$n" -v t="$t" -v l="$load" -v s="$sim" -v w="$wall" -v e="$events" \
                -v v="$evals" -v r="$rss" -v hb="$hb" -v rb="$rb" 'BEGIN {
                printf "| %s | %d | %d | %.2f | %.2f | %.2f | %d | %d | %.2f M | %.2f M | %.0f | %s | %s |\n",
                    k, n, t, l, s, w, e, v, (s > 0 ? e / s / 1e6 : 0), (w > 0 ? e / w / 1e6 : 0), r / 1024, hb, rb }'
        done
    done
done

for board in $boards; do
    [ -n "$board_times" ] || break
    echo
    echo "## 6502 board (examples/$board, 1 MHz clock)"
    echo
    echo "| T ns | clock cycles | load s | sim s | wall s | events | events/s (sim) | simulated cycles per wall s | peak RSS MB |"
    echo "|---|---|---|---|---|---|---|---|---|"
    for t in $board_times; do
        dir="$work/${board}_T$t"
        mkdir -p "$dir"
        cp "$root/examples/$board/board.ctc" "$dir/circuit.ctc"
        # A programmable device finds its program beside the circuit.
        cp "$root/examples/$board/"*.pld "$dir/" 2>/dev/null || true
        printf 'time nc => leds\n0 L XX\n%d L XX\n' "$t" >"$dir/test.tv"
        line=$(run_case "$dir")
        if ! echo "$line" | grep -q STATS; then
            echo "| $t | failed: $(echo "$line" | cut -c1-120) |"
            continue
        fi
        awk -v t="$t" -v l="$(field "$line" load_s)" -v s="$(field "$line" sim_s)" -v w="$(field "$line" wall_s)" \
            -v e="$(field "$line" events)" -v r="$(field "$line" time_maxrss_kb)" 'BEGIN {
            printf "| %d | %d | %.2f | %.2f | %.2f | %d | %.2f M | %.0f k | %.0f |\n",
                t, t / 1000, l, s, w, e, (s > 0 ? e / s / 1e6 : 0), (w > 0 ? t / 1000 / w / 1e3 : 0), r / 1024 }'
    done
done

[ $peer = 1 ] || exit 0

# The yardstick: the same circuits as the peer's, timed in round-robin on one machine.
shared=${SHARED_BENCH:-$root/../shared/bench}
[ -d "$shared" ] || shared=$root/../../shared/bench
peer_work=${PEER_WORK:-/tmp/morvane-bench}
echo
echo "## Beside the peer (its events; wall time interleaved over 5 rounds, minimum and median)"
echo
echo "| kind | N | T ns | events | morvane wall s min / median | peer wall s min / median | morvane events/s (median) | peer events/s (median) | ratio min | ratio median |"
echo "|---|---|---|---|---|---|---|---|---|---|"
for spec in "chain 1000 500000" "chain 10000 50000" "mesh 1000 500000" "mesh 10000 100000"; do
    set -- $spec
    kind=$1 n=$2 t=$3
    result=$("$shared/run_peer.sh" --work "$peer_work" --no-evals --repeat 1 "$kind" "$n" "$t" | grep '^RESULT')
    dir=$(field "$result" dir)
    events=$(field "$result" events)
    times=$("$shared/interleave.sh" -r 5 -C "$dir" -- 'vvp -n sim_nodump' "$build/Cli/morvane -v $kind.ctc $kind.tv")
    peer_line=$(echo "$times" | grep 'vvp')
    ours_line=$(echo "$times" | grep 'Cli/morvane')
    awk -v k="$kind" -v n="$n" -v t="$t" -v e="$events" -v o="$ours_line" -v p="$peer_line" '
        function stat(line, name) { match(line, name "=[0-9.]+"); return substr(line, RSTART + length(name) + 1, RLENGTH - length(name) - 1) }
        BEGIN {
            omin = stat(o, "min"); omed = stat(o, "median"); pmin = stat(p, "min"); pmed = stat(p, "median")
            printf "| %s | %d | %d | %d | %.2f / %.2f | %.2f / %.2f | %.2f M | %.2f M | %.2f | %.2f |\n",
                k, n, t, e, omin, omed, pmin, pmed, e / omed / 1e6, e / pmed / 1e6, pmin / omin, pmed / omed }'
done
