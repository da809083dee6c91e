#include "scan/catalogue.h"

namespace Catalogue {

namespace {

using S = QStringList;

Rule make(const char* id, const char* title, Bucket bucket, bool developer, S paths, bool listParts,
          const char* explain, const QString& comesBack) {
    Rule r;
    r.id = QLatin1String(id);
    r.title = QString::fromUtf8(title);
    r.bucket = bucket;
    r.developer = developer;
    r.paths = std::move(paths);
    r.listParts = listParts;
    r.explain = QString::fromUtf8(explain);
    r.comesBack = comesBack;
    r.removal = bucket == Bucket::keep ? Removal::none() : Removal::trash();
    return r;
}

QList<Rule> makeRules() {
    using B = Bucket;
    namespace C = ComesBack;
    QList<Rule> r;
    r << make("caches", "App caches", B::now, false, S{"Library/Caches"}, true,
              "Apps keep copies of things they downloaded or worked out, so they open faster. Apps rebuild "
              "these when they need them; the first launch after clearing can be a little slower. macOS's own "
              "caches are left alone.",
              C::byItself);
    r.last().skip = skipInCaches;
    r << make("logs", "Logs and crash reports", B::now, false, S{"Library/Logs"}, true,
              "Diagnostic notes apps write as they run. Nothing reads them after a few days unless you're "
              "chasing a bug.",
              C::appsWriteNew);
    r << make("derived", "Xcode build data", B::now, true, S{"Library/Developer/Xcode/DerivedData"}, true,
              "Every project Xcode builds keeps its compiled files here. Xcode makes them again the next time "
              "you build, which takes a few minutes per project.",
              C::nextBuild);
    r << make("simcaches", "Simulator caches", B::now, true, S{"Library/Developer/CoreSimulator/Caches"}, false,
              "Shared caches the iOS Simulator builds for its runtimes. The Simulator makes them again on the "
              "next boot.",
              C::nextBoot);
    r << make("homebrew", "Homebrew downloads", B::now, true, S{"Library/Caches/Homebrew"}, false,
              "Bottles and source archives Homebrew downloaded. brew downloads them again if it ever needs one.",
              C::ifNeeded);
    r << make("yarn", "Yarn cache", B::now, true, S{"Library/Caches/Yarn"}, false,
              "Every package version Yarn has ever installed. Projects keep their own node_modules; the next "
              "install fetches what it needs.",
              C::onInstall);
    r << make("npm", "npm cache", B::now, true, S{".npm/_cacache", ".npm/_npx"}, false,
              "Packages npm and npx downloaded. The next install fetches what it needs.", C::onInstall);
    r << make("pip", "Python package caches", B::now, true, S{"Library/Caches/pip", ".cache/pip", ".cache/uv"},
              false, "Wheels pip and uv downloaded. Installs fetch them again.", C::onInstall);
    r << make("swiftpm", "Swift package cache", B::now, true, S{"Library/Caches/org.swift.swiftpm"}, false,
              "Copies of Swift packages Xcode and swift build resolved. They're fetched again on the next "
              "resolve.",
              C::nextResolve);
    r << make("cocoapods", "CocoaPods cache", B::now, true, S{"Library/Caches/CocoaPods"}, false,
              "Pods CocoaPods downloaded. pod install fetches them again.", C::onInstall);
    r << make("gradle", "Gradle caches", B::now, true, S{".gradle/caches"}, false,
              "Dependencies and build outputs Gradle keeps between builds. The next build fetches and rebuilds "
              "them.",
              C::nextBuild);
    r << make("gobuild", "Go build cache", B::now, true, S{"Library/Caches/go-build"}, false,
              "Compiled Go packages. go build makes them again.", C::nextBuild);
    r << make("jetbrains", "JetBrains caches", B::now, true, S{"Library/Caches/JetBrains"}, true,
              "Indexes and caches for IntelliJ, WebStorm and friends, including old versions you may no longer "
              "use. The IDE re-indexes a project the next time you open it.",
              C::onOpen);
    r << make("devicesupport", "iPhone and Watch device support", B::call, true,
              S{"Library/Developer/Xcode/iOS DeviceSupport", "Library/Developer/Xcode/watchOS DeviceSupport",
                "Library/Developer/Xcode/tvOS DeviceSupport", "Library/Developer/Xcode/visionOS DeviceSupport"},
              true,
              "Xcode copies symbols from every device version you've connected. You only need one to debug a "
              "device still on that version; Xcode copies it again when you plug one in.",
              C::onConnect);
    r << make("archives", "Xcode archives", B::call, true, S{"Library/Developer/Xcode/Archives"}, true,
              "Builds you archived for the App Store or for testers. They hold the symbols that turn crash "
              "reports into readable code; keep the ones for versions people still use.",
              C::goneForGood);
    r << make("playwright", "Browsers for test tools", B::call, true,
              S{"Library/Caches/ms-playwright", ".cache/puppeteer"}, true,
              "Chromium, Firefox and WebKit builds Playwright and Puppeteer downloaded. They download again on "
              "the next test run, which takes a while.",
              C::nextRun);
    r << make("pnpm", "pnpm store", B::call, true, S{"Library/pnpm/store", "Library/Caches/pnpm"}, false,
              "pnpm keeps one copy of each package and links projects to it. Files a project still links to "
              "free nothing when removed, so the space you get back can be less than shown.",
              C::onInstall);
    r << make("cargo", "Rust crate downloads", B::call, true, S{".cargo/registry"}, false,
              "Crates cargo downloaded. The next build fetches them again.", C::onBuild);
    r << make("huggingface", "Hugging Face models", B::call, true, S{".cache/huggingface"}, true,
              "Models and datasets downloaded by Python tools. They download again the next time a script asks "
              "for them, which can be large.",
              C::whenUsed);
    r << make("backups", "iPhone and iPad backups", B::keep, false,
              S{"Library/Application Support/MobileSync/Backup"}, false,
              "Finder's backups of your devices. Your phone's only copy may be here. Manage them in Finder, "
              "under your device, Manage Backups.",
              C::inFinder);
    r << make("ollama", "Ollama models", B::keep, true, S{".ollama/models"}, false,
              "Local AI models. Remove them with ollama rm so Ollama's list stays right.", C::withOllama);
    r << make("docker", "Docker disk", B::keep, true, S{"Library/Containers/com.docker.docker/Data/vms"}, false,
              "Docker keeps every image, container and volume inside one disk file. Clear it from Docker itself "
              "(docker system prune, or Troubleshoot in Docker Desktop) so nothing breaks.",
              C::inDocker);
    return r;
}

}  // namespace

const QList<Rule>& rules() {
    static const QList<Rule> all = makeRules();
    return all;
}

std::optional<Rule> rule(const QString& id) {
    for (const Rule& r : rules())
        if (r.id == id) return r;
    return std::nullopt;
}

const QSet<QString>& ownCacheRows() {
    static const QSet<QString> names{"Homebrew", "Yarn", "pip", "CocoaPods", "ms-playwright",
                                     "org.swift.swiftpm", "pnpm", "go-build", "JetBrains"};
    return names;
}

const QStringList& codeRoots() {
    static const QStringList roots{"devbox", "Developer", "Projects", "projects", "code", "Code", "src",
                                   "dev", "repos", "workspace", "GitHub", "Documents/GitHub", "Sites"};
    return roots;
}

const QSet<QString>& installerExtensions() {
    static const QSet<QString> extensions{"dmg", "pkg", "mpkg", "xip", "iso"};
    return extensions;
}

const QSet<QString>& unfinishedExtensions() {
    static const QSet<QString> extensions{"crdownload", "part", "download", "opdownload", "partial"};
    return extensions;
}

bool skipInCaches(const QString& name) {
    return ownCacheRows().contains(name) || name.startsWith(QLatin1String("com.apple."));
}

}  // namespace Catalogue
