#include "platform/system_figures.h"

#include <sys/stat.h>
#include <sys/statvfs.h>

#include <climits>
#include <limits>
#include <cstdlib>

#include <QDir>
#include <QFile>
#include <QList>
#include <QRegularExpression>

#include "core/checked.h"
#include "core/paths.h"
#include "platform/shell.h"

namespace {

std::optional<dev_t> deviceOf(const QString& path) {
    struct stat st;
    if (::stat(Paths::toBytes(path).constData(), &st) != 0) return std::nullopt;
    return st.st_dev;
}

}  // namespace

namespace SystemFigures {

// The longest mount point of /proc/self/mountinfo that contains the path.
QString mountPointOf(const QString& path) {
    QFile info(QStringLiteral("/proc/self/mountinfo"));
    if (!info.open(QIODevice::ReadOnly)) return QStringLiteral("/");
    return mountPointIn(info.readAll(), path);
}

// Fields: id, parent, major:minor, root, mount point, …
QString mountPointIn(const QByteArray& mountinfo, const QString& path) {
    QString best = QStringLiteral("/");
    for (const QByteArray& line : mountinfo.split('\n')) {
        const QList<QByteArray> fields = line.split(' ');
        if (fields.size() < 5) continue;
        const QString p = Paths::fromBytes(unescapeOctal(fields[4]));
        if (Paths::isWithin(path, p) && p.size() > best.size()) best = p;
    }
    return best;
}

QByteArray unescapeOctal(const QByteArray& text) {
    QByteArray out;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const auto octal = [&](qsizetype at) { return at < text.size() && text[at] >= '0' && text[at] <= '7'; };
        if (text[i] == '\\' && octal(i + 1) && octal(i + 2) && octal(i + 3)) {
            const int value = (text[i + 1] - '0') * 64 + (text[i + 2] - '0') * 8 + (text[i + 3] - '0');
            if (value < 256) {
                out += char(value);
                i += 3;
                continue;
            }
        }
        out += text[i];
    }
    return out;
}

QList<SwapArea> parseSwapAreas(const QByteArray& text) {
    QList<SwapArea> areas;
    const QList<QByteArray> lines = text.split('\n');
    for (qsizetype i = 1; i < lines.size(); ++i) {  // the first line names the columns
        // The kernel writes blanks in a name as escapes, so blanks only separate the columns.
        const QList<QByteArray> fields = lines[i].simplified().split(' ');
        if (fields.size() < 4) continue;
        bool sizeOk = false, usedOk = false;
        const qint64 size = fields[2].toLongLong(&sizeOk);
        const qint64 used = fields[3].toLongLong(&usedOk);
        constexpr qint64 most = std::numeric_limits<qint64>::max() / 1024;
        if (!sizeOk || !usedOk || size < 0 || used < 0 || size >= most || used >= most) continue;
        areas.append({Paths::fromBytes(unescapeOctal(fields[0])), QString::fromLatin1(fields[1]), size * 1024, used * 1024});
    }
    return areas;
}

qint64 parseSwaps(const QByteArray& text) {
    qint64 sum = 0;
    for (const SwapArea& area : parseSwapAreas(text)) sum = Checked::add(sum, area.used);
    return sum;
}

qint64 reserved(quint64 freeBlocks, quint64 availableBlocks, quint64 blockSize) {
    // Some file systems report more available than free blocks; nothing is reserved then.
    if (availableBlocks >= freeBlocks || blockSize == 0) return 0;
    const quint64 blocks = freeBlocks - availableBlocks;
    if (blocks > quint64(std::numeric_limits<qint64>::max()) / blockSize) return std::numeric_limits<qint64>::max();
    return qint64(blocks * blockSize);
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
    s.reserved = reserved(st.f_bfree, st.f_bavail, quint64(unit));
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

std::optional<QString> givenSystemRoot() {
    const QByteArray root = qgetenv("QUARLE_SYSTEM_ROOT");
    if (root.isEmpty()) return std::nullopt;
    const QString path = Paths::standardize(QDir::current().absoluteFilePath(Paths::fromBytes(root)), QString());
    return path == QStringLiteral("/") ? QString() : path;
}

QString systemRoot() { return givenSystemRoot().value_or(QString()); }

std::optional<qint64> parseJournalUsage(const QString& text) {
    static const QRegularExpression figure(QStringLiteral("take up (\\d+(?:\\.\\d+)?)\\s*([KMGTPE]?)i?B?\\b"));
    const QRegularExpressionMatch m = figure.match(text);
    if (!m.hasMatch()) return std::nullopt;
    double bytes = m.captured(1).toDouble();
    const qsizetype power = QStringLiteral(" KMGTPE").indexOf(m.captured(2).isEmpty() ? QStringLiteral(" ") : m.captured(2));
    for (qsizetype i = 0; i < power; ++i) bytes *= 1024;
    if (!(bytes >= 0) || bytes >= 9.0e18) return std::nullopt;
    return qint64(bytes);
}

std::optional<qint64> journalUsage(const QString& directory) {
    // journalctl sums the file sizes it finds; it answers at once.
    QStringList command{QStringLiteral("journalctl"), QStringLiteral("--disk-usage")};
    if (!directory.isEmpty()) command << QStringLiteral("--directory=") + directory;
    const Shell::Outcome out = Shell::exec(command, 10);
    if (!out.succeeded()) return std::nullopt;
    return parseJournalUsage(Paths::fromBytes(out.out));
}

}  // namespace SystemFigures
