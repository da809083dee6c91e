#!/usr/bin/env bash
# The window's speed in one run, beside its goals: launch to the first painted window (the
# demonstration, offscreen, and under Xvfb when it is installed), the longest time the main thread
# did not answer while a generated home of about 300,000 files is scanned with Clean open, and
# opening and paging through a row of 10,000 parts, and Storage on a home of about a million files:
# the longest stall while stepping through its columns with the map following the selection, the
# map's layout and redraw, and the window's peak memory.
#
#   bench/window-bench.sh            (homes made under /var/tmp/quarle-bench when missing)
#
# Environment: RUNS (default 5) launches for the first paint.
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
repo=$(cd "$here/.." && pwd)
runs=${RUNS:-5}
base=/var/tmp/quarle-bench
"$repo/tools/setup"
"$repo/tools/build" "$repo/build" -DCMAKE_BUILD_TYPE=RelWithDebInfo
cmake --build "$repo/build" --target window_bench
bench="$repo/build/bench/window_bench"

machome=$base/machome
[[ -d $machome ]] || python3 "$here/tools/gen_mac_home.py" "$machome"
bighome=$base/bighome
[[ -d $bighome ]] || "$here/tools/gen_big_home.sh" "$bighome"
parts=$base/partshome
if [[ ! -d $parts ]]; then
    python3 - "$parts" <<'PY'
import os, sys
caches = os.path.join(sys.argv[1], "Library/Caches")
for i in range(10000):
    d = os.path.join(caches, "com.example.app%05d" % i)
    os.makedirs(d, exist_ok=True)
    with open(os.path.join(d, "cache.db"), "wb") as f:
        f.write(b"\0" * 4096)
PY
fi

# Preferences, History and the Trash of a throw-away home; the scanned home comes by QUARLE_ROOT.
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
run() {
    env HOME="$scratch" XDG_CONFIG_HOME="$scratch/.config" XDG_DATA_HOME="$scratch/.local/share" \
        XDG_CACHE_HOME="$scratch/.cache" XDG_RUNTIME_DIR="$scratch/run" QT_QPA_PLATFORM=offscreen "$@" 2>/dev/null
}
median() { sort -n | awk '{a[NR]=$1} END {print a[int((NR+1)/2)]}'; }

offscreen=$(for _ in $(seq "$runs"); do run "$bench" first-paint; done | median)
xvfb="not installed"
if command -v xvfb-run >/dev/null; then
    xvfb=$(for _ in $(seq "$runs"); do run env QT_QPA_PLATFORM=xcb xvfb-run -a "$bench" first-paint; done | median)" ms"
fi
read -r stall over < <(run env QUARLE_ROOT="$machome" "$bench" stall)
read -r count open slowest middle < <(run env QUARLE_ROOT="$parts" "$bench" parts)
read -r sstall sover layout redraw widest memory < <(run env QUARLE_ROOT="$bighome" \
    QUARLE_BENCH_WIDE="$bighome/Downloads/flat" "$bench" storage)

printf '%-52s %12s %12s\n' "" "measured" "goal"
printf '%-52s %9s ms %12s\n' "launch to first painted window, offscreen (median)" "$offscreen" "< 500 ms"
printf '%-52s %12s %12s\n' "launch to first painted window, Xvfb (median)" "$xvfb" "< 500 ms"
printf '%-52s %9s ms %12s\n' "longest main-thread stall, scan of $(basename "$machome")" "$stall" "< 50 ms"
printf '%-52s %12s %12s\n' "  stalls above 50 ms" "$over" "0"
printf '%-52s %9s ms %12s\n' "open a row of $count parts" "$open" ""
printf '%-52s %9s ms %12s\n' "  slowest frame paging through it" "$slowest" "< 16 ms"
printf '%-52s %9s ms %12s\n' "  median frame" "$middle" "< 16 ms"
printf '%-52s %9s ms %12s\n' "Storage: longest stall, columns and map, 1M files" "$sstall" "< 50 ms"
printf '%-52s %12s %12s\n' "  stalls above 50 ms" "$sover" "0"
printf '%-52s %9s ms %12s\n' "  map layout when the selection changes (slowest)" "$layout" ""
printf '%-52s %9s ms %12s\n' "  map redraw (slowest)" "$redraw" "< 16 ms"
printf '%-52s %12s %12s\n' "  entries in the widest column" "$widest" ""
printf '%-52s %9s MB %12s\n' "  window's peak memory with that home" "$memory" "< 200 MB"
echo "(cores: $(nproc), load: $(cut -d' ' -f1 /proc/loadavg); the walk runs QUARLE_WALK_THREADS threads, default 8)"
