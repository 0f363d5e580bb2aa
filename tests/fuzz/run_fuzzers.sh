#!/bin/sh
# Runs every fuzz target for a number of seconds each, starting from seeds taken from the end-to-end
# cases, the examples and tests/fuzz/seeds. The corpora grow in the build folder and are kept between
# runs. Exits non-zero if any target found a crash, a leak, a timeout or a sanitizer report.
# Usage: run_fuzzers.sh <folder of the fuzz binaries> <seconds per target> [target ...]
set -u
bin_dir=$(cd "$1" && pwd)
seconds=$2
shift 2
src_dir=$(cd "$(dirname "$0")" && pwd)
root_dir=$(cd "$src_dir/../.." && pwd)
work_dir=$bin_dir/work
dict=$src_dir/morvane.dict
targets=${*:-"fuzz_circuit_file fuzz_test_vector_file fuzz_para_map fuzz_instance fuzz_component_options fuzz_pin_spec fuzz_value_text fuzz_driver fuzz_pld_source fuzz_wave_options"}

# Fills the seed folder of one target.
make_seeds() {
    target=$1
    seeds=$2
    mkdir -p "$seeds"
    if [ -d "$src_dir/seeds/$target" ]; then
        cp "$src_dir/seeds/$target"/* "$seeds"/ 2>/dev/null
    fi
    n=0
    case $target in
    fuzz_circuit_file)
        for f in "$root_dir"/tests/e2e/*/*.ctc "$root_dir"/tests/e2e/*/*/*.ctc "$root_dir"/examples/*/*.ctc \
            "$root_dir"/examples/*/*/*.ctc; do
            [ -f "$f" ] || continue
            n=$((n + 1))
            cp "$f" "$seeds/e2e_$n.ctc"
        done ;;
    fuzz_test_vector_file)
        for f in "$root_dir"/tests/e2e/*/*.tv "$root_dir"/examples/*/*.tv; do
            [ -f "$f" ] || continue
            n=$((n + 1))
            cp "$f" "$seeds/e2e_$n.tv"
        done ;;
    fuzz_pld_source)
        for f in "$root_dir"/tests/e2e/*/*.pld "$root_dir"/tests/e2e/*/*/*.pld "$root_dir"/examples/*/*.pld; do
            [ -f "$f" ] || continue
            n=$((n + 1))
            cp "$f" "$seeds/e2e_$n.pld"
        done ;;
    fuzz_driver)
        # One case is its circuit file, a line "%%" and its test vector file.
        for d in "$root_dir"/tests/e2e/*/ "$root_dir"/examples/*/; do
            ctc=$(ls "$d"*.ctc 2>/dev/null | head -n 1)
            tv=$(ls "$d"*.tv 2>/dev/null | head -n 1)
            [ -n "$ctc" ] && [ -n "$tv" ] || continue
            n=$((n + 1))
            { cat "$ctc"; printf '\n%%%%\n'; cat "$tv"; } > "$seeds/e2e_$n.txt"
        done ;;
    esac
}

failed=""
for target in $targets; do
    binary=$bin_dir/$target
    if [ ! -x "$binary" ]; then
        echo "fuzz: no binary $binary" >&2
        failed="$failed $target"
        continue
    fi
    corpus=$work_dir/corpus/$target
    seeds=$work_dir/seeds/$target
    artifacts=$work_dir/artifacts/$target/
    rm -rf "$seeds"
    make_seeds "$target" "$seeds"
    mkdir -p "$corpus" "$artifacts"
    log=$work_dir/$target.log
    # A single allocation beyond 512 MB or a run beyond 30 s is a finding in its own right; a circuit
    # at the limit of parts takes about 15 s under the sanitizers.
    (cd "$work_dir" && "$binary" "$corpus" "$seeds" -dict="$dict" -max_total_time="$seconds" \
        -timeout=30 -rss_limit_mb=2048 -malloc_limit_mb=512 -max_len=4096 -print_final_stats=1 \
        -artifact_prefix="$artifacts") > "$log" 2>&1
    status=$?
    execs=$(sed -n 's/^stat::number_of_executed_units: *//p' "$log" | tail -n 1)
    cov=$(grep -o 'cov: [0-9]*' "$log" | tail -n 1)
    echo "$target: ${execs:-?} executions, ${cov:-cov: ?}, exit status $status"
    if [ $status -ne 0 ]; then
        failed="$failed $target"
        grep -m 5 -E 'ERROR|SUMMARY|runtime error|Test unit written' "$log"
    fi
done

if [ -n "$failed" ]; then
    echo "fuzz: findings in:$failed (logs and inputs in $work_dir)" >&2
    exit 1
fi
