#include "core/paths.h"

#include <stdlib.h>

#include <QStringList>

namespace {

constexpr char16_t rawByteBase = 0xDC00;

// Length of the valid UTF-8 sequence starting at p (at most `left` bytes), or 0 when invalid.
int utf8SequenceLength(const unsigned char* p, qsizetype left) {
    const unsigned char c = p[0];
    int len;
    char32_t min;
    if (c < 0x80) return 1;
    if ((c & 0xE0) == 0xC0) {
        len = 2;
        min = 0x80;
    } else if ((c & 0xF0) == 0xE0) {
        len = 3;
        min = 0x800;
    } else if ((c & 0xF8) == 0xF0) {
        len = 4;
        min = 0x10000;
    } else {
        return 0;
    }
    if (left < len) return 0;
    char32_t cp = c & (0x7F >> len);
    for (int i = 1; i < len; ++i) {
        if ((p[i] & 0xC0) != 0x80) return 0;
        cp = (cp << 6) | (p[i] & 0x3F);
    }
    if (cp < min || cp > 0x10FFFF || (cp >= 0xD800 && cp <= 0xDFFF)) return 0;
    return len;
}

}  // namespace

namespace Paths {

QString fromBytes(const char* bytes, qsizetype size) {
    const auto* p = reinterpret_cast<const unsigned char*>(bytes);
    qsizetype i = 0;
    while (i < size && p[i] < 0x80) ++i;
    if (i == size) return QString::fromLatin1(bytes, size);  // plain ASCII, the common case

    QString out = QString::fromLatin1(bytes, i);
    out.reserve(size);
    while (i < size) {
        const int len = utf8SequenceLength(p + i, size - i);
        if (len == 0) {
            out.append(QChar(char16_t(rawByteBase + p[i])));
            ++i;
        } else {
            out.append(QString::fromUtf8(bytes + i, len));
            i += len;
        }
    }
    return out;
}

QString fromBytes(const QByteArray& bytes) { return fromBytes(bytes.constData(), bytes.size()); }

QByteArray toBytes(const QString& path) {
    QByteArray out;
    out.reserve(path.size());
    const qsizetype n = path.size();
    for (qsizetype i = 0; i < n; ++i) {
        const char16_t u = path.at(i).unicode();
        if (u < 0x80) {
            out.append(char(u));
        } else if (u >= 0xDC80 && u <= 0xDCFF &&
                   !(i > 0 && QChar::isHighSurrogate(path.at(i - 1).unicode()))) {
            out.append(char(u - rawByteBase));  // a byte kept from a name that was not UTF-8
        } else if (QChar::isHighSurrogate(u) && i + 1 < n && QChar::isLowSurrogate(path.at(i + 1).unicode())) {
            out.append(path.mid(i, 2).toUtf8());
            ++i;
        } else {
            out.append(QString(QChar(u)).toUtf8());
        }
    }
    return out;
}

bool hasRawBytes(const QString& path) {
    for (qsizetype i = 0; i < path.size(); ++i) {
        const char16_t u = path.at(i).unicode();
        if (u >= 0xDC80 && u <= 0xDCFF && !(i > 0 && QChar::isHighSurrogate(path.at(i - 1).unicode())))
            return true;
    }
    return false;
}

QString standardize(const QString& path, const QString& home) {
    QString p = path;
    if (p == QLatin1String("~"))
        p = home;
    else if (p.startsWith(QLatin1String("~/")))
        p = home + p.mid(1);
    const bool absolute = p.startsWith(QLatin1Char('/'));
    QStringList kept;
    for (const QString& part : p.split(QLatin1Char('/'), Qt::SkipEmptyParts)) {
        if (part == QLatin1String(".")) continue;
        if (part == QLatin1String("..")) {
            if (!kept.isEmpty() && kept.last() != QLatin1String(".."))
                kept.removeLast();
            else if (!absolute)
                kept.append(part);  // a relative path keeps the ".." it cannot resolve
            continue;
        }
        kept.append(part);
    }
    const QString joined = kept.join(QLatin1Char('/'));
    if (absolute) return QLatin1Char('/') + joined;
    return joined.isEmpty() ? QStringLiteral(".") : joined;
}

std::optional<QString> resolveDotDot(const QString& path) {
    const QStringList parts = path.split(QLatin1Char('/'));
    const qsizetype last = parts.lastIndexOf(QStringLiteral(".."));
    if (last < 0) return standardize(path, QString());
    const QByteArray prefix = toBytes(parts.mid(0, last + 1).join(QLatin1Char('/')));
    char* resolved = ::realpath(prefix.isEmpty() ? "/" : prefix.constData(), nullptr);
    if (!resolved) return std::nullopt;
    const QString base = fromBytes(QByteArray(resolved));
    ::free(resolved);
    return standardize(base + QLatin1Char('/') + parts.mid(last + 1).join(QLatin1Char('/')), QString());
}

QString lastComponent(const QString& path) {
    const qsizetype slash = path.lastIndexOf(QLatin1Char('/'));
    return slash < 0 ? path : path.mid(slash + 1);
}

QString parentOf(const QString& path) {
    const qsizetype slash = path.lastIndexOf(QLatin1Char('/'));
    if (slash <= 0) return QStringLiteral("/");
    return path.left(slash);
}

bool isWithin(const QString& path, const QString& folder) {
    if (path == folder) return true;
    if (folder == QLatin1String("/")) return path.startsWith(QLatin1Char('/'));
    return path.size() > folder.size() && path.startsWith(folder) && path.at(folder.size()) == QLatin1Char('/');
}

}  // namespace Paths
