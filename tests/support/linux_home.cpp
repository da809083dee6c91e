#include "support/linux_home.h"

#include "support/files.h"

namespace {
constexpr qint64 KB = 1024;
}  // namespace

LinuxHome::LinuxHome(QString root, QDateTime now, QString cache)
    : files_(root, std::move(now)), root_(std::move(root)), cache_(cache.isEmpty() ? root_ + "/.cache" : std::move(cache)) {}

QString LinuxHome::cacheFile(const QString& relative) const {
    // MacHome writes relative to the home; a cache outside it is reached with "../" steps.
    const QString full = relative.isEmpty() ? cache_ : cache_ + "/" + relative;
    if (full.startsWith(root_ + "/")) return full.mid(root_.size() + 1);
    QString up;
    for (int i = 0; i < root_.count('/'); ++i) up += "../";
    return up + full.mid(1);
}

QString LinuxHome::inCache(const QString& relative) const { return cache_ + "/" + relative; }

qint64 LinuxHome::bytesUnder(const QString& relative) const {
    return files_.bytesUnder(relative);
}

void LinuxHome::text(const QString& relative, const QByteArray& content) {
    Files::makeDirs(at(relative).section('/', 0, -2));
    Files::writeText(at(relative), content);
}

qint64 LinuxHome::cacheBytes(const QString& relative) const { return files_.bytesUnder(cacheFile(relative)); }

qint64 LinuxHome::cacheInside(const QString& relative) const {
    return cacheBytes(relative) - Files::allocated(inCache(relative));
}

void LinuxHome::xdgCaches() {
    const auto cache = [&](const QString& relative, qint64 size, double age = 1) { files_.file(cacheFile(relative), size, age); };
    cache("spotify/Storage/ab/track", 1300 * KB, 2);  // over the tree's smallest file
    cache("spotify/Browse/index", 8 * KB, 2);
    cache("fontconfig/abc-le64.cache-8", 12 * KB, 30);
    cache("tracker3/files/meta.db", 20 * KB, 3);
    cache("motd.legal-displayed", 4 * KB, 200);  // a loose small file
    // Rows of their own.
    cache("pip/http-v2/a/b/c", 28 * KB, 4);
    cache("uv/archive-v0/x", 16 * KB, 8);
    cache("yarn/v6/npm-react-18.2.0/package.tgz", 32 * KB, 6);
    cache("go-build/00/abc-d", 20 * KB, 3);
    cache("JetBrains/IntelliJIdea2024.1/caches/index", 52 * KB, 2);
    cache("JetBrains/PyCharm2022.2/caches/index", 16 * KB, 500);
    cache("ms-playwright/chromium-1105/chrome-linux/chrome", 48 * KB, 45);
    cache("puppeteer/chrome/linux-121/chrome", 32 * KB, 50);
    cache("huggingface/hub/models--gpt2/blobs/a", 68 * KB, 10);
    cache("huggingface/token", 4 * KB, 100);
    cache("huggingface/stored_tokens", 4 * KB, 100);
    cache("pnpm/metadata/registry.npmjs.org/react.json", 12 * KB, 5);
    cache("Homebrew/downloads/wget.bottle.tar.gz", 24 * KB, 9);
    cache("thumbnails/large/0a1b.png", 16 * KB, 1);
    cache("thumbnails/normal/0a1b.png", 8 * KB, 1);
    cache("google-chrome/Default/Cache/Cache_Data/data_1", 40 * KB, 1);
    cache("chromium/Default/Cache/Cache_Data/data_1", 12 * KB, 20);
    cache("BraveSoftware/Brave-Browser/Default/Cache/data_1", 20 * KB, 4);
    cache("mozilla/firefox/abc.default-release/cache2/entries/x", 36 * KB, 2);
    cache("ccache/0/1/abc.o", 24 * KB, 3);
    cache("sccache/a/b/c", 16 * KB, 3);
    cache("mesa_shader_cache/ab/cdef", 8 * KB, 7);
    cache("mesa_shader_cache_db/index", 8 * KB, 7);
    cache("bazel/_bazel_anna/abc123/execroot/x", 44 * KB, 12);
    // What apps keep for good: never offered.
    cache("keepassxc/keepassxc.ini", 4 * KB, 1);
    cache("obexd/photo-from-phone.jpg", 40 * KB, 60);
    cache("gh-token", 4 * KB, 30);
}

