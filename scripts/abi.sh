#!/bin/bash
# The binary interface of libqc and libqmSSTRc: records it in abi/, or compares a build with the record.
#
#   scripts/abi.sh record|check [BUILD]      BUILD, a build of the preset "abi": build/abi
#
# The record of a library has two files: NAME.abi, what the compiler made of the installed headers (sizes, fields,
# tables of virtual functions, parameters), and NAME.symbols, the names that are exported. Types that the headers do
# not declare are left out, and so is the place of the build: the same sources give the same bytes.
set -euo pipefail
cd "$(dirname "$0")/.."

fail() { echo "error: $*" >&2; exit 2; }

mode="${1:-}"
build="${2:-build/abi}"
case "$mode" in record | check) ;; *) fail "expected what to do, for example: $0 check" ;; esac
libraries=(host/libqc python/libqmSSTRc)
for library in "${libraries[@]}"; do
    [ -e "$build/$library.so" ] ||
        fail "there is no $build/$library.so. Build it first: cmake --preset abi && cmake --build --preset abi"
    [[ "$(readelf -S "$build/$library.so")" == *.debug_info* ]] ||
        fail "$build/$library.so has no debug information, from which the interface is read. Build the preset \"abi\"."
done

work="$(mktemp -d)"
trap 'rm -rf "$work"' EXIT
# One folder with all installed headers: a type that is declared outside of it is taken for a private one.
mkdir "$work/headers"
cp host/include/qc/*.h StaticStrength/qmStaticStrength.h "$work/headers"

# Writes the two files for the library $1 to the folder $2.
describe() {
    local name
    name="$(basename "$1")"
    abidw --headers-dir "$work/headers" --drop-private-types --exported-interfaces-only --drop-undefined-syms \
        --no-corpus-path --no-comp-dir-path --no-show-locs --no-architecture --no-parameter-names --type-id-style hash \
        --out-file "$2/$name.abi" "$build/$1.so"
    nm -DC --defined-only "$build/$1.so" | sed 's/^[0-9a-f]* . //' | LC_ALL=C sort -u >"$2/$name.symbols"
}

if [ "$mode" = record ]; then
    mkdir -p abi
    for library in "${libraries[@]}"; do describe "$library" abi; done
    wc -c abi/*.abi abi/*.symbols
    exit
fi

changed=0
for library in "${libraries[@]}"; do
    name="$(basename "$library")"
    [ -f "abi/$name.abi" ] && [ -f "abi/$name.symbols" ] || fail "abi/ has no record of $name. Make it: make abi-record"
    describe "$library" "$work"
    same=1
    abidiff --leaf-changes-only --harmless --no-show-locs "abi/$name.abi" "$work/$name.abi" >"$work/report" || same=0
    LC_ALL=C comm -3 "abi/$name.symbols" "$work/$name.symbols" >"$work/symbols"
    if [ $same = 1 ] && [ ! -s "$work/symbols" ]; then
        echo "$name: as recorded, $(wc -l <"abi/$name.symbols") names exported"
        continue
    fi
    changed=1
    echo "$name: its binary interface is not the recorded one."
    cat "$work/report"
    sed 's/^\t/  exported, not in the record: /; t; s/^/  in the record, not exported: /' "$work/symbols"
done
[ $changed = 0 ] || {
    echo "Programs and modules that were built before may not work with these libraries."
    echo "If the change is meant: make abi-record, and say in CHANGELOG.md who has to build anew. If not, undo it."
    exit 1
} >&2
