#!/usr/bin/env python3
"""Writes a Linux developer's home of about 300,000 small files for timing a scan against a plain walk.

    gen_linux_home.py HOME [SEED]

XDG caches (app caches and the folders with rows of their own), Electron apps' settings folders with
their caches, Flatpak apps, Maven, rustup, cargo, Go modules, projects with node_modules (some idle
for a year) and user folders with German names. File contents are a few KB of zeros.
"""
import os
import sys

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
from tree_writer import TreeWriter  # noqa: E402

home = sys.argv[1]
w = TreeWriter(int(sys.argv[2]) if len(sys.argv) > 2 else 12345)
files, project = w.files, w.project


def at(relative):
    return os.path.join(home, relative)


for i in range(24):
    project(at("Projects"), "app%02d" % i, 5000, idle=i % 3 == 0)
for i in range(30):
    files(at(".cache/app%02d" % i), 1000)
for name in ("pip", "uv", "yarn", "go-build", "JetBrains/IntelliJIdea2024.1", "ms-playwright/chromium-1105",
             "huggingface/hub", "pnpm", "thumbnails/large", "google-chrome/Default/Cache", "mozilla/firefox/x/cache2",
             "ccache", "mesa_shader_cache", "bazel/_bazel_user"):
    files(at(".cache/" + name), 3000, depth=3)
for app in ("Code", "Slack", "discord", "Signal", "obsidian"):
    for cache in ("Cache/Cache_Data", "Code Cache/js", "GPUCache"):
        files(at(".config/%s/%s" % (app, cache)), 800)
    files(at(".config/%s/User" % app), 200)
for app in ("org.gnome.Maps", "com.spotify.Client", "org.mozilla.firefox", "org.gimp.GIMP"):
    files(at(".var/app/%s/cache" % app), 1500)
    files(at(".var/app/%s/data" % app), 500)
files(at(".local/share/flatpak/app"), 8000, depth=3)
files(at(".m2/repository"), 15000, depth=4)
files(at(".rustup/toolchains/stable-x86_64-unknown-linux-gnu"), 10000, depth=3)
files(at(".cargo/registry"), 10000, depth=3)
files(at("go/pkg/mod"), 10000, depth=3)
files(at(".npm/_cacache"), 20000, depth=3, fanout=16)
files(at("Dokumente"), 10000, depth=3)
files(at("Bilder"), 8000)
files(at("Musik"), 4000)
files(at("Downloads"), 200, depth=0)
os.makedirs(at(".config"), exist_ok=True)
with open(at(".config/user-dirs.dirs"), "w") as f:
    f.write('XDG_DESKTOP_DIR="$HOME/Schreibtisch"\nXDG_DOWNLOAD_DIR="$HOME/Downloads"\n'
            'XDG_DOCUMENTS_DIR="$HOME/Dokumente"\nXDG_MUSIC_DIR="$HOME/Musik"\n'
            'XDG_PICTURES_DIR="$HOME/Bilder"\nXDG_VIDEOS_DIR="$HOME/Videos"\n')
print("%d files written in %s" % (w.count, home))
