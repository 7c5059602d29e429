#!/usr/bin/env bash
# Renames 10,000 and 100,000 files in one folder, on /dev/shm and on the normal disk, with quillfern-cli,
# Debian's perl rename (file-rename), mmv and a bare renameat2 loop, each doing the same work (append "_x"
# before the extension), and prints the times as ratios to the bare loop. Then times a quillfern-cli preview
# of 100,000 files with a four-rule chain.
# Usage: bench/cli_vs_others.sh [BUILD_DIR]   (a Release build; default build/release)
set -euo pipefail
cd "$(dirname "$0")/.."
build=${1:-build/release}
cli="$PWD/$build/src/cli/quillfern-cli"
loop="$PWD/$build/bench/bench_renameloop"
[ -x "$cli" ] && [ -x "$loop" ] || { echo "build $build first (quillfern-cli, bench_renameloop)" >&2; exit 2; }
for tool in hyperfine file-rename mmv python3; do
    command -v "$tool" >/dev/null || { echo "missing $tool: apt-get install hyperfine rename mmv python3" >&2; exit 2; }
done

work=$(mktemp -d)
trap 'rm -rf "$work" /dev/shm/quillfern-bench "/var/tmp/quillfern-bench"' EXIT
"$cli" parse 'append _x' | python3 -c 'import json,sys; print(json.dumps([s["rule"] for s in json.load(sys.stdin)]))' >"$work/rules.json"

make_files() { # folder count
    rm -rf "$1" && mkdir -p "$1"
    (cd "$1" && seq -f 'file_%06g.txt' 1 "$2" | xargs touch)
    # The disk writes of making (and deleting) the files happen now, not during the next timed run.
    sync
}

printf '%-10s %-8s %-14s %10s %8s\n' place files tool seconds ratio
for place in /dev/shm /var/tmp; do
    folder="$place/quillfern-bench"
    for count in 10000 100000; do
        runs=$((count > 10000 ? 5 : 10))
        hyperfine --style none --runs "$runs" --export-json "$work/result.json" \
            --prepare "$(declare -f make_files); make_files '$folder' $count" \
            -n loop "'$loop' '$folder' _x" \
            -n quillfern-cli "'$cli' rename --yes --rules '$work/rules.json' --recursive '$folder' >/dev/null" \
            -n perl-rename "cd '$folder' && find . -maxdepth 1 -type f -printf '%P\\0' | file-rename -0 's/\\.txt\$/_x.txt/'" \
            -n mmv "cd '$folder' && mmv '*.txt' '#1_x.txt'" >/dev/null
        python3 - "$work/result.json" "$place" "$count" <<'PY'
import json, sys
results = {r["command"]: r["median"] for r in json.load(open(sys.argv[1]))["results"]}
base = results["loop"]
for name in ["loop", "quillfern-cli", "perl-rename", "mmv"]:
    print(f"{sys.argv[2]:<10} {sys.argv[3]:<8} {name:<14} {results[name]:10.3f} {results[name] / base:7.2f}x")
PY
    done
done

folder=/dev/shm/quillfern-bench
make_files "$folder" 100000
"$cli" parse 'replace "file" with "photo"' | python3 -c 'import json,sys; print(json.dumps([s["rule"] for s in json.load(sys.stdin)]))' >"$work/chain.json"
for command in 'title case' 'add numbering starting at 1' 'clean special characters'; do
    "$cli" parse "$command" | python3 -c 'import json,sys; print(json.dumps([s["rule"] for s in json.load(sys.stdin)]))' >"$work/next.json"
    python3 -c 'import json,sys; a=json.load(open(sys.argv[1])); b=json.load(open(sys.argv[2])); json.dump(a+b, open(sys.argv[1],"w"))' "$work/chain.json" "$work/next.json"
done
hyperfine --style none --runs 5 --export-json "$work/preview.json" \
    -n preview "'$cli' preview --format csv --rules '$work/chain.json' --recursive '$folder' >/dev/null" >/dev/null
python3 - "$work/preview.json" <<'PY2'
import json, sys
result = json.load(open(sys.argv[1]))["results"][0]
print(f"quillfern-cli preview of 100,000 files with a four-rule chain: {result['median']:.3f} s (median of 5)")
PY2
