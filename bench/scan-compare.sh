#!/usr/bin/env bash
# Times `quarle report` of a generated Mac-shaped or Linux-shaped home against `quarle du` of the
# same folder, side by side in one hyperfine run, warm, and prints the ratio. A scan should cost
# little more than the walk itself.
#
#   bench/scan-compare.sh [mac|linux] [HOME]
#       (default mac; HOME defaults to /var/tmp/quarle-bench/machome or linuxhome, made when missing)
#
# Environment: RUNS (default 10).
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
repo=$(cd "$here/.." && pwd)
shape=mac
if [[ "${1:-}" == mac || "${1:-}" == linux ]]; then
    shape=$1
    shift
fi
home=${1:-/var/tmp/quarle-bench/${shape}home}
runs=${RUNS:-10}
out="$repo/bench/out"
mkdir -p "$out"

command -v hyperfine >/dev/null || apt-get install -y -qq hyperfine >/dev/null
"$repo/tools/setup"
"$repo/tools/build" "$repo/build" -DCMAKE_BUILD_TYPE=RelWithDebInfo
quarle="$repo/build/src/cli/quarle"

if [[ ! -d "$home" ]]; then
    echo "Building the home in $home…"
    python3 "$here/tools/gen_${shape}_home.py" "$home"
fi

# The report runs on the home as another root: nothing outside it is measured (no system folders
# either, QUARLE_SYSTEM_ROOT being unset), so both commands read exactly the same files. HOME and
# the XDG folders point into a scratch folder.
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
env=(env -u QUARLE_SYSTEM_ROOT HOME="$scratch" XDG_DATA_HOME="$scratch/share" XDG_CONFIG_HOME="$scratch/config" QUARLE_ROOT="$home")
hyperfine --warmup 2 --runs "$runs" --export-json "$out/scan-$shape.json" \
    -n "quarle du" "${env[*]} $quarle du $home" \
    -n "quarle report" "${env[*]} $quarle report"
python3 - "$out/scan-$shape.json" <<'PY'
import json, sys
r = {x["command"]: x["mean"] for x in json.load(open(sys.argv[1]))["results"]}
print("report / du = %.3f  (du %.3f s, report %.3f s)" % (r["quarle report"] / r["quarle du"], r["quarle du"], r["quarle report"]))
PY
