#!/usr/bin/env bash
# Kills quillfern-cli with SIGKILL at random points of a 5,000-file batch of random permutations (many
# cycles), recovers with a random choice of --finish and --revert, and checks that no file was lost or doubled
# and that each is under its old or its new name with its own content. The long version of the crash test
# that ctest runs for a few rounds.
# Usage: bench/crash_recovery.sh [BUILD_DIR] [ROUNDS]   (default build/release, 200 rounds)
set -euo pipefail
cd "$(dirname "$0")/.."
build=${1:-build/release}
rounds=${2:-200}
cli="$PWD/$build/src/cli/quillfern-cli"
[ -x "$cli" ] || { echo "build $build first (quillfern-cli)" >&2; exit 2; }
work=$(mktemp -d /dev/shm/quillfern-crash.XXXXXX)
trap 'rm -rf "$work"' EXIT
export XDG_STATE_HOME="$work/state" XDG_DATA_HOME="$work/data"
"$cli" parse 'add numbering' | python3 -c '
import json, sys
rule = json.load(sys.stdin)[0]["rule"]
rule.update(numberingPosition="Replace Name", numberingPadding=4, numberingStart=1)
print(json.dumps([rule]))' >"$work/rules.json"

killed=0
for round in $(seq 1 "$rounds"); do
    files="$work/files"
    rm -rf "$files" && mkdir -p "$files"
    python3 - "$files" <<'PY'
import os, random, sys
for i in range(1, 5001):
    name = "%04d" % i
    with open(os.path.join(sys.argv[1], name), "w") as out:
        out.write(name + "." * random.randrange(20000))
PY
    "$cli" preview --format json --rules "$work/rules.json" --sort size --recursive "$files" >"$work/plan.json"
    "$cli" rename --yes --rules "$work/rules.json" --sort size --recursive "$files" >/dev/null 2>&1 &
    pid=$!
    sleep "0.0$((RANDOM % 60))"
    kill -9 "$pid" 2>/dev/null && killed=$((killed + 1)) || true
    wait "$pid" 2>/dev/null || true
    mode=$([ $((RANDOM % 2)) -eq 0 ] && echo --finish || echo --revert)
    "$cli" recover "$mode" >"$work/recover.out" 2>"$work/recover.err" || { cat "$work/recover.err"; exit 1; }
    # A kill that came after the batch ended leaves nothing to recover: every file has its new name then.
    grep -q "No interrupted batch" "$work/recover.out" && mode=--finish
    python3 - "$files" "$work/plan.json" "$mode" <<'PY'
import json, os, sys
folder, plan, mode = sys.argv[1], json.load(open(sys.argv[2])), sys.argv[3]
new_name = {entry["original"]: entry["preview"] for entry in plan}
names = sorted(os.listdir(folder))
assert len(names) == 5000, f"{len(names)} files"
for name in names:
    original = open(os.path.join(folder, name)).read(4)
    expected = new_name[original] if mode == "--finish" else original
    assert name == expected, f"{name} holds {original}, expected {expected} after {mode}"
PY
done
echo "$rounds rounds, $killed killed mid-batch or later, no file lost or doubled"
