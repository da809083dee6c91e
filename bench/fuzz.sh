#!/usr/bin/env bash
# bench/fuzz.sh [SECONDS] [NAME…]: runs each fuzz harness of fuzz/ (or the named ones) with libFuzzer
# for SECONDS (default 180), one process at a time, on a working copy of its seed corpus. Prints per
# harness the run time, executions, executions per second, and any crash; a crashing input is kept
# in build-fuzz/crashes/NAME/ (add it to fuzz/corpus/NAME/ once the parser is fixed).
#
# Built in build-fuzz/ with clang: the harness and the parser's own sources carry libFuzzer's coverage,
# AddressSanitizer and UndefinedBehaviorSanitizer; everything else they call is linked from the normal
# build's libraries (build/), which keeps the build to a few files on a busy machine.
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
seconds=${1:-180}
shift || true
cxx=$(command -v clang++-14 || command -v clang++ || true)
if [[ -z "$cxx" ]]; then
    echo "clang is missing: apt-get install clang-14 libclang-rt-14-dev" >&2
    exit 1
fi

# The parser sources each harness instruments (paths under src/).
declare -A parsers=(
    [history_json]="core/json.cpp core/record_json.cpp"
    [trash_info]="removal/trash_info.cpp"
    [property_list]="apps/property_list.cpp"
    [key_file]="platform/key_file.cpp"
    [desktop_entry]="platform/desktop_entry.cpp platform/key_file.cpp platform/command_line.cpp"
    [user_dirs]="platform/user_dirs.cpp"
    [user_units]="apps/user_units.cpp platform/key_file.cpp platform/command_line.cpp"
    [swaps]="platform/system_figures.cpp"
    [mount_table]="platform/system_figures.cpp core/paths.cpp"
    [simctl_json]="scan/probes.cpp"
    [tmutil]="scan/probes.cpp"
    [launchctl_disabled]="apps/login_items.cpp"
    [dpkg_owners]="platform/debian_packages.cpp"
    [cli_options]="cli/verb_du.cpp cli/verb_clean.cpp cli/verb_trash.cpp cli/verb_uninstall.cpp core/paths.cpp"
)
names=("$@")
[[ ${#names[@]} -eq 0 ]] && names=(history_json trash_info property_list key_file desktop_entry user_dirs user_units
                                  swaps mount_table simctl_json tmutil launchctl_disabled dpkg_owners cli_options)

"$here/tools/setup"
log=$(mktemp)
trap 'rm -f "$log"' EXIT
# The normal build's libraries; built here when they are missing (tools/build build keeps them fresh).
needed=(core platform measure apps scan removal)
[[ " ${names[*]} " == *" cli_options "* ]] && needed+=(model demo cli)
missing=0
for l in "${needed[@]}"; do [[ -f "$here/build/src/$l/libquarle_$l.a" ]] || missing=1; done
if [[ $missing -eq 1 ]]; then
    [[ -f "$here/build/build.ninja" ]] || cmake -S "$here" -B "$here/build" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo \
        >"$log" 2>&1 || { cat "$log" >&2; exit 1; }
    cmake --build "$here/build" --target quarle_cli >"$log" 2>&1 || { cat "$log" >&2; exit 1; }
fi

dir="$here/build-fuzz"
mkdir -p "$dir/obj"
flags=(-std=c++20 -fPIC -O1 -gline-tables-only -fno-omit-frame-pointer -fsanitize=fuzzer-no-link,address,undefined
       -fno-sanitize-recover=undefined -I"$here/src" -I"$here/fuzz" $(pkg-config --cflags Qt6Core libplist-2.0))
libs=()
for l in cli model demo removal scan apps measure platform core; do
    [[ -f "$here/build/src/$l/libquarle_$l.a" ]] && libs+=("$here/build/src/$l/libquarle_$l.a")
done
libs+=($(pkg-config --libs Qt6Core libplist-2.0) -lpthread)

build() {
    local name=$1 objects=() src obj
    for src in "fuzz/$name.cpp" ${parsers[$name]}; do
        [[ $src == fuzz/* ]] || src="src/$src"
        obj="$dir/obj/${src//\//_}.o"
        if [[ ! -f "$obj" || "$here/$src" -nt "$obj" ]]; then
            "$cxx" "${flags[@]}" -c "$here/$src" -o "$obj" >>"$log" 2>&1 || return 1
        fi
        objects+=("$obj")
    done
    "$cxx" -fsanitize=fuzzer,address,undefined "${objects[@]}" -Wl,--start-group "${libs[@]}" -Wl,--end-group \
        -o "$dir/fuzz_$name" >>"$log" 2>&1
}

export ASAN_OPTIONS=detect_leaks=1 UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1
failed=()
printf '%-20s %8s %12s %10s  %s\n' harness seconds executions exec/s result
for name in "${names[@]}"; do
    if [[ -z "${parsers[$name]+x}" ]]; then echo "no harness named $name" >&2; exit 2; fi
    if ! build "$name"; then cat "$log" >&2; exit 1; fi
    work="$dir/corpus/$name" crashes="$dir/crashes/$name/"
    mkdir -p "$work" "$crashes"
    cp -n "$here/fuzz/corpus/$name"/* "$work/" 2>/dev/null || true
    out="$dir/fuzz-$name.log"
    start=$(date +%s)
    status=0
    "$dir/fuzz_$name" "$work" -max_total_time="$seconds" -timeout=10 -rss_limit_mb=2048 -max_len=8192 \
        -close_fd_mask=3 -print_final_stats=1 -artifact_prefix="$crashes" >"$out" 2>&1 || status=$?
    elapsed=$(( $(date +%s) - start ))
    runs=$(sed -n 's/^stat::number_of_executed_units: *//p' "$out" | tail -1)
    rate=$(sed -n 's/^stat::average_exec_per_sec: *//p' "$out" | tail -1)
    result=ok
    if [[ $status -ne 0 ]]; then
        result="CRASH $(ls -t "$crashes" | head -1): $(grep -a -m1 -E 'ERROR|runtime error|does not hold|deadly signal' "$out" || echo "exit $status")"
        failed+=("$name")
    fi
    printf '%-20s %8s %12s %10s  %s\n' "$name" "$elapsed" "${runs:-?}" "${rate:-?}" "$result"
done
if [[ ${#failed[@]} -gt 0 ]]; then
    echo "crashed: ${failed[*]} (logs: $dir/fuzz-NAME.log)"
    exit 1
fi
