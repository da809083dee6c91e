#!/usr/bin/env python3
"""Writes a Mac-shaped home of about 300,000 small files for timing a scan against a plain walk.

    gen_mac_home.py HOME [SEED]

Projects with node_modules (some idle for a year), app caches, Xcode build data, package caches,
documents and photos. File contents are a few KB of zeros, so the tree is about 1.5 GB.
"""
import os
import random
import sys
import time

home = sys.argv[1]
rng = random.Random(int(sys.argv[2]) if len(sys.argv) > 2 else 12345)
count = 0
old = time.time() - 400 * 86400
block = b"\0" * 16384


def files(folder, n, depth=2, fanout=8, age=None):
    """n files spread over a tree of `depth` levels below folder."""
    global count
    for i in range(n):
        parts = [folder] + ["d%d" % rng.randrange(fanout) for _ in range(depth)]
        d = os.path.join(*parts)
        os.makedirs(d, exist_ok=True)
        path = os.path.join(d, "f%d" % i)
        with open(path, "wb") as f:
            f.write(block[: rng.choice((512, 2048, 4096, 8192, 16384))])
        if age:
            os.utime(path, (age, age))
        count += 1


def project(root, name, modules, idle):
    p = os.path.join(root, name)
    files(os.path.join(p, "node_modules"), modules, depth=3, fanout=10)
    files(os.path.join(p, "src"), 150, depth=2, fanout=4)
    with open(os.path.join(p, "package.json"), "w") as f:
        f.write("{}")
    if idle:
        for dirpath, dirnames, filenames in os.walk(p, topdown=False):
            for n in filenames + dirnames:
                os.utime(os.path.join(dirpath, n), (old, old), follow_symlinks=False)


for i in range(30):
    project(os.path.join(home, "Projects"), "app%02d" % i, 5000, idle=i % 3 == 0)
for i in range(40):
    files(os.path.join(home, "Library/Caches/com.example.app%02d" % i), 1000)
files(os.path.join(home, "Library/Caches/Homebrew"), 2000)
files(os.path.join(home, "Library/Caches/com.apple.Safari"), 2000)
for i in range(3):
    files(os.path.join(home, "Library/Developer/Xcode/DerivedData/App%d-abcdefghijklmnopqrstuvwxyzab" % i), 5000, depth=3)
files(os.path.join(home, ".npm/_cacache"), 30000, depth=3, fanout=16)
files(os.path.join(home, "Library/Application Support"), 20000, depth=3)
files(os.path.join(home, "Documents"), 15000, depth=3)
files(os.path.join(home, "Pictures"), 10000)
files(os.path.join(home, "Music"), 5000)
files(os.path.join(home, "Downloads"), 200, depth=0)
print("%d files written in %s" % (count, home))
