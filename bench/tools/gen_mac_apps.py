#!/usr/bin/env python3
"""Builds a Mac-shaped system and home for the app-scan benchmark.

    gen_mac_apps.py ROOT [APPS] [LIBRARY_ENTRIES]

ROOT/system/Applications holds most apps, ROOT/home/Applications the rest; ROOT/home/Library holds
LIBRARY_ENTRIES top-level entries spread over the 13 places the app scan reads: items of installed
apps under every naming form (bundle ID, hyphen, ByHost, savedState, binarycookies, app name,
developer ID), items of apps that are gone, Apple's own, and unrelated names. Info.plists alternate
between XML and binary. Deterministic for a given seed.
"""
import os
import plistlib
import random
import sys

root = sys.argv[1]
app_count = int(sys.argv[2]) if len(sys.argv) > 2 else 150
entry_goal = int(sys.argv[3]) if len(sys.argv) > 3 else 3000
rng = random.Random(20240601)

system_apps = os.path.join(root, "system", "Applications")
home = os.path.join(root, "home")
library = os.path.join(home, "Library")
places = ["Application Support", "Caches", "Preferences", "Containers", "Group Containers", "HTTPStorages",
          "WebKit", "Saved Application State", "Logs", "Application Scripts", "LaunchAgents", "Cookies",
          "Preferences/ByHost"]
words = ["Night", "Owl", "Paper", "Studio", "Pixel", "Note", "Cloud", "Sync", "Code", "Forge", "Mail", "Photo",
         "Sound", "Map", "Task", "Pilot", "Vault", "Frame", "Draw", "Shell"]
firsts = ["com", "org", "net", "io", "dev", "app", "co"]


def write(path, size):
    os.makedirs(os.path.dirname(path), exist_ok=True)
    with open(path, "wb") as f:
        f.write(b"q" * size)


def folder(path, files):
    for i in range(files):
        write(os.path.join(path, "f%d" % i), rng.choice([900, 4000, 16000, 70000]))


# Apps: vendors shared by two or three apps now and then, as real makers ship suites.
apps = []
vendors = ["%s.maker%d" % (rng.choice(firsts), i) for i in range(app_count * 2 // 3)]
for i in range(app_count):
    name = "%s %s %d" % (rng.choice(words), rng.choice(words), i)
    bundle_id = "%s.%s" % (rng.choice(vendors), name.replace(" ", "").lower())
    where = system_apps if i % 8 else os.path.join(home, "Applications")
    bundle = os.path.join(where, name + ".app")
    info = {"CFBundleIdentifier": bundle_id, "CFBundleName": name, "CFBundleExecutable": "main"}
    os.makedirs(os.path.join(bundle, "Contents"), exist_ok=True)
    with open(os.path.join(bundle, "Contents", "Info.plist"), "wb") as f:
        plistlib.dump(info, f, fmt=plistlib.FMT_BINARY if i % 2 else plistlib.FMT_XML)
    write(os.path.join(bundle, "Contents", "MacOS", "main"), rng.randint(100_000, 3_000_000))
    folder(os.path.join(bundle, "Contents", "Resources"), rng.randint(10, 60))
    folder(os.path.join(bundle, "Contents", "Frameworks", "Kit.framework", "Versions", "A"), rng.randint(2, 10))
    apps.append((name, bundle_id))

entries = 0


def entry(place, name, is_folder):
    global entries
    path = os.path.join(library, place, name)
    if os.path.exists(path):
        return
    if is_folder:
        folder(path, rng.randint(1, 8))
    else:
        write(path, rng.choice([300, 2000, 9000]))
    entries += 1


for name, bundle_id in apps:
    entry("Preferences", bundle_id + ".plist", False)
    entry("Caches", bundle_id, True)
    entry("Application Support", name, True)
    if rng.random() < 0.5:
        entry("Saved Application State", bundle_id + ".savedState", True)
        entry("HTTPStorages", bundle_id, True)
        entry("Preferences/ByHost", bundle_id + ".0A1B2C3D-1111-2222-3333-%012d.plist" % rng.randint(0, 10**9), False)
    if rng.random() < 0.3:
        entry("Containers", bundle_id, True)
        entry("Caches", bundle_id + "-helper", True)
        entry("Cookies", bundle_id + ".binarycookies", False)
        entry("Logs", name + " Logs", True)
        entry("Group Containers", "ABCDE%05d.%s" % (rng.randint(0, 99999), bundle_id), True)

while entries < entry_goal:
    kind = rng.random()
    place = rng.choice(places)
    if kind < 0.4:  # an app that is gone
        gone = "%s.gone%d.%s" % (rng.choice(firsts), rng.randint(0, 400), rng.choice(words).lower())
        entry(place, gone + (".plist" if place.startswith("Preferences") else ""), not place.startswith("Preferences"))
    elif kind < 0.6:
        entry(place, "com.apple.%s%d" % (rng.choice(words), rng.randint(0, 10**6)), rng.random() < 0.5)
    else:
        entry(place, "%s %s Data %d" % (rng.choice(words), rng.choice(words), rng.randint(0, 10**6)), rng.random() < 0.5)

print("%d apps, %d Library entries" % (len(apps), entries))