void LinuxHome::developerCaches() {
    files_.file(".m2/repository/org/junit/junit/4.13/junit-4.13.jar", 56 * KB, 40);
    files_.file(".rustup/toolchains/stable-x86_64-unknown-linux-gnu/lib/librustc.so", 96 * KB, 20);
    files_.file(".rustup/toolchains/nightly-2023-01-01-x86_64-unknown-linux-gnu/lib/librustc.so", 64 * KB, 400);
    files_.file(".rustup/settings.toml", 4 * KB, 20);
    files_.file(".cargo/registry/cache/index.crates.io/serde.crate", 24 * KB, 11);
    files_.file(".cargo/git/db/tokio-abc/objects/pack", 20 * KB, 30);
    files_.file(".cargo/bin/cargo", 12 * KB, 20);
    files_.file(".gradle/caches/modules-2/files-2.1/junit.jar", 28 * KB, 15);
    files_.file(".gradle/wrapper/dists/gradle-8.5-bin/abc/gradle-8.5-bin.zip", 40 * KB, 90);
    files_.file(".local/share/pnpm/store/v3/files/00/abc", 20 * KB, 20);
    files_.file(".ccache/a/b.o", 12 * KB, 5);
    files_.file(".npm/_cacache/content-v2/sha512/aa/bb", 36 * KB, 4);
    files_.file("go/pkg/mod/github.com/x/y@v1.0.0/y.go", 16 * KB, 60);
    files_.file(".local/share/containers/storage/overlay/abc/diff/bin/sh", 64 * KB, 9);
    files_.file(".local/share/docker/overlay2/abc/diff/bin/sh", 48 * KB, 9);
}

void LinuxHome::electronApps() {
    files_.file(".config/Code/Cache/Cache_Data/data_0", 24 * KB, 1);
    files_.file(".config/Code/Code Cache/js/index", 16 * KB, 1);
    files_.file(".config/Code/GPUCache/data_0", 8 * KB, 1);
    files_.file(".config/Code/CachedData/1a2b/x.code", 20 * KB, 10);
    files_.file(".config/Code/CachedExtensionVSIXs/ms-python.vsix", 32 * KB, 10);
    files_.file(".config/Code/User/settings.json", 4 * KB, 1);
    files_.file(".config/Slack/Cache/Cache_Data/f_000001", 28 * KB, 2);
    files_.file(".config/Slack/DawnCache/data_0", 8 * KB, 2);
    files_.file(".config/Slack/storage/root-state.json", 4 * KB, 2);
    files_.file(".config/discord/GPUCache/data_1", 12 * KB, 3);
    files_.file(".config/discord/settings.json", 4 * KB, 3);
    files_.file(".config/git/config", 4 * KB, 300);
}

void LinuxHome::flatpakData() {
    files_.file(".var/app/org.gnome.Maps/cache/tiles/0/1.png", 20 * KB, 2);
    files_.file(".var/app/org.gnome.Maps/data/places.json", 4 * KB, 2);
    files_.file(".var/app/org.gnome.Maps/config/dconf/user", 4 * KB, 2);
    files_.file(".var/app/com.spotify.Client/cache/spotify/Storage/x", 44 * KB, 1);
    files_.file(".var/app/org.mozilla.firefox/.mozilla/firefox/profiles.ini", 4 * KB, 1);
    files_.file(".var/app/org.mozilla.firefox/cache/mozilla/firefox/x/cache2/y", 32 * KB, 1);
    files_.file(".local/share/flatpak/app/org.example.Tool/current/files/bin/tool", 56 * KB, 30);
}

void LinuxHome::everything() {
    xdgCaches();
    developerCaches();
    electronApps();
    flatpakData();
    text(".config/user-dirs.dirs",
                     "# written by xdg-user-dirs-update\n"
                     "XDG_DESKTOP_DIR=\"$HOME/\"\n"
                     "XDG_DOWNLOAD_DIR=\"$HOME/Downloads\"\n"
                     "XDG_DOCUMENTS_DIR=\"$HOME/Dokumente\"\n"
                     "XDG_MUSIC_DIR=\"$HOME/Musik\"\n"
                     "XDG_PICTURES_DIR=\"$HOME/Bilder\"\n"
                     "XDG_VIDEOS_DIR=\"$HOME/Videos\"\n");
    files_.file("Bilder/Urlaub/strand.jpg", 48 * KB, 100);
    files_.file("Dokumente/Steuer 2023.pdf", 24 * KB, 200);
    files_.file("Musik/lied.flac", 36 * KB, 300);
    files_.file("Videos/film.mkv", 60 * KB, 50);
    files_.file("Downloads/debian-12.iso", 40 * KB, 90);
    files_.file("Pictures/english-name.jpg", 8 * KB, 1);  // not the user's Pictures folder here
    files_.file("Desktop/note.txt", 4 * KB, 1);  // the desktop is the home itself
}
