#!/bin/bash
# What is wrong in the C++ sources, found without running them. Silent where nothing is; else it says what, and fails.
#
#   scripts/lint.sh tidy BUILD [FOLDER...]   clang-tidy, by .clang-tidy; without folders: the product, which is the
#                                            folders named below. With the tests it would take more than twice as
#                                            long: `make tidy-all` reads them, and so do the other two in any case.
#   scripts/lint.sh cppcheck BUILD           cppcheck, less .cppcheck-suppressions: product and tests
#   scripts/lint.sh layout                   clang-format, by .clang-format: product and tests
#   scripts/lint.sh format                   the same, but lays them out
#
# BUILD is where `cmake --preset lint` left how each source is compiled. Nothing needs to be built.
set -euo pipefail
cd "$(dirname "$0")/.."

product=(StaticStrength host python sstr bench fuzz)
jobs="$(nproc)"

fail() {
    echo "error: $*" >&2
    exit 1
}

# Leaves in $work how each source in the given folders is compiled. One that is part of two libraries is read once.
commands() {
    [ -f "$build/compile_commands.json" ] || fail "there is no \"$build/compile_commands.json\": cmake --preset lint."
    work="$build/found"
    mkdir -p "$work"
    python3 - "$PWD" "$build" "$work" "$@" <<'PY'
import json, sys
root, build, work, *folders = sys.argv[1:]
sources = {}
for folder in folders:
    found = [e for e in json.load(open(build + "/compile_commands.json"))
             if e["file"].startswith(root + "/" + folder.rstrip("/") + "/")]
    if not found:
        sys.exit("error: nothing is compiled in " + folder + ". Expected a folder of sources, from the top of the tree.")
    for entry in found:
        sources.setdefault(entry["file"], entry)
json.dump(list(sources.values()), open(work + "/compile_commands.json", "w"))
print(len(sources), "sources")
PY
}

tidy() {
    commands "$@"
    # CI leaves out clang's analyzer, which takes half of the time
    local lighter=()
    [ -z "${CI:-}" ] || lighter=("-checks=-clang-analyzer-*")
    run-clang-tidy -quiet -j "$jobs" -p "$work" "${lighter[@]}" >"$work/tidy.txt" 2>"$work/tidy-errors.txt" && return
    grep -av '^clang-tidy' "$work/tidy.txt" || true
    grep -av 'warnings\? generated' "$work/tidy-errors.txt" >&2 || true
    fail "clang-tidy found the above."
}

check() {
    commands "${product[@]}" tests
    rm -rf "$work/cppcheck"
    mkdir "$work/cppcheck"   # by it declarations are compared across sources
    cppcheck --project="$work/compile_commands.json" --cppcheck-build-dir="$work/cppcheck" -j "$jobs" \
        --enable=warning,performance,portability,style --library=googletest --library=.cppcheck.cfg \
        --suppressions-list=.cppcheck-suppressions --inline-suppr --quiet --template=gcc --error-exitcode=1 \
        || fail "cppcheck found the above."
}

# Passes every source, header and test to clang-format with the given options.
format() {
    find "${product[@]}" tests \( -name '*.cpp' -o -name '*.h' \) -print0 | xargs -0 clang-format "$@"
}

layout() {
    format --dry-run -Werror \
        || fail "the layout of the above is not clang-format's. To lay them out: make format."
}

linter="${1:-}"
build="${2:-}"
case "$linter" in
    tidy) shift 2; [ $# -gt 0 ] || set -- "${product[@]}"; tidy "$@" ;;
    cppcheck) check ;;
    layout) layout ;;
    format) format -i ;;
    *) fail "expected tidy, cppcheck, layout or format, found \"$linter\"." ;;
esac
