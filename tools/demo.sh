#!/usr/bin/env bash
# A short tour of the library through kescomn.  Usage: tools/demo.sh [path/to/kescomn]
set -uo pipefail
kescomn=${1:-kescomn}
# Run from a checkout, the home directory is the one in the source tree.
export KESTOR=${KESTOR:-$(cd "$(dirname "$0")/.." && pwd)/share/kestor}
run() {
    printf '\n$ kescomn %s\n' "$*"
    "$kescomn" "$@"
}
run version
run convert int smallint 40000
run convert bigint char -12345 --maxlength 10 --format 1
run convert char float 1e-3
run convert binary int 0x01020304
run convert money char 12.3456
run numeric MUL 1.5 -2.25
run numeric DIV 1 3 --p1 10 --s1 0 --p2 10 --s2 0
run money ADD 922337203685477.5807 0.0001
run date add month 1 2001-01-31
run date diff week 2008-12-27 2008-12-28
run date parse "Feb 29 2024 1:45PM"
run date format "2024-02-29 13:45:00.5" --style 109
run path home
exit 0
