#!/usr/bin/env bash
# Plants the faults of faults.txt one at a time in a scratch copy of the tree, rebuilds, runs the
# whole suite and reports which faults no test caught. Run by hand; it takes a while.
#
#   tests/mutation/run.sh [-r REV] [-o RESULT] [PATTERN...]
#
# REV runs the suite of that revision (say main) rather than the working files of this checkout;
# the faults always come from this checkout's list. PATTERN selects faults by id or subsystem (a
# grep -E pattern on the id); none runs them all.
# MUTATION_DIR holds the scratch tree and its build (default build/mutation in the checkout). The
# build is Release without sanitizers, with shared libraries and lld, and is kept between faults and
# between runs: a fault costs one compile, quick links and the suite, which stops at its first
# failure. The .txt files beside this script are results of earlier runs: baseline.txt, after.txt and
# merged.txt before the suite was made lean, after-core.txt and after-components.txt of its two
# halves on their branches, final.txt of the whole list on the lean suite.
set -euo pipefail

# The whole run is one function, read before it starts, so that editing this file mid-run is safe.
main() {
here=$(cd "$(dirname "$0")" && pwd)
repo=$(cd "$here/../.." && pwd)
result=""
rev=""
while [[ ${1:-} == -[or] ]]; do
    [[ $1 == -o ]] && result=$2 || rev=$2
    shift 2
done
pattern=$(IFS='|'; echo "$*")
scratch=${MUTATION_DIR:-$repo/build/mutation}
tree=$scratch/tree
build=$tree/build/release
timeout=${MUTATION_TIMEOUT:-60}
export CMAKE_CXX_COMPILER_LAUNCHER=${CMAKE_CXX_COMPILER_LAUNCHER:-ccache}
export CCACHE_BASEDIR=${CCACHE_BASEDIR:-/work}

# Checksums, not times, decide what is copied, and copied files get a fresh time: a file left
# faulty by an interrupted run must be rebuilt.
mkdir -p "$tree"
# Some tests read shared test data beside the checkout.
if [[ -d $repo/../shared && ! -e $scratch/shared ]]; then
    ln -s "$(cd "$repo/../shared" && pwd)" "$scratch/shared"
fi
src=$repo
if [[ -n $rev ]]; then
    src=$scratch/source
    rm -rf "$src"
    mkdir -p "$src"
    git -C "$repo" archive "$rev" | tar -x -C "$src"
fi
(cd "$src" && find . -path ./build -prune -o -path ./.git -prune -o -type f -printf '%P\n') | sort >"$scratch/files"
(cd "$tree" && find . -path ./build -prune -o -type f -printf '%P\n') | sort |
    comm -13 "$scratch/files" - | (cd "$tree" && xargs -r rm -f)
while read -r f; do
    if ! cmp -s "$src/$f" "$tree/$f"; then
        mkdir -p "$(dirname "$tree/$f")"
        cp "$src/$f" "$tree/$f"
    fi
done <"$scratch/files"
sed -i -E 's/add_library\((morvane_[a-z]+) STATIC/add_library(\1 SHARED/' \
    "$tree"/Core/CMakeLists.txt "$tree"/Core/Components/CPUs/CMakeLists.txt "$tree"/Cli/CMakeLists.txt

build_tree() {
    nice cmake --build "$build" -j 2 >"$scratch/build.log" 2>&1
}
# Fails on the first failing test and prints its name. Each unit test program runs whole, which is
# much cheaper than one process a case; then the end-to-end cases.
run_suite() {
    local log=$scratch/suite.log exe
    for exe in $(find "$build/tests/unit" -type f -perm -u+x -name '*Tests' | sort); do
        if ! nice timeout "$timeout" "$exe" --gtest_brief=1 >"$log" 2>&1; then
            echo "$(basename "$exe").$(grep -m1 -oE '\[  FAILED  \] [A-Za-z0-9_/.]+' "$log" | cut -c14-)"
            return 1
        fi
    done
    if ! (cd "$build" && nice ctest -L e2e -j 2 --timeout "$timeout" --stop-on-failure >"$log" 2>&1); then
        grep -m1 -oE 'e2e\.[A-Za-z0-9_]+ \.+\**(Failed|Timeout)' "$log" | sed -E 's/ .*//'
        return 1
    fi
}

nice cmake -S "$tree" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release -DMORVANE_SANITIZE=OFF \
    -DMORVANE_TESTS=ON -DCMAKE_POSITION_INDEPENDENT_CODE=ON \
    -DCMAKE_EXE_LINKER_FLAGS=-fuse-ld=lld -DCMAKE_SHARED_LINKER_FLAGS=-fuse-ld=lld >/dev/null
echo "building the scratch tree in $build" >&2
build_tree || { echo "the unfaulted tree does not build: see $scratch/build.log" >&2; exit 2; }
if failed=$(run_suite); then :; else
    echo "the unfaulted suite fails ($failed): see $scratch/ctest.log" >&2
    exit 2
fi

caught=0 missed=0 broken=0 stale=0
out=$(mktemp)
while read -r id file rule; do
    [[ -z $id || $id == \#* ]] && continue
    if [[ -n $pattern ]] && ! grep -qE "$pattern" <<<"$id"; then continue; fi
    target=$tree/$file
    # The rule is a Perl substitution on the whole file, applied once.
    FAULT_RULE=$rule perl -0pi -e 'eval "\$_ =~ $ENV{FAULT_RULE}; 1" or die $@' "$target"
    if cmp -s "$target" "$src/$file"; then
        line="STALE   $id (the rule no longer matches $file)"
        stale=$((stale + 1))
    elif ! build_tree; then
        line="BROKEN  $id (does not build)"
        broken=$((broken + 1))
    elif by=$(run_suite); then
        line="MISSED  $id"
        missed=$((missed + 1))
    else
        line="caught  $id by $by"
        caught=$((caught + 1))
    fi
    echo "$line" | tee -a "$out"
    cp "$src/$file" "$target"
done <"$here/faults.txt"
build_tree || true

summary="caught $caught, missed $missed, broken $broken, stale $stale"
echo "$summary"
if [[ -n $result ]]; then
    { echo "# suite of ${rev:-the working files of $(git -C "$repo" rev-parse --short HEAD)}, $(date -u +%F)"; cat "$out"; echo "# $summary"; } >"$result"
fi
rm -f "$out"
}

# On one line, so that bash has read the exit before main runs.
main "$@"; exit $?
