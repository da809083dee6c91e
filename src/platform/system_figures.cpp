#include "platform/system_figures.h"

#include <sys/stat.h>
#include <sys/statvfs.h>

#include <climits>
#include <limits>
#include <cstdlib>

#include <QFile>
#include <QList>

#include "core/checked.h"
#include "core/paths.h"

namespace {

// The mount point whose file system holds `path`: the longest mount point of /proc/self/mountinfo
// that contains it (fields: id, parent, major:minor, root, mount point, …).
QString mountPointOf(const QString& path) {
    QFile info(QStringLiteral("/proc/self/mountinfo"));
    QString best = QStringLiteral("/");
    if (!info.open(QIODevice::ReadOnly)) return best;
    for (const QByteArray& line : info.readAll().split('\n')) {
        const QList<QByteArray> fields = line.split(' ');
        if (fields.size() < 5) continue;
        // Spaces and other odd bytes in a mount point are written as octal escapes.
        QByteArray point = fields[4];
        point.replace("\\040", " ").replace("\\011", "\t").replace("\\012", "\n").replace("\\134", "\\");
        const QString p = Paths::fromBytes(point);
        if (Paths::isWithin(path, p) && p.size() > best.size()) best = p;
    }
    return best;
}

std::optional<dev_t> deviceOf(const QString& path) {
    struct stat st;
    if (::stat(Paths::toBytes(path).constData(), &st) != 0) return std::nullopt;
    return st.st_dev;
}

}  // namespace

namespace SystemFigures {

qint64 parseSwaps(const QByteArray& text) {
    qint64 sum = 0;
    const QList<QByteArray> lines = text.split('\n');
    for (qsizetype i = 1; i < lines.size(); ++i) {  // the first line names the columns
        const QList<QByteArray> fields = lines[i].simplified().split(' ');
        if (fields.size() < 4) continue;
        bool ok = false;
        const qint64 kib = fields[3].toLongLong(&ok);
        if (ok && kib > 0 && kib < std::numeric_limits<qint64>::max() / 1024)
            sum = Checked::add(sum, kib * 1024);
    }
    return sum;
}

qint64 swapUsed() {
    QFile swaps(QStringLiteral("/proc/swaps"));
    if (!swaps.open(QIODevice::ReadOnly)) return 0;
    return parseSwaps(swaps.readAll());
}

std::optional<Space> space(const QString& path) {
    struct statvfs st;
    if (::statvfs(Paths::toBytes(path).constData(), &st) != 0) return std::nullopt;
    const qint64 unit = qint64(st.f_frsize ? st.f_frsize : st.f_bsize);
    Space s;
    s.mountPoint = mountPointOf(path);
    s.total = Checked::mul(qint64(st.f_blocks), unit);
    s.free = Checked::mul(qint64(st.f_bavail), unit);
    s.used = Checked::mul(qint64(st.f_blocks - std::min(st.f_bfree, st.f_blocks)), unit);
    return s;
}

std::optional<QString> userTempFolder(const QString& home) {
    QString folder = QStringLiteral("/tmp");
    if (const QByteArray tmp = qgetenv("TMPDIR"); tmp.startsWith('/')) folder = Paths::fromBytes(tmp);
    // The real folder, so that a walk (which never follows links) measures its contents.
    if (char* real = ::realpath(Paths::toBytes(folder).constData(), nullptr)) {
        folder = Paths::fromBytes(QByteArray(real));
        ::free(real);
    }
    folder = Paths::standardize(folder, home);
    const auto tempDevice = deviceOf(folder);
    if (!tempDevice || tempDevice != deviceOf(home)) return std::nullopt;
    return folder;
}

}  // namespace SystemFigures
