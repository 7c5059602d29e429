#!/usr/bin/env bash
# Runs the file-system matrix (tests/fs/tst_filesystems) once per file system, with more kill rounds than ctest
# runs (alternately reverted and finished, each killed later in the batch than the one before), and prints one
# line per file system: passed, skipped and why, or failed with the first failure.
# Needs root (it mounts tmpfs, loop images and FUSE file systems in a mount namespace of its own) and the tools:
#   apt-get install xfsprogs btrfs-progs exfatprogs exfat-fuse bindfs ntfs-3g fuse3
# Usage: bench/fs_matrix.sh [BUILD_DIR] [KILL_ROUNDS]   (default build/release, 6 rounds)
set -euo pipefail
cd "$(dirname "$0")/.."
build=${1:-build/release}
rounds=${2:-6}
test_binary="$PWD/$build/tests/fs/tst_filesystems"
[ -x "$test_binary" ] || { echo "build $build first (targets quillfern-cli and tst_filesystems)" >&2; exit 2; }
log=$(mktemp /tmp/quillfern-fs-matrix.XXXXXX)
trap 'rm -f "$log"' EXIT

# The test's global data tags are the file systems it knows.
mapfile -t systems < <("$test_binary" -datatags | sed -n 's/.* __global__ \(.*\)$/\1/p' | awk '!seen[$0]++')

status=0
for system in "${systems[@]}"; do
    start=$(date +%s%N)
    QUILLFERN_FS_ONLY="$system" QUILLFERN_FS_KILL_ROUNDS="$rounds" "$test_binary" >"$log" 2>&1 || true
    seconds=$(awk -v start="$start" -v end="$(date +%s%N)" 'BEGIN { print (end - start) / 1e9 }')
    totals=$(grep -m1 '^Totals:' "$log" || echo "Totals: no result")
    passed=$(sed -n 's/^Totals: \([0-9]*\) passed.*/\1/p' <<<"$totals")
    failed=$(sed -n 's/^Totals: [0-9]* passed, \([0-9]*\) failed.*/\1/p' <<<"$totals")
    if [ -z "$failed" ]; then
        printf '%-20s CRASHED after %.1f s: %s\n' "$system" "$seconds" "$(tail -n 1 "$log")"
        status=1
    elif [ "$failed" -gt 0 ]; then
        first=$(grep -m1 -A2 '^FAIL!' "$log" | tr -s ' \n' ' ')
        printf '%-20s FAILED %s of %s checks in %.1f s: %s\n' "$system" "$failed" "$((passed + failed))" "$seconds" "$first"
        status=1
    elif [ "$passed" -le 2 ] && grep -q '^SKIP' "$log"; then
        reason=$(grep -m1 '^SKIP' "$log" | sed 's/^SKIP *: [^ ]* //')
        printf '%-20s skipped: %s\n' "$system" "$reason"
    else
        kills=$(sed -n 's/^QINFO .* round \([0-9]*\), \([a-z]*\): .*; \([^;]*\) moved$/\1 \2 after \3/p;
                     s/^QINFO .* round \([0-9]*\), \([a-z]*\): \([^;]*\) moved$/\1 \2 after \3/p' "$log" \
            | sed 's/[0-9]* µs: //' | paste -sd ',' | sed 's/,/, /g')
        expected=$(grep -c '^XFAIL' "$log" || true)
        note=""
        [ "$expected" -gt 0 ] && note="; $expected kills left a claim that recovery does not clear yet (expected failures)"
        printf '%-20s passed %s checks in %.1f s; kill rounds: %s%s\n' "$system" "$((passed - 2))" "$seconds" "$kills" "$note"
    fi
done
exit "$status"
