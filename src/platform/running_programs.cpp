#include "platform/running_programs.h"

#include <sys/stat.h>
#include <unistd.h>

#include <QSet>
#include <climits>
#include <dirent.h>

#include "core/paths.h"
#include "platform/small_file.h"
#include "platform/words.h"

namespace {

// Folders on many executables' paths, which say nothing about the app.
const QSet<QString>& commonFolders() {
    static const QSet<QString> names{"usr", "bin", "sbin", "lib", "lib64", "libexec", "share", "opt", "local",
                                     "app", "apps", "home", "snap", "current", "desktop", "tmp", "root"};
    return names;
}

std::optional<QString> link(const QString& path) {
    char target[PATH_MAX];
    const ssize_t n = ::readlink(Paths::toBytes(path).constData(), target, sizeof target);
    if (n <= 0) return std::nullopt;
    QString exe = Paths::fromBytes(target, qsizetype(n));
    if (exe.endsWith(QLatin1String(" (deleted)"))) exe.chop(10);  // replaced by an update while running
    return exe;
}

}  // namespace

namespace RunningPrograms {

QList<Program> list(const QString& proc) {
    QList<Program> programs;
    DIR* dir = ::opendir(Paths::toBytes(proc).constData());
    if (!dir) return programs;
    const uid_t me = ::geteuid();
    while (const dirent* e = ::readdir(dir)) {
        const QByteArray name(e->d_name);
        bool numeric = false;
        name.toLong(&numeric);
        if (!numeric) continue;
        const QString folder = proc + QLatin1Char('/') + QString::fromLatin1(name);
        struct stat st;
        if (::stat(Paths::toBytes(folder).constData(), &st) != 0 || st.st_uid != me) continue;
        Program p;
        p.exe = link(folder + QStringLiteral("/exe")).value_or(QString());
        if (const auto comm = SmallFile::read(folder + QStringLiteral("/comm"), 64)) p.name = Paths::fromBytes(comm->trimmed());
        if (!p.exe.isEmpty() || !p.name.isEmpty()) programs.append(std::move(p));
    }
    ::closedir(dir);
    return programs;
}

bool runs(const QString& folder, const QList<Program>& programs) {
    const QString key = Words::squeezed(folder);
    if (key.isEmpty()) return false;
    QStringList folderWords;
    for (const QString& w : Words::of(folder))
        if (w.size() >= 4 && !commonFolders().contains(w)) folderWords.append(w);
    for (const Program& p : programs) {
        for (const QString& candidate : {Words::squeezed(p.name), Words::squeezed(Paths::lastComponent(p.exe))}) {
            if (candidate.isEmpty()) continue;
            // "signal-desktop" starts with "signal"; a 15-byte comm is a cut-off start of the name.
            if (candidate.startsWith(key) || (candidate.size() >= 4 && key.startsWith(candidate))) return true;
        }
        for (const QString& component : p.exe.split(QLatin1Char('/'), Qt::SkipEmptyParts)) {
            const QString squeezedComponent = Words::squeezed(component);
            if (commonFolders().contains(squeezedComponent)) continue;
            if (squeezedComponent == key || folderWords.contains(component.toLower())) return true;
        }
    }
    return false;
}

}  // namespace RunningPrograms
