#!/usr/bin/env bash
# Times Quarle's Trash on 10,000 small files against the floor of plain renames, side by side in
# one run: `quarle trash` of all of them in one call, `quarle restore` of the entry, and `quarle
# expire` of it once it is old enough; with trash-cli's trash-put and trash-empty as a peer.
# Counts the history saves of the trash call (renames onto history.json, traced with strace).
#
#   bench/trash-compare.sh [FOLDER]   (default /var/tmp/quarle-bench/trash; a fresh fixture home
#                                      is made in it; as root the same runs again on a tmpfs)
# Environment: FILES (default 10000).
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
repo=$(cd "$here/.." && pwd)
base=${1:-/var/tmp/quarle-bench/trash}
files=${FILES:-10000}
bin="$repo/bench/out/bin"
mkdir -p "$bin" "$base"

"$repo/tools/setup"
"$repo/tools/build" "$repo/build" -DCMAKE_BUILD_TYPE=RelWithDebInfo
command -v strace >/dev/null || apt-get install -y -qq strace >/dev/null
quarle="$repo/build/src/cli/quarle"
gcc -O2 -o "$bin/rename_floor" "$here/tools/rename_floor.c"

seconds() {  # seconds a command takes, its output discarded
    local start end
    start=$(date +%s.%N)
    "$@" >/dev/null
    end=$(date +%s.%N)
    echo "$end - $start" | bc -l
}

make_files() {  # folder
    rm -rf "$1"
    mkdir -p "$1"
    (cd "$1" && seq -f 'f%05g' 1 "$files" | xargs -n 1000 sh -c 'for f; do printf "%100s" "$f" >"$f"; done' sh)
}

run_on() {  # a folder that becomes the fixture home
    local home=$1 k=$1/home/k
    rm -rf "$home"
    mkdir -p "$home/home" "$home/aside" "$home/info"
    export HOME=$home/home QUARLE_ROOT=$home/home XDG_DATA_HOME=$home/home/.local/share
    local trash=$XDG_DATA_HOME/Trash
    echo "== $files files of 100 bytes in $home ($(stat -f -c %T "$home"))"

    make_files "$k"
    sync
    local floor floor_info
    floor=$("$bin/rename_floor" "$k" "$home/aside")
    "$bin/rename_floor" "$home/aside" "$k" >/dev/null
    floor_info=$("$bin/rename_floor" "$k" "$home/aside" "$home/info")
    "$bin/rename_floor" "$home/aside" "$k" >/dev/null
    rm -rf "$home/info" && mkdir "$home/info"
    sync

    local trace=$home/trace start end t_trash t_restore t_expire saves id
    start=$(date +%s.%N)
    strace -f --seccomp-bpf -qq -e trace=rename -o "$trace" "$quarle" trash "$k"/* >"$home/out"
    end=$(date +%s.%N)
    t_trash=$(echo "$end - $start" | bc -l)
    saves=$(grep -c 'history.json")' "$trace" || true)
    id=$(sed -n 's/^History entry: //p' "$home/out")
    sync
    t_restore=$(seconds "$quarle" restore "$id")
    sync

    "$quarle" trash "$k"/* >"$home/out"
    id=$(sed -n 's/^History entry: //p' "$home/out")
    python3 - "$XDG_DATA_HOME/Quarle/history.json" <<'PY'
import datetime, json, sys
path = sys.argv[1]
entries = json.load(open(path))
old = datetime.datetime.now(datetime.timezone.utc) - datetime.timedelta(days=3)
entries[0]["date"] = old.strftime("%Y-%m-%dT%H:%M:%SZ")
json.dump(entries, open(path, "w"), indent=4)
PY
    sync
    t_expire=$(seconds "$quarle" expire --days 2)
    sync

    local t_put="-" t_empty="-"
    if command -v trash-put >/dev/null; then
        make_files "$k"
        sync
        t_put=$(seconds trash-put "$k"/*)
        sync
        t_empty=$(seconds trash-empty)
    fi

    ratio() { echo "scale=1; $1 / $2" | bc -l; }
    printf '  %-34s %8s s\n' "plain renames (floor)" "$floor" \
        "renames + one info file each" "$floor_info"
    printf '  %-34s %8.3f s  %6sx renames  %5sx renames+info   (%s history saves)\n' \
        "quarle trash, one call" "$t_trash" "$(ratio "$t_trash" "$floor")" "$(ratio "$t_trash" "$floor_info")" "$saves"
    printf '  %-34s %8.3f s  %6sx renames  %5sx renames+info\n' \
        "quarle restore" "$t_restore" "$(ratio "$t_restore" "$floor")" "$(ratio "$t_restore" "$floor_info")" \
        "quarle expire" "$t_expire" "$(ratio "$t_expire" "$floor")" "$(ratio "$t_expire" "$floor_info")"
    if [[ "$t_put" != "-" ]]; then
        printf '  %-34s %8.3f s  %6sx renames  %5sx renames+info\n' \
            "trash-put (trash-cli)" "$t_put" "$(ratio "$t_put" "$floor")" "$(ratio "$t_put" "$floor_info")" \
            "trash-empty (trash-cli)" "$t_empty" "$(ratio "$t_empty" "$floor")" "$(ratio "$t_empty" "$floor_info")"
    fi
    rm -rf "$home"
}

run_on "$base/disk"
if [[ $(id -u) -eq 0 ]]; then
    mkdir -p "$base/tmpfs"
    mount -t tmpfs -o size=512m tmpfs "$base/tmpfs"
    trap 'umount "$base/tmpfs"' EXIT
    run_on "$base/tmpfs/q"
fi
