#!/usr/bin/env bash
# A short tour of the library through kescomn.  Usage: tools/demo.sh [path/to/kescomn]
set -uo pipefail
kescomn=${1:-kescomn}
run() {
    printf '\n$ kescomn %s\n' "$*"
    "$kescomn" "$@"
}
run version
run convert int smallint 40000
run convert bigint char -12345 --maxlength 10 --format 1
run convert ubigint float 18446744073709551615
run convert bit varbinary 1
exit 0
