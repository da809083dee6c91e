#!/usr/bin/env bash
# Times the app scan (`quarle apps`) on a generated Mac-shaped system and home of 150 apps and
# 3,000 Library entries, warm, beside GNU du reading the same folders (the floor of touching every
# file once). With COLD=1 (root) each run starts with an empty page cache.
#
#   bench/apps-scan.sh [ROOT]   (default /var/tmp/quarle-bench/mac; made when missing)
#
# Environment: RUNS (default 7), APPS (150), ENTRIES (3000), COLD (0).
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
repo=$(cd "$here/.." && pwd)
root=${1:-/var/tmp/quarle-bench/mac}
runs=${RUNS:-7}
"$repo/tools/setup"
"$repo/tools/build" "$repo/build" -DCMAKE_BUILD_TYPE=RelWithDebInfo
quarle="$repo/build/src/cli/quarle"

if [[ ! -d "$root" ]]; then
    python3 "$here/tools/gen_mac_apps.py" "$root" "${APPS:-150}" "${ENTRIES:-3000}"
fi
export QUARLE_ROOT="$root/home" QUARLE_SYSTEM_ROOT="$root/system"

# Seconds of the fastest and the median of $runs runs of "$@".
timed() {
    local times=()
    for ((i = 0; i < runs; i++)); do
        [[ "${COLD:-0}" == 1 ]] && { sync; echo 3 > /proc/sys/vm/drop_caches; }
        local start end
        start=$(date +%s%N)
        "$@" >/dev/null
        end=$(date +%s%N)
        times+=($(( (end - start) / 1000 )))
    done
    printf '%s\n' "${times[@]}" | sort -n |
        awk '{t[NR] = $1} END {printf "%.3f %.3f", t[1] / 1e6, t[int((NR + 1) / 2)] / 1e6}'
}

"$quarle" apps >/dev/null  # warm the cache once
apps=$("$quarle" apps --json | python3 -c 'import json,sys; a=json.load(sys.stdin); print(len(a), sum(len(x["leftovers"]) for x in a))')
orphans=$("$quarle" orphans --json | python3 -c 'import json,sys; print(len(json.load(sys.stdin)))')
echo "== $root: ${apps% *} apps with ${apps#* } leftovers, $orphans orphans"
read -r q_best q_median <<<"$(timed "$quarle" apps)"
read -r d_best d_median <<<"$(timed du -s "$root/system/Applications" "$root/home/Applications" "$root/home/Library")"
printf '%-22s %8s %8s\n' "" "best s" "median s"
printf '%-22s %8s %8s\n' "quarle apps" "$q_best" "$q_median" "du -s (same folders)" "$d_best" "$d_median"
awk -v q="$q_median" -v d="$d_median" 'BEGIN {printf "quarle apps / du -s: %.2f\n", q / d}'
