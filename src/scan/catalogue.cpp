#include "scan/catalogue.h"

#include "core/home.h"
#include "core/paths.h"
#include "platform/xdg.h"

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

QList<Rule> linuxRules();

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
    r << make("homebrew", "Homebrew downloads", B::now, true, S{"Library/Caches/Homebrew", ".cache/Homebrew"}, false,
              "Bottles and source archives Homebrew downloaded. brew downloads them again if it ever needs one.",
              C::ifNeeded);
    r << make("yarn", "Yarn cache", B::now, true, S{"Library/Caches/Yarn", ".cache/yarn"}, false,
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
    r << make("gradle", "Gradle caches", B::now, true, S{".gradle/caches", ".gradle/wrapper/dists"}, false,
              "Dependencies and build outputs Gradle keeps between builds. The next build fetches and rebuilds "
              "them.",
              C::nextBuild);
    r << make("gobuild", "Go build cache", B::now, true, S{"Library/Caches/go-build", ".cache/go-build"}, false,
              "Compiled Go packages. go build makes them again.", C::nextBuild);
    r << make("jetbrains", "JetBrains caches", B::now, true, S{"Library/Caches/JetBrains", ".cache/JetBrains"}, true,
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
              S{"Library/Caches/ms-playwright", ".cache/puppeteer", ".cache/ms-playwright"}, true,
              "Chromium, Firefox and WebKit builds Playwright and Puppeteer downloaded. They download again on "
              "the next test run, which takes a while.",
              C::nextRun);
    r << make("pnpm", "pnpm store", B::call, true, S{"Library/pnpm/store", "Library/Caches/pnpm", ".local/share/pnpm/store", ".cache/pnpm"}, false,
              "pnpm keeps one copy of each package and links projects to it. Files a project still links to "
              "free nothing when removed, so the space you get back can be less than shown.",
              C::onInstall);
    r << make("cargo", "Rust crate downloads", B::call, true, S{".cargo/registry", ".cargo/git"}, false,
              "Crates cargo downloaded. The next build fetches them again.", C::onBuild);
    r << make("huggingface", "Hugging Face models", B::call, true, S{".cache/huggingface"}, true,
              "Models and datasets downloaded by Python tools. They download again the next time a script asks "
              "for them, which can be large.",
              C::whenUsed);
    r.last().skip = skipInHuggingFace;
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
    r.append(linuxRules());
    return r;
}

