#!/usr/bin/env bash
# Renames 10,000 and 100,000 files (f... -> g...) on /dev/shm and on the disk with quillfern-cli (planned,
# journaled batches), mmv and the bare renameat2(RENAME_NOREPLACE) loop of bare_rename.c, in interleaved rounds
# (bench/interleaved.py), and prints each command's median and its ratio to the loop. The journal lives where it
# does for a user: in the state folder on the disk.
# Usage: bench/transaction_vs_others.sh [BUILD_DIR] [ROUNDS]   (a Release build; default build/release, 20 rounds)
set -euo pipefail
cd "$(dirname "$0")/.."
build=${1:-build/release}
rounds=${2:-20}
cli="$PWD/$build/src/cli/quillfern-cli"
[ -x "$cli" ] || { echo "build $build first (quillfern-cli)" >&2; exit 2; }
for tool in gcc mmv python3; do
    command -v "$tool" >/dev/null || { echo "missing $tool: apt-get install gcc mmv python3" >&2; exit 2; }
done
work=$(mktemp -d /var/tmp/quillfern-transaction.XXXXXX)
trap 'rm -rf "$work"' EXIT
gcc -O2 -o "$work/bare_rename" bench/bare_rename.c
export XDG_STATE_HOME="$work/state"

for place in /dev/shm /var/tmp; do
    for count in 10000 100000; do
        echo "== $place, $count files, $rounds rounds"
        python3 bench/interleaved.py "$place" "$count" "$rounds" \
            "loop=$work/bare_rename {folder}" \
            "quillfern-cli=$cli rename --yes --do 'replace f with g' --recursive {folder}" \
            "mmv=cd {folder} && mmv 'f*' 'g#1'"
    done
done
