#!/usr/bin/env python3
"""Writes a Mac-shaped home of about 300,000 small files for timing a scan against a plain walk.

    gen_mac_home.py HOME [SEED]

Projects with node_modules (some idle for a year), app caches, Xcode build data, package caches,
documents and photos. File contents are a few KB of zeros, so the tree is about 1.5 GB.
"""
import os
import sys

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
from tree_writer import TreeWriter  # noqa: E402

home = sys.argv[1]
w = TreeWriter(int(sys.argv[2]) if len(sys.argv) > 2 else 12345)
files, project = w.files, w.project

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
print("%d files written in %s" % (w.count, home))