// Rules for data that Linux tools and desktops keep in the home folder, after the 22 above.
QList<Rule> linuxRules() {
    using B = Bucket;
    namespace C = ComesBack;
    QList<Rule> r;
    r << make("xdgcache", "App and tool caches", B::now, false, S{".cache"}, true,
              "Apps and command-line tools keep copies of things they downloaded or worked out, so they start "
              "faster. They rebuild them when they need them; the first start after clearing can be a little "
              "slower. What apps keep there for good, such as logins, is left alone.",
              C::byItself);
    r.last().skip = skipInXdgCache;
    r << make("thumbnails", "Thumbnails", B::now, false, S{".cache/thumbnails"}, false,
              "Small previews your file manager and photo apps made of your pictures, videos and documents. "
              "They're made again as you open folders.",
              C::byItself);
    r << make("browsercaches", "Browser caches", B::now, false,
              S{".cache/google-chrome", ".cache/chromium", ".cache/BraveSoftware", ".cache/mozilla"}, false,
              "Pages, images and scripts your browsers saved so sites open faster. Your bookmarks, passwords, "
              "history and open tabs are kept elsewhere and stay. Sites load a little slower the first time.",
              C::byItself);
    r << make("ccache", "C and C++ build cache", B::now, true, S{".cache/ccache", ".ccache"}, false,
              "Compiled objects ccache keeps so rebuilds of C and C++ projects are fast. The next builds take "
              "longer while it fills again.",
              C::nextBuild);
    r << make("sccache", "sccache build cache", B::now, true, S{".cache/sccache"}, false,
              "Compiled objects sccache keeps for Rust and C++ builds. The next builds take longer while it "
              "fills again.",
              C::nextBuild);
    r << make("shadercaches", "Graphics shader caches", B::now, false,
              S{".cache/mesa_shader_cache", ".cache/mesa_shader_cache_db"}, false,
              "Shaders your graphics driver compiled so games and apps draw faster. The driver compiles them "
              "again when they're needed; the first start of a game can stutter a little.",
              C::byItself);
    r << make("maven", "Maven repository", B::call, true, S{".m2/repository"}, false,
              "Every library Maven downloaded, and any of your own builds you installed with mvn install. "
              "Libraries come back on the next build; your own builds have to be built and installed again.",
              C::onBuild);
    r << make("rustup", "Rust toolchains", B::call, true, S{".rustup/toolchains"}, true,
              "Versions of the Rust compiler rustup installed, one folder each. Keep the one you build with; "
              "rustup downloads a removed one again when a project asks for it.",
              C::ifNeeded);
    // Bazel and Go make their trees read-only: moving them to the Trash would stop halfway, so these
    // rows only show the space and name the tool's own command.
    r << make("bazel", "Bazel build outputs", B::keep, true, S{".cache/bazel"}, false,
              "Everything Bazel built and downloaded for your workspaces. Bazel makes these files read-only, so "
              "they can't go to the Trash piece by piece: run bazel clean --expunge in a workspace to clear its "
              "part.",
              C::nextBuild);
    r << make("gomodules", "Go module cache", B::keep, true, S{"go/pkg/mod"}, false,
              "Source code of every Go module your builds downloaded. Go makes these files read-only, so they "
              "can't go to the Trash piece by piece: run go clean -modcache to clear them.",
              C::onBuild);
    r << make("containers", "Podman containers and images", B::keep, true, S{".local/share/containers/storage"}, false,
              "Podman and Buildah keep every image, container and volume here. Clear them with podman system "
              "prune so nothing breaks.",
              C::withPodman);
    r << make("rootlessdocker", "Docker data", B::keep, true, S{".local/share/docker"}, false,
              "Rootless Docker keeps every image, container and volume here. Clear it from Docker itself "
              "(docker system prune) so nothing breaks.",
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

const QList<Anchor>& anchors() {
    static const QList<Anchor> all{{QStringLiteral(".cache"), cacheFolder}};
    return all;
}

QString cacheFolder() {
    // A cache folder that is the home itself, or holds it, would offer the whole home as a cache.
    const QString folder = Xdg::cacheHome();
    return Paths::isWithin(Home::path(), folder) ? Home::at(QStringLiteral(".cache")) : folder;
}

QString at(const QString& relative) {
    for (const Anchor& a : anchors()) {
        if (relative == a.prefix) return a.folder();
        if (relative.startsWith(a.prefix) && relative.at(a.prefix.size()) == QLatin1Char('/'))
            return a.folder() + relative.mid(a.prefix.size());
    }
    return Home::at(relative);
}

const QSet<QString>& ownXdgCacheRows() {
    static const QSet<QString> names{
        "pip", "uv", "yarn", "go-build", "JetBrains", "ms-playwright", "puppeteer", "huggingface", "pnpm",
        "Homebrew", "thumbnails", "google-chrome", "chromium", "BraveSoftware", "mozilla", "ccache", "sccache",
        "mesa_shader_cache", "mesa_shader_cache_db", "bazel"};
    return names;
}

const QSet<QString>& xdgCacheState() {
    // KeePassXC remembers its databases and key files here, obexd keeps files received over
    // Bluetooth, dconf a settings database when ~/.config cannot be written.
    static const QSet<QString> names{"keepassxc", "obexd", "dconf"};
    return names;
}

bool loginLike(const QString& name) {
    const QString lower = name.toLower();
    for (const char* word : {"token", "credential", "secret", "password", "keyring"})
        if (lower.contains(QLatin1String(word))) return true;
    return false;
}

bool skipInXdgCache(const QString& name) {
    return ownXdgCacheRows().contains(name) || xdgCacheState().contains(name) || loginLike(name);
}

bool skipInHuggingFace(const QString& name) {
    // The login token: clearing it logs you out of Hugging Face.
    return name == QLatin1String("token") || name == QLatin1String("stored_tokens");
}

const QSet<QString>& electronCacheFolders() {
    static const QSet<QString> names{"Cache", "Code Cache", "GPUCache", "DawnCache", "DawnGraphiteCache",
                                     "DawnWebGPUCache", "GraphiteDawnCache", "GrShaderCache", "ShaderCache",
                                     "CachedData", "CachedExtensionVSIXs"};
    return names;
}

}  // namespace Catalogue
