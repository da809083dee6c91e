#!/usr/bin/env bash
# Times `quarle du` with and without extent lookups against the floor walker on a loop-mounted Btrfs
# image holding about 200,000 files (half of them reflinked copies of the other half), and on ext4
# (the same files, plain copies), side by side in one run; prints the totals and the peak memory
# with and without lookups (the difference is the charged-range set). Needs root (loop mount).
#
#   bench/reflink-compare.sh [WORKDIR]     (default /var/tmp/quarle-bench/reflink; ~3 GB)
#
# Environment: RUNS (warm runs, default 5), FILES (originals, default 100000).
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
repo=$(cd "$here/.." && pwd)
work=${1:-/var/tmp/quarle-bench/reflink}
out="$repo/bench/out"
bin="$out/bin"
runs=${RUNS:-5}
files=${FILES:-100000}
mkdir -p "$bin" "$work"

command -v hyperfine >/dev/null || apt-get install -y -qq hyperfine >/dev/null
"$repo/tools/setup"
"$repo/tools/build" "$repo/build" -DCMAKE_BUILD_TYPE=RelWithDebInfo
quarle="$repo/build/src/cli/quarle"
gcc -O2 -o "$bin/gen_wide" "$here/tools/gen_wide.c" -lm
gcc -O2 -o "$bin/floor" "$here/tools/floor.c" -lpthread

image="$work/btrfs.img"
btrfs="$work/btrfs"
ext4="$work/ext4"
mkdir -p "$btrfs"
if ! mountpoint -q "$btrfs"; then
    if [[ ! -f "$image" ]]; then
        truncate -s 8G "$image"
        mkfs.btrfs -q "$image"
        fresh=1
    fi
    mount -o loop "$image" "$btrfs"
fi
trap 'umount "$btrfs" || true' EXIT
if [[ ${fresh:-0} == 1 || ! -d "$btrfs/copies" ]]; then
    echo "Building $((2 * files)) files on Btrfs and ext4…"
    rm -rf "$btrfs/originals" "$btrfs/copies" "$ext4"
    "$bin/gen_wide" "$btrfs/originals" $((files / 20)) "$files" 12345 >/dev/null
    cp -a --reflink=always "$btrfs/originals" "$btrfs/copies"
    mkdir -p "$ext4"
    cp -a "$btrfs/originals" "$ext4/originals"
    cp -a "$btrfs/originals" "$ext4/copies"
    sync
fi

echo "== Totals"
with=$("$quarle" du --json "$btrfs" | python3 -c 'import json,sys; print(json.load(sys.stdin)[0]["bytes"])')
without=$(QUARLE_NO_EXTENTS=1 "$quarle" du --json "$btrfs" | python3 -c 'import json,sys; print(json.load(sys.stdin)[0]["bytes"])')
printf '  btrfs, with lookups     %s\n  btrfs, without lookups  %s\n' "$with" "$without"
printf '  btrfs data in use       %s\n' "$(btrfs filesystem df -b "$btrfs" | sed -n 's/^Data.*used=\([0-9]*\).*/\1/p')"
printf '  ext4                    %s\n' "$("$quarle" du --json "$ext4" | python3 -c 'import json,sys; print(json.load(sys.stdin)[0]["bytes"])')"

commands=(
    "$quarle du $btrfs"
    "env QUARLE_NO_EXTENTS=1 $quarle du $btrfs"
    "$bin/floor -t 8 $btrfs"
    "$quarle du $ext4"
    "$bin/floor -t 8 $ext4"
)
names=("btrfs: quarle du" "btrfs: no lookups" "btrfs: floor -t 8" "ext4: quarle du" "ext4: floor -t 8")
args=()
for i in "${!commands[@]}"; do args+=(-n "${names[$i]}" "${commands[$i]}"); done
hyperfine -N --style basic --warmup 1 --runs "$runs" --export-json "$out/reflink.json" "${args[@]}" >/dev/null

: >"$out/reflink-memory.txt"
for i in "${!commands[@]}"; do
    /usr/bin/time -f '%M' -o "$out/rss" ${commands[$i]} >/dev/null 2>&1 || true
    printf '%s\t%s\n' "${names[$i]}" "$(tail -1 "$out/rss")" >>"$out/reflink-memory.txt"
done

python3 - "$out" <<'PY'
import json, sys
out = sys.argv[1]
memory = dict(line.rstrip("\n").split("\t") for line in open(f"{out}/reflink-memory.txt"))
r = {x["command"]: x["median"] for x in json.load(open(f"{out}/reflink.json"))["results"]}
print(f"{'':20} {'warm s':>8} {'÷no lookups':>12} {'÷floor':>8} {'peak MB':>8}")
for name, t in r.items():
    floor = r["ext4: floor -t 8"] if name.startswith("ext4") else r["btrfs: floor -t 8"]
    print(f"{name:20} {t:8.3f} {t / r['btrfs: no lookups']:12.2f} {t / floor:8.2f} {int(memory[name]) / 1024:8.1f}")
extra = int(memory["btrfs: quarle du"]) - int(memory["btrfs: no lookups"])
print(f"charged-range set: about {extra / 1024:.1f} MB of peak memory (with minus without lookups)")
PY
