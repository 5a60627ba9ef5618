#!/bin/sh
# One check of docs/calls.md by name; the places come through the environment. Says each gap on a line of its own.
set -eu
export LC_ALL=C
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# The functions and the data that the library exports, but for the members and the type data of classes.
exports() {
    "$NM" -D --defined-only --format=posix "$LIBRARY" | awk '$2 ~ /^[TDRBV]$/ { print $1 }' | sed 's/@.*//' | c++filt |
        grep -v -e '::' -e '^_' -e ' for ' | sed 's/(.*//' | sort -u
}

# The rows of the tables, without head, rule and backticks: export|header|endpoints|twice|tests|command
rows() {
    awk -F'|' '
        /^\| *`/ {
            for (i = 2; i <= 7; ++i) { gsub(/^ +| +$/, "", $i) }
            gsub(/`/, "", $2); gsub(/`/, "", $3); gsub(/[`,]/, " ", $6); gsub(/`/, "", $7)
            print $2 "|" $3 "|" $4 "|" $5 "|" $6 "|" $7 "|" NF
        }' "$CALLS"
}

# column N: export and each word of that column
column() {
    rows | awk -F'|' -v n="$1" '{ count = split($n, words, " "); for (i = 1; i <= count; ++i) print $1, words[i] }'
}

# export and each command, which may be of several words
commands() {
    rows | awk -F'|' '{ count = split($6, list, /, */); for (i = 1; i <= count; ++i) print $1, list[i] }'
}

# The tests of all programs, as "Suite.Name"; instances of a parameterized suite count under its own name too.
tests() {
    echo "$PROGRAMS" | tr ':' '\n' | while read -r program; do
        [ -n "$program" ] || continue
        "$program" --gtest_list_tests | sed 's/ *#.*//' | awk '
            /^[^ ]/ { suite = $1; bare = suite; sub(/^[^\/]*\//, "", bare); sub(/[.\/].*/, "", bare) }
            /^ / { name = $1; plain = name; sub(/\/.*/, "", plain); print suite name; print suite; print bare "." plain; print bare "." }'
    done | sort -u
}

# Whether torvi has that command. It is asked once, however many rows and tables name it.
has_command() {
    help="$work/torvi $1"
    # shellcheck disable=SC2086  # a command of several words
    [ -f "$help" ] || "$TORVI" $1 --help >"$help" 2>/dev/null || : >"$help"
    [ -s "$help" ]
}

header_of() {
    case $1 in
        */*) echo "$SOURCE/$1" ;;
        *) echo "$SOURCE/include/$1" ;;
    esac
}

EveryExportHasOneRow() {
    exports >"$work/exports"
    rows | cut -d'|' -f1 | sort >"$work/rows"
    comm -23 "$work/exports" "$work/rows" | sed 's/$/: exported, but without a row/'
    uniq -d "$work/rows" | sed 's/$/: more than one row/'
}

EveryRowIsAnExport() {
    exports >"$work/exports"
    rows | cut -d'|' -f1 | sort -u | comm -13 "$work/exports" - | sed 's/$/: a row, but no export/'
}

EveryRowIsWhole() {
    rows | awk -F'|' '$7 != 8 { print $1 ": not six columns"; next }
                      { for (i = 2; i <= 6; ++i) if ($i ~ /^ *$/) print $1 ": column " i " is empty" }'
}

# A declaration counts as documented if a comment ends on the line above it.
EveryExportIsDocumentedInItsHeader() {
    rows | cut -d'|' -f1,2 | tr '|' ' ' | while read -r function header; do
        file=$(header_of "$header")
        [ -f "$file" ] || { echo "$function: no such header: $header"; continue; }
        awk -v name="$function" '
            $0 ~ ("[ *&]" name "[[(;]") && /TORVIAPI_EXPORT/ { found = 1; if (before ~ /^ *(\/\/\/|\*\/|\/\*\*.*\*\/)/) good = 1 }
            { before = $0 }
            END { if (!found) print name ": not declared in " header
                  else if (!good) print name ": no comment above it in " header }' header="$header" "$file"
    done
}

EveryTestInARowExists() {
    [ -f "$work/tests" ] || tests >"$work/tests"
    column 5 | while read -r function name; do
        case $name in
            *.*) grep -q -x -F "$name" "$work/tests" || echo "$function: no such test: $name" ;;
            *) grep -q -x -F "$name." "$work/tests" || echo "$function: no such suite: $name" ;;
        esac
    done
}

# A wire test that goes through the export: one of the row's suites lies in a wire test file that names it.
EveryExportHasAWireTest() {
    exports >"$work/exports"
    in_wire_tests() { (cd "$SOURCE/tests/wire" && grep -H -o "$@" -- *_wire_test.cpp) | sort -u; }
    in_wire_tests -E '^(TEST|TEST_F|TEST_P|TYPED_TEST)\([A-Za-z0-9_]+' | sed 's/:.*(/ /' >"$work/suites"
    in_wire_tests -w -F -f "$work/exports" | tr ':' ' ' >"$work/named"
    join "$work/suites" "$work/named" | awk '{ print $3, $2 }' | sort -u >"$work/proofs"
    column 5 | sed 's/[./][^ ]*$//' | sort -u | comm -12 - "$work/proofs" | cut -d' ' -f1 | uniq |
        comm -23 "$work/exports" - | sed 's/$/: no wire test names it/'
}

EveryCommandInARowExists() {
    [ -n "$TORVI" ] || return 0
    commands | while read -r function command; do
        [ "$command" = - ] || has_command "$command" || echo "$function: no such command: torvi $command"
    done
    # The check means something only if a wrong name is refused.
    for command in no-such-command "team no-such-command"; do
        ! has_command "$command" || echo "torvi takes any command: $command"
    done
}

# A table of our own with one gap at a time: each must be told.
ChecksNoticeEachGap() {
    original=$CALLS
    CALLS=$work/calls.md
    notices() {
        check=$1
        expected=$2
        said=$($check)
        case $said in
            *"$expected"*) ;;
            *) echo "$check doesn't tell: $expected" ;;
        esac
    }
    # A function and a table of words, without a row and with two.
    for victim in WFMGetVersion gNetworkTypes; do
        sed "/^| *\`$victim\`/d" "$original" >"$CALLS"
        notices EveryExportHasOneRow "$victim: exported, but without a row"
        notices EveryExportHasAWireTest "$victim: no wire test names it"
        sed "/^| *\`$victim\`/p" "$original" >"$CALLS"
        notices EveryExportHasOneRow "$victim: more than one row"
    done
    # The row of another's tests.
    sed "/^| *\`WFMGetVersion\`/s/WFMGetVersionWire/LinkTypesWire/" "$original" >"$CALLS"
    notices EveryExportHasAWireTest "WFMGetVersion: no wire test names it"
    # A row with a gap between two good ones: these checks go row by row.
    row() {
        good=$(grep '^| *`WFMGetVersion`' "$original")
        printf '%s\n' "$good" "$1" "$good" >"$CALLS"
    }
    row '| `NoSuchCall` | `WebFileManAPI.h` | - | safe | `NoSuchSuite`, `NoSuchSuite.Test` | `no-such-command` |'
    notices EveryRowIsAnExport "NoSuchCall: a row, but no export"
    notices EveryExportIsDocumentedInItsHeader "NoSuchCall: not declared in WebFileManAPI.h"
    notices EveryTestInARowExists "NoSuchCall: no such suite: NoSuchSuite"
    notices EveryTestInARowExists "NoSuchCall: no such test: NoSuchSuite.Test"
    [ -z "$TORVI" ] || notices EveryCommandInARowExists "NoSuchCall: no such command: torvi no-such-command"
    row '| `NoSuchCall` | `WebFileManAPI.h` | - | safe | `NoSuchSuite` | `ls`, `team no-such-command` |'
    [ -z "$TORVI" ] || notices EveryCommandInARowExists "NoSuchCall: no such command: torvi team no-such-command"
    row '| `NoSuchCall` | `NoSuchHeader.h` | - | | `-` | `-` |'
    notices EveryExportIsDocumentedInItsHeader "NoSuchCall: no such header: NoSuchHeader.h"
    notices EveryRowIsWhole "NoSuchCall: column 4 is empty"
    row '| `NoSuchCall` | `WebFileManAPI.h` | - |'
    notices EveryRowIsWhole "NoSuchCall: not six columns"
    mkdir "$work/include"
    printf '%s\n' 'int x;' 'TORVIAPI_EXPORT uint32_t Bare(int a);' \
        'TORVIAPI_EXPORT extern const int gWords[2];' >"$work/include/Bare.h"
    SOURCE=$work
    printf '%s\n' '| `Bare` | `Bare.h` | - | - | - | - |' '| `gWords` | `Bare.h` | - | - | - | - |' >"$CALLS"
    notices EveryExportIsDocumentedInItsHeader "Bare: no comment above it in Bare.h"
    notices EveryExportIsDocumentedInItsHeader "gWords: no comment above it in Bare.h"
}

[ -n "$(exports)" ] || { echo "no exports in $LIBRARY"; exit 1; }
case $1 in
    Every*|ChecksNoticeEachGap) ;;
    *) echo "no such check: $1"; exit 2 ;;
esac
gaps=$($1)
[ -z "$gaps" ] || { printf '%s\n' "$gaps"; exit 1; }
