#!/usr/bin/env bash
# Writes a home of about a million files for the window's Storage figures: three Mac-shaped homes
# of gen_mac_home.py side by side (each about 300,000 files) and a folder of 100,000 small files.
#
#   gen_big_home.sh HOME
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
home=$1
for part in Work Archive Old; do
    python3 "$here/gen_mac_home.py" "$home/$part" "$RANDOM" &
done
python3 - "$home/Downloads/flat" <<'PY' &
import os, sys
d = sys.argv[1]
os.makedirs(d, exist_ok=True)
for i in range(100000):
    with open(os.path.join(d, "f%06d" % i), "wb") as f:
        f.write(b"\0" * (512 + (i % 7) * 1024))
PY
wait
