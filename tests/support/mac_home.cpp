#include "support/mac_home.h"

#include "support/files.h"

namespace {
constexpr qint64 KB = 1024;
}  // namespace

MacHome::MacHome(QString root, QDateTime now) : root_(std::move(root)), now_(std::move(now)) {}

QString MacHome::at(const QString& relative) const { return root_ + QLatin1Char('/') + relative; }

qint64 MacHome::file(const QString& relative, qint64 size, double ageDays) {
    const QString path = at(relative);
    Files::makeDirs(path.section(QLatin1Char('/'), 0, -2));
    Files::write(path, size);
    age(relative, ageDays);
    const qint64 allocated = Files::allocated(path);
    written_[relative] = allocated;
    return allocated;
}

void MacHome::age(const QString& relative, double ageDays) {
    Files::touch(at(relative), now_.toSecsSinceEpoch() - qint64(ageDays * 86400));
}

qint64 MacHome::bytesUnder(const QString& relative) const {
    // What du says of it, folders' own blocks included, while it is there.
    if (const QString path = relative.isEmpty() ? root_ : at(relative); Files::exists(path)) return Files::diskUsage(path);
    qint64 sum = 0;
    for (auto it = written_.begin(); it != written_.end(); ++it)
        if (relative.isEmpty() || it.key() == relative || it.key().startsWith(relative + QLatin1Char('/')))
            sum += it.value();
    return sum;
}

qint64 MacHome::bytesInside(const QString& relative) const { return bytesUnder(relative) - Files::allocated(at(relative)); }

void MacHome::logs() {
    file("Library/Logs/DiagnosticReports/App-2024-05-01.ips", 12 * KB, 4);
    file("Library/Logs/fsck_hfs.log", 8 * KB, 100);
    file("Library/Logs/install.log", 4 * KB, 1);
}

void MacHome::everything() {
    logs();
    file("Library/Caches/com.spotify.client/Data/blob", 1200 * KB, 2);  // over the tree's smallest file
    file("Library/Caches/com.spotify.client/index", 8 * KB, 2);
    file("Library/Caches/org.mozilla.firefox/cache2/entries/a", 24 * KB, 5);
    file("Library/Caches/com.apple.Safari/WebKitCache", 40 * KB);
    file("Library/Caches/com.apple.bird/session", 12 * KB);
    file("Library/Caches/com.applesauce/data", 16 * KB);
    file("Library/Caches/loose-cache.db", 20 * KB, 3);
    file("Library/Caches/Homebrew/downloads/wget.bottle.tar.gz", 64 * KB, 9);
    file("Library/Caches/Yarn/v6/npm-react-18.2.0/package.tgz", 32 * KB);
    file("Library/Caches/pip/http/a/b", 28 * KB);
    file("Library/Caches/CocoaPods/Pods/Release/Alamofire", 36 * KB);
    file("Library/Caches/ms-playwright/chromium-1091/chrome", 48 * KB);
    file("Library/Caches/org.swift.swiftpm/repositories/swift-nio", 44 * KB);
    file("Library/Caches/pnpm/metadata/react.json", 12 * KB);
    file("Library/Caches/go-build/00/abc-d", 20 * KB);
    file("Library/Caches/JetBrains/IntelliJIdea2023.3/caches/index", 52 * KB);
    file("Library/Caches/JetBrains/WebStorm2022.1/caches/index", 16 * KB, 500);
    file("Library/Developer/Xcode/DerivedData/Quarle-bqzmhxjtcvwdkfnlgyepsaruoiyk/Build/Products/app", 96 * KB, 1);
    age("Library/Developer/Xcode/DerivedData/Quarle-bqzmhxjtcvwdkfnlgyepsaruoiyk", 1);
    file("Library/Developer/Xcode/DerivedData/OldShop-ahtwkvzpqlbcmxeyfjgudsnrioeb/Build/Products/app", 128 * KB, 40);
    age("Library/Developer/Xcode/DerivedData/OldShop-ahtwkvzpqlbcmxeyfjgudsnrioeb", 40);
    file("Library/Developer/Xcode/DerivedData/ModuleCache.noindex/Foundation.pcm", 8 * KB, 2);
    file("Library/Developer/Xcode/iOS DeviceSupport/iPhone15,2 17.1 (21B80)/Symbols/dyld", 80 * KB, 20);
    file("Library/Developer/Xcode/iOS DeviceSupport/iPhone15,2 16.4 (20E247)/Symbols/dyld", 72 * KB, 200);
    file("Library/Developer/Xcode/watchOS DeviceSupport/Watch6,1 10.1 (21S71)/Symbols/dyld", 40 * KB, 60);
    file("Library/Developer/Xcode/Archives/2024-05-02/Quarle.xcarchive/Info.plist", 20 * KB, 3);
    file("Library/Developer/CoreSimulator/Caches/dyld/runtime", 60 * KB, 5);
    file(".npm/_cacache/content-v2/sha512/aa/bb", 36 * KB, 4);
    file(".npm/_npx/1234/node_modules/x/index.js", 8 * KB, 30);
    file(".cache/pip/wheels/ab/numpy.whl", 44 * KB, 14);
    file(".cache/uv/archive-v0/x", 16 * KB, 8);
    file(".gradle/caches/modules-2/files-2.1/junit.jar", 56 * KB, 15);
    file(".cargo/registry/cache/serde.crate", 24 * KB, 11);
    file("Library/pnpm/store/v3/files/00/abc", 20 * KB, 20);
    file(".cache/huggingface/hub/models--gpt2/blobs/a", 68 * KB, 10);
    file(".cache/puppeteer/chrome/linux-121/chrome", 32 * KB, 50);
    file("Library/Application Support/MobileSync/Backup/00008110-001A2B3C4D5E6F70/Manifest.db", 40 * KB, 12);
    file(".ollama/models/blobs/sha256-abc", 88 * KB, 25);
    file("Library/Containers/com.docker.docker/Data/vms/0/data/Docker.raw", 100 * KB, 1);
    file("Downloads/Firefox 121.0.dmg", 60 * KB, 150);
    file("Downloads/Zoom.pkg", 20 * KB, 60);
    file("Downloads/ubuntu.iso.crdownload", 44 * KB, 9);
    file("Downloads/fresh.zip.part", 12 * KB, 0.1);
    file("Downloads/invoice.pdf", 8 * KB, 35);
    file("Applications/Firefox.app/Contents/Info.plist", 4 * KB, 100);
    file("Applications/Install macOS Sonoma.app/Contents/SharedSupport/SharedSupport.dmg", 72 * KB, 210);
    age("Applications/Install macOS Sonoma.app", 210);
    file("Projects/old-shop/node_modules/react/index.js", 48 * KB, 200);
    file("Projects/old-shop/src/app.js", 4 * KB, 200);
    file("Projects/old-shop/package.json", 4 * KB, 200);
    age("Projects/old-shop/src", 200);
    age("Projects/old-shop/node_modules", 200);
    age("Projects/old-shop", 200);
    file("Projects/fresh/node_modules/vue/index.js", 24 * KB, 200);
    file("Projects/fresh/package.json", 4 * KB, 1);
    file("Documents/GitHub/recipes/node_modules/lodash/lodash.js", 32 * KB, 300);
    file("Documents/GitHub/recipes/package.json", 4 * KB, 300);
}
