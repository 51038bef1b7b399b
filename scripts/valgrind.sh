#!/bin/bash
# Passes the tests of a build under valgrind: the C++ tests, a program at a time, the program on every
# example, and the Python modules' tests. Any error, and any block that nothing reaches at the end, fails.
#
#   scripts/valgrind.sh [PRESET]      a preset that was built; else "debug"
#
# Values are the heap's own blocks here, not recycled ones, so that valgrind sees each. What the interpreter
# itself leaves behind at its end is not looked at: in Python's tests errors count, and leaks are the business of
# the tests under the address sanitizer and of those that count memory.
set -euo pipefail
cd "$(dirname "$0")/.."

build="$PWD/build/${1:-debug}"
[ -x "$build/sstr/sstr" ] || { echo "error: there is no $build/sstr/sstr. Build first: make ${1:-debug}" >&2; exit 2; }
export QC_VALUE_MEMORY=heap
memcheck=(valgrind --quiet --error-exitcode=9 --num-callers=24)
# memory that stays reachable is no leak: the host keeps its keys as long as the process lives
leaks=(--leak-check=full --errors-for-leak-kinds=definite,indirect,possible)
failed=()

under() {
    local what="$1"
    shift
    printf '== valgrind %s\n' "$what"
    "$@" || failed+=("$what")
}

while read -r program; do
    # those that put an allocator of their own in its place keep it; those that count malloc's calls cannot
    filter=()
    case "$program" in
        */ComputeAllocationTest | */SizesAllocationTest) continue ;;
        */AllocationTest | */*OutOfMemoryTest | */ValuesFreedTest)
            filter=(--soname-synonyms=somalloc=nouserintercepts) ;;
    esac
    under "$(basename "$program")" "${memcheck[@]}" "${leaks[@]}" "${filter[@]}" "$program" --gtest_brief=1
done < <(find "$build/tests" -mindepth 2 -maxdepth 2 -type f -executable -name '*Test' | sort)

for scene in examples/*.json; do
    under "sstr compute $scene" "${memcheck[@]}" "${leaks[@]}" "$build/sstr/sstr" compute "$scene" >/dev/null
done

# the interpreter's own recycling would hide a misuse; the scripts left out make hundreds of thousands of calls to
# look at memory in a way of their own
export PYTHONMALLOC=malloc PYTHONDONTWRITEBYTECODE=1 PYTHONPATH="$build/python"
for script in tests/python/*_test.py; do
    case "$script" in *memory*) continue ;; esac
    under "$(basename "$script")" "${memcheck[@]}" --leak-check=no /usr/bin/python3 "$script"
done

exit_status=0
if [ ${#failed[@]} -gt 0 ]; then
    printf 'error: failed under valgrind: %s\n' "${failed[@]}" >&2
    exit_status=1
fi
exit $exit_status
