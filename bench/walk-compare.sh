#!/usr/bin/env bash
# Times `quarle du` against GNU du, ncdu, gdu and the floor walker on one generated tree of about a
# million files, warm and cold, side by side in one run, and checks every total against an
# independent count. Needs root for dropping the page cache.
#
#   bench/walk-compare.sh [TREE]     (default /var/tmp/quarle-bench/wide; made when missing, ~8 GB)
#
# Environment: RUNS (warm runs, default 5), COLD_RUNS (default 3), THREADS ("2 4 8": Quarle's
# thread counts to compare).
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
repo=$(cd "$here/.." && pwd)
tree=${1:-/var/tmp/quarle-bench/wide}
out="$repo/bench/out"
bin="$out/bin"
runs=${RUNS:-5}
cold_runs=${COLD_RUNS:-3}
threads=${THREADS:-"2 4 8"}
mkdir -p "$bin"

for pkg in hyperfine ncdu gdu; do
    command -v "$pkg" >/dev/null || { apt-get install -y -qq "$pkg" >/dev/null; }
done
"$repo/tools/setup"
"$repo/tools/build" "$repo/build" -DCMAKE_BUILD_TYPE=RelWithDebInfo
quarle="$repo/build/src/cli/quarle"
gcc -O2 -o "$bin/gen_wide" "$here/tools/gen_wide.c" -lm
gcc -O2 -o "$bin/floor" "$here/tools/floor.c" -lpthread

if [[ ! -d "$tree" ]]; then
    echo "Building the tree in $tree (about 85 s)…"
    mkdir -p "$(dirname "$tree")"
    "$bin/gen_wide" "$tree" 50000 1000000 12345
    ln -s / "$tree/sl_to_slash"
    ln -s .. "$tree/sl_to_parent"
fi

echo "== Totals (allocated bytes of regular files and folders, each inode once)"
oracle=$(find "$tree" -xdev \( -type f -o -type d \) -printf '%i %b\n' | sort -u | awk '{s+=$2*512} END{printf "%.0f", s}')
# floor's du_bytes counts symbolic links' blocks too: none for the tree's short links.
floor=$("$bin/floor" -t 2 "$tree" | sed -n 's/.*du_bytes=\([0-9]*\).*/\1/p')
ours=$("$quarle" du --json "$tree" | python3 -c 'import json,sys; print(json.load(sys.stdin)[0]["bytes"])')
tree4=$("$quarle" du --json --tree 4 "$tree" | python3 -c 'import json,sys; print(json.load(sys.stdin)[0]["bytes"])')
printf '  oracle %s\n  floor  %s\n  quarle %s\n  quarle --tree 4 %s\n' "$oracle" "$floor" "$ours" "$tree4"
if [[ "$oracle" == "$floor" && "$oracle" == "$ours" && "$oracle" == "$tree4" ]]; then
    echo "  all equal"
else
    echo "  MISMATCH"
fi

commands=(
    "du -s $tree"
    "ncdu -0 -o /dev/null -x $tree"
    "gdu -npsx --no-prefix $tree"
    "$bin/floor -t 2 $tree"
    "$bin/floor -t 8 $tree"
    "$quarle du --tree 4 $tree"
)
names=("du -s" "ncdu" "gdu" "floor -t 2" "floor -t 8" "quarle du --tree 4")
for t in $threads; do
    commands+=("env QUARLE_WALK_THREADS=$t $quarle du $tree")
    names+=("quarle du ($t threads)")
done
args=()
for i in "${!commands[@]}"; do args+=(-n "${names[$i]}" "${commands[$i]}"); done

echo "== Warm"
hyperfine -N --style basic --warmup 1 --runs "$runs" --export-json "$out/warm.json" "${args[@]}" >/dev/null
echo "== Cold (page cache dropped before every run)"
hyperfine -N --style basic --runs "$cold_runs" --prepare 'sh -c "sync; echo 3 > /proc/sys/vm/drop_caches"' \
    --export-json "$out/cold.json" "${args[@]}" >/dev/null

echo "== Peak memory (warm)"
: >"$out/memory.txt"
for i in "${!commands[@]}"; do
    /usr/bin/time -f '%M' -o "$out/rss" ${commands[$i]} >/dev/null 2>&1 || true
    kb=$(tail -1 "$out/rss")
    printf '%s\t%s\n' "${names[$i]}" "$kb" >>"$out/memory.txt"
done

python3 - "$out" <<'PY'
import json, sys
out = sys.argv[1]
memory = dict(line.rstrip("\n").split("\t") for line in open(f"{out}/memory.txt"))
warm = {r["command"]: r for r in json.load(open(f"{out}/warm.json"))["results"]}
cold = {r["command"]: r for r in json.load(open(f"{out}/cold.json"))["results"]}
print(f"{'':24} {'warm s':>8} {'÷floor2':>8} {'cold s':>8} {'÷floor2':>8} {'÷floor8':>8} {'peak MB':>8}")
for name in warm:
    w, c = warm[name]["median"], cold[name]["median"]
    print(f"{name:24} {w:8.2f} {w / warm['floor -t 2']['median']:8.2f} {c:8.2f} "
          f"{c / cold['floor -t 2']['median']:8.2f} {c / cold['floor -t 8']['median']:8.2f} "
          f"{int(memory.get(name, 0)) / 1024:8.1f}")
PY
