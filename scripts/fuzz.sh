#!/bin/bash
# Runs the fuzzers that `cmake --build --preset fuzz` built, as many at a time as there are processors.
#
#   scripts/fuzz.sh SECONDS [NAME...]
#
# Each runs on every input that once broke it (fuzz/crashes), then for SECONDS on new ones, which start from the
# seeds (fuzz/corpus) and from what earlier runs found worth keeping (build/fuzz/runs). Both committed folders are
# only read. An input that breaks something stays in build/fuzz/runs/NAME/found.
set -euo pipefail
cd "$(dirname "$0")/.."

seconds="${1:-}"
[[ "$seconds" =~ ^[0-9]+$ ]] && [ "$seconds" -gt 0 ] || { echo "error: expected for how many seconds each fuzzer runs, for example: $0 20" >&2; exit 2; }
shift
programs=build/fuzz/fuzz
names=("$@")
if [ ${#names[@]} -eq 0 ]; then
    for source in fuzz/*Fuzz.cpp; do names+=("$(basename "$source" .cpp)"); done
fi
for name in "${names[@]}"; do
    [ -x "$programs/$name" ] || { echo "error: there is no $programs/$name. Build the fuzzers first: make fuzz SECONDS=$seconds" >&2; exit 2; }
done

# an old input that nothing runs would be lost
for input in fuzz/crashes/*; do
    [ ! -e "$input" ] || [ -f "fuzz/$(basename "$input").cpp" ] ||
        { echo "error: $input belongs to no fuzzer; expected fuzz/crashes/NAME/INPUT with a fuzz/NAME.cpp" >&2; exit 2; }
done

export ASAN_OPTIONS=detect_stack_use_after_return=1:allocator_may_return_null=1 UBSAN_OPTIONS=print_stacktrace=1

# Runs one fuzzer; its whole output goes to a file, a line to the terminal.
run() {
    local name="$1" work="build/fuzz/runs/$1" options=(-timeout=25 -rss_limit_mb=4096 -print_final_stats=1 -entropic=0)
    # not entropic: weighing the corpus would take as long as running the inputs
    mkdir -p "$work/corpus" "$work/found"
    [ ! -f "fuzz/dictionaries/$name.dict" ] || options+=("-dict=fuzz/dictionaries/$name.dict")
    local crashes=()
    for input in fuzz/crashes/"$name"/*; do [ ! -f "$input" ] || crashes+=("$input"); done
    if [ ${#crashes[@]} -gt 0 ] && ! "$programs/$name" "${options[@]}" "${crashes[@]}" >"$work/crashes.log" 2>&1; then
        tail -40 "$work/crashes.log"
        echo "error: $name: an input of fuzz/crashes/$name breaks it again; all of the output is in $work/crashes.log" >&2
        return 1
    fi
    if ! "$programs/$name" "${options[@]}" -max_total_time="$seconds" -artifact_prefix="$work/found/" \
        "$work/corpus" "fuzz/corpus/$name" >"$work/log" 2>&1; then
        tail -40 "$work/log"
        echo "error: $name found an input that breaks something; all of the output is in $work/log." \
            "Again: $programs/$name $(ls -t "$work"/found/* | head -1)" >&2
        return 1
    fi
    # "#123 DONE cov: 1 ft: 2 corp: ..." and "stat::number_of_executed_units: 123"
    echo "$name: ${#crashes[@]} old inputs and $(awk '/number_of_executed_units/ { print $2 }' "$work/log") executions," \
        "$(grep -o 'cov: [0-9]* ft: [0-9]*' "$work/log" | tail -1)"
}

source scripts/each.sh
each run "${names[@]}"
