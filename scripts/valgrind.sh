#!/bin/bash
# Passes the tests of the preset "valgrind" under valgrind: the C++ tests, a program at a time, the program on every
# example, and the Python modules' tests; as many at a time as there are processors. Any error, and any block that
# nothing reaches at the end, fails.
#
#   scripts/valgrind.sh [NAME...]      those alone, for example: ResetTest lift_box.json pointers_test.py
#
# Values are the heap's own blocks here, not recycled ones, so that valgrind sees each. What the interpreter
# itself leaves behind at its end is not looked at: in Python's tests errors count, and leaks are the business of
# those that count memory.
set -euo pipefail
cd "$(dirname "$0")/.."

build="$PWD/build/valgrind"
[ -x "$build/sstr/sstr" ] || { echo "error: there is no $build/sstr/sstr. Build first: make valgrind" >&2; exit 2; }
logs="$build/logs"
mkdir -p "$logs"

# the tests' long chains need not be so long here; the interpreter's own recycling would hide a misuse
export SSTR_TEST_DEPTH=1000 QC_VALUE_MEMORY=heap PYTHONMALLOC=malloc PYTHONDONTWRITEBYTECODE=1 PYTHONPATH="$build/python"
memcheck=(valgrind --quiet --error-exitcode=9 --num-callers=24)
# memory that stays reachable is no leak: the host keeps its keys as long as the process lives
leaks=(--leak-check=full --errors-for-leak-kinds=definite,indirect,possible)

# Runs one test, script or example; its whole output goes to a file, one line of it to the terminal.
run() {
    local path="$1" start=$SECONDS
    local name log
    name="$(basename "$path")"
    log="$logs/$name.log"
    local command=("${memcheck[@]}")
    case "$path" in
        *.py) command+=(--leak-check=no /usr/bin/python3 "$path") ;;
        *.json) command+=("${leaks[@]}" "$build/sstr/sstr" compute "$path") ;;
        # those that put an allocator of their own in its place keep it
        */*OutOfMemoryTest | */ValuesFreedTest)
            command+=("${leaks[@]}" --soname-synonyms=somalloc=nouserintercepts "$path" --gtest_brief=1) ;;
        */sstr-validate) command+=("${leaks[@]}" "$path") ;;
        *) command+=("${leaks[@]}" "$path" --gtest_brief=1) ;;
    esac
    if ! "${command[@]}" >"$log" 2>&1; then
        tail -60 "$log"
        echo "error: $name fails under valgrind; all of the output is in $log" >&2
        return 1
    fi
    echo "$name: $((SECONDS - start)) s"
}

found=("$build/tests/validation/sstr-validate" tests/python/*_test.py examples/*.json)
while read -r path; do found+=("$path"); done < <(find "$build/tests" -mindepth 2 -maxdepth 2 -type f -executable -name '*Test' | sort)
tests=()
for path in "${found[@]}"; do
    [ -f "$path" ] || { echo "error: there is no $path. Build first: make valgrind" >&2; exit 2; }
    case "$path" in
        # those that count allocations cannot be asked where values are not recycled and malloc is another; the scripts
        # make hundreds of thousands of calls to look at memory in a way of their own
        */AllocationTest | */ComputeAllocationTest | */SizesAllocationTest | */*memory*_test.py) continue ;;
    esac
    [ $# -eq 0 ] || [[ " $* " == *" $(basename "$path") "* ]] || continue
    tests+=("$path")
done
[ $# -eq 0 ] || [ ${#tests[@]} -eq $# ] || { echo "error: not each of these is the name of a test that valgrind watches: $*" >&2; exit 2; }

source scripts/each.sh
each run "${tests[@]}"
