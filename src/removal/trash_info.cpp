#include "removal/trash_info.h"

#include <QList>

#include "core/paths.h"

namespace {

const QByteArray header = "[Trash Info]";
const QByteArray entryKey = "X-Quarle-Entry";
const QString dateFormat = QStringLiteral("yyyy-MM-ddTHH:mm:ss");

bool unreserved(unsigned char c) {
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '-' || c == '_' ||
           c == '.' || c == '~' || c == '/';
}

int hexValue(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

bool leadsElsewhere(const QByteArray& path) {
    for (const QByteArray& part : path.split('/'))
        if (part == "." || part == "..") return true;
    return false;
}

}  // namespace

namespace TrashInfo {

QByteArray encodePath(const QByteArray& bytes) {
    static const char digits[] = "0123456789ABCDEF";
    QByteArray out;
    out.reserve(bytes.size() * 3);
    for (const char ch : bytes) {
        const auto c = static_cast<unsigned char>(ch);
        if (unreserved(c)) {
            out.append(ch);
        } else {
            out.append('%');
            out.append(digits[c >> 4]);
            out.append(digits[c & 15]);
        }
    }
    return out;
}

std::optional<QByteArray> decodePath(const QByteArray& text) {
    QByteArray out;
    out.reserve(text.size());
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (text[i] != '%') {
            out.append(text[i]);
            continue;
        }
        if (i + 2 >= text.size()) return std::nullopt;
        const int hi = hexValue(text[i + 1]), lo = hexValue(text[i + 2]);
        if (hi < 0 || lo < 0) return std::nullopt;
        out.append(char(hi * 16 + lo));
        i += 2;
    }
    if (out.contains('\0')) return std::nullopt;
    return out;
}

QByteArray format(const QString& path, const QDateTime& date, const QUuid& entry) {
    QByteArray text = header + '\n';
    text += "Path=" + encodePath(Paths::toBytes(path)) + '\n';
    text += "DeletionDate=" + date.toLocalTime().toString(dateFormat).toLatin1() + '\n';
    if (!entry.isNull()) text += entryKey + '=' + entry.toByteArray(QUuid::WithoutBraces).toUpper() + '\n';
    return text;
}

std::optional<Parsed> parse(const QByteArray& text, const QString& base) {
    bool inGroup = false, seenGroup = false;
    std::optional<QByteArray> path;
    Parsed parsed;
    for (QByteArray line : text.split('\n')) {
        if (line.endsWith('\r')) line.chop(1);
        if (line.trimmed().isEmpty() || line.startsWith('#')) continue;
        if (line.startsWith('[')) {
            if (!seenGroup && line != header) return std::nullopt;  // the group must come first
            inGroup = line == header && !seenGroup;
            seenGroup = true;
            continue;
        }
        if (!inGroup) {
            if (!seenGroup) return std::nullopt;
            continue;
        }
        const qsizetype eq = line.indexOf('=');
        if (eq < 0) continue;
        const QByteArray key = line.left(eq).trimmed(), value = line.mid(eq + 1);
        if (key == "Path" && !path) {
            path = decodePath(value);
            if (!path) return std::nullopt;
        } else if (key == "DeletionDate" && !parsed.deleted) {
            QDateTime d = QDateTime::fromString(QString::fromLatin1(value.trimmed()), dateFormat);
            if (d.isValid()) parsed.deleted = d;
        } else if (key == entryKey && parsed.entry.isNull()) {
            parsed.entry = QUuid::fromString(QLatin1String(value.trimmed()));
        }
    }
    if (!path || path->isEmpty() || leadsElsewhere(*path)) return std::nullopt;
    const QString decoded = Paths::fromBytes(*path);
    if (decoded.startsWith(QLatin1Char('/'))) {
        parsed.original = Paths::standardize(decoded, QString());
    } else {
        parsed.original = Paths::standardize(base + QLatin1Char('/') + decoded, QString());
    }
    return parsed;
}

}  // namespace TrashInfo
