#!/usr/bin/env bash
# Runs every fuzz target for a bounded time, from the corpus in the tree. What it finds on the way stays in the build.
# Usage: fuzz.sh BUILD_DIR SECONDS
set -euo pipefail
source_dir=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
build=$1 seconds=$2
export LSAN_OPTIONS="suppressions=$source_dir/tests/leaks.txt:print_suppressions=0"
export UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1

for target in "$build"/bin/fuzz_*; do
    [[ -x $target ]] || continue
    name=${target##*/fuzz_}
    found=$build/corpus/$name
    mkdir -p "$found" "$build/crashes"
    corpora=("$found")
    [[ -d $source_dir/fuzz/corpus/$name ]] && corpora+=("$source_dir/fuzz/corpus/$name")
    options=(-max_total_time="$seconds" -timeout=20 -rss_limit_mb=512 -print_final_stats=1
        -artifact_prefix="$build/crashes/$name-")
    [[ -f $source_dir/fuzz/$name.dict ]] && options+=(-dict="$source_dir/fuzz/$name.dict")
    echo "== $name, $seconds s"
    log=$build/$name.log
    "$target" "${options[@]}" "${corpora[@]}" >"$log" 2>&1 || { cat "$log"; exit 1; }
    grep -E '^(Done|stat::)' "$log"
done
