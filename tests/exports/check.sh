#!/bin/sh
# Compares the library's dynamic symbols with expected.txt and with the classes that are exported.
#   check.sh compare | selftest
set -eu
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# The members and the type data of these classes may be exported: the reply parsers, the transport, its body.
classes='C[A-Za-z0-9_]*(Json|Xml)|CTorviLogin|CWebFileManLogin|AuthLoginResultXml|HttpRequestWorker|HttpRequestInput|QUpFile'
allowed="^(vtable for |typeinfo for |typeinfo name for |VTT for |(virtual|non-virtual) thunk to )?($classes)(::.*)?\$"

# symbols FILE: the names that a program can link against, as they stand in the table.
symbols() {
    # __odr_asan and __asan are the sanitizer's own, _init and _fini the linker's.
    "$NM" -D --defined-only --format=posix "$1" | awk '{ print $1 }' | sed 's/@.*//' |
        grep -v -e '^__odr_asan' -e '^__asan' -e '^_init$' -e '^_fini$' | sort -u
}

# compare SYMBOLS EXPECTED: says what is missing and what is too much.
compare() {
    grep -v -e '^#' -e '^ *$' "$2" | sort >"$work/expected"
    [ -z "$(uniq -d "$work/expected")" ] || { echo "twice in the list: $(uniq -d "$work/expected")"; return 1; }
    grep -v '^_Z' "$1" >"$work/plain" || true
    grep '^_Z' "$1" | c++filt | grep -E -v "$allowed" | sort >"$work/decorated" || true
    grep -x -F -f "$work/expected" "$work/decorated" >>"$work/plain" || true
    sort -o "$work/plain" "$work/plain"
    grep -v -x -F -f "$work/expected" "$work/decorated" >"$work/strange" || true
    comm -23 "$work/expected" "$work/plain" | sed 's/^/expected, but not exported: /' >"$work/wrong"
    comm -13 "$work/expected" "$work/plain" | sed 's/^/exported, but not expected: /' >>"$work/wrong"
    sed 's/^/exported, but of no exported class: /' "$work/strange" >>"$work/wrong"
    cat "$work/wrong"
    [ ! -s "$work/wrong" ]
}

must_fail() {
    if compare "$1" "$2" >"$work/said"; then
        echo "not noticed: $3"
        exit 1
    fi
    grep -q "$3" "$work/said" || { cat "$work/said"; echo "said otherwise: $3"; exit 1; }
}

symbols "$LIBRARY" >"$work/symbols"
[ -s "$work/symbols" ] || { echo "no symbols in $LIBRARY"; exit 1; }
case $1 in
    compare) compare "$work/symbols" "$EXPECTED" ;;
    selftest)
        printf '%s\n' WFMa WFMb 'WFMc(void*, int)' >"$work/list"
        printf '%s\n' WFMa WFMb _Z4WFMcPvi _ZN10CShareJson6ParserEPc _ZTV7QUpFile >"$work/good"
        compare "$work/good" "$work/list"
        printf '%s\n' WFMa >"$work/short"
        must_fail "$work/short" "$work/list" 'expected, but not exported: WFMb'
        printf '%s\n' WFMa WFMb _Z4WFMcPvl >"$work/other"
        must_fail "$work/other" "$work/list" 'expected, but not exported: WFMc(void\*, int)'
        must_fail "$work/other" "$work/list" 'of no exported class: WFMc(void\*, long)'
        printf '%s\n' WFMa WFMb helper >"$work/long"
        must_fail "$work/long" "$work/list" 'exported, but not expected: helper'
        printf '%s\n' WFMa WFMb _ZN7Lattice6Logger6finishEv >"$work/class"
        must_fail "$work/class" "$work/list" 'of no exported class: Lattice::Logger::finish()'
        ;;
    *) echo "no such check: $1"; exit 2 ;;
esac
