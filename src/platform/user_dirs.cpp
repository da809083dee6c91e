#include "platform/user_dirs.h"

#include <optional>

#include "core/paths.h"
#include "platform/small_file.h"

namespace {

// The value after '=': one shell word, quoted or not. Nothing when a quote is left open.
std::optional<QByteArray> unquote(const QByteArray& value) {
    QByteArray out;
    char quote = 0;
    for (qsizetype i = 0; i < value.size(); ++i) {
        const char c = value[i];
        const bool escaped = c == '\\' && quote != '\'' && i + 1 < value.size();
        if (escaped) {
            out += value[++i];
        } else if (quote != 0) {
            if (c == quote) quote = 0;
            else out += c;
        } else if (c == '"' || c == '\'') {
            quote = c;
        } else if (c == ' ' || c == '\t' || c == '#') {
            break;  // the word ends; a comment may follow
        } else {
            out += c;
        }
    }
    if (quote != 0) return std::nullopt;
    return out;
}

}  // namespace

namespace UserDirs {

const QMap<QString, QString>& defaults() {
    static const QMap<QString, QString> names{
        {desktop, QStringLiteral("Desktop")}, {download, QStringLiteral("Downloads")},
        {documents, QStringLiteral("Documents")}, {music, QStringLiteral("Music")},
        {pictures, QStringLiteral("Pictures")}, {videos, QStringLiteral("Videos")},
        {QStringLiteral("TEMPLATES"), QStringLiteral("Templates")}, {QStringLiteral("PUBLICSHARE"), QStringLiteral("Public")},
    };
    return names;
}

QMap<QString, QString> parse(const QByteArray& text, const QString& home) {
    QMap<QString, QString> out;
    for (QByteArray line : text.split('\n')) {
        line = line.trimmed();
        if (line.isEmpty() || line.startsWith('#')) continue;
        const qsizetype eq = line.indexOf('=');
        const QByteArray name = line.left(eq).trimmed();
        if (eq < 0 || !name.startsWith("XDG_") || !name.endsWith("_DIR") || name.size() <= 8) continue;
        const auto value = unquote(line.mid(eq + 1).trimmed());
        if (!value || value->isEmpty()) continue;
        QString path;
        if (value->startsWith("$HOME") || value->startsWith("${HOME}")) {
            const QByteArray rest = value->mid(value->startsWith("$HOME") ? 5 : 7);
            if (!rest.isEmpty() && !rest.startsWith('/')) continue;  // "$HOMEWORK" is no home
            path = home + Paths::fromBytes(rest);
        } else if (value->startsWith('/')) {
            path = Paths::fromBytes(*value);
        } else {
            continue;
        }
        path = Paths::standardize(path, home);
        const QString key = QString::fromLatin1(name.mid(4, name.size() - 8));
        if (path == home) out.insert(key, QString());  // not set up: remembered so the default is dropped too
        else out.insert(key, path);
    }
    return out;
}

QMap<QString, QString> read(const QString& home, const QString& file) {
    QMap<QString, QString> dirs;
    for (auto it = defaults().cbegin(); it != defaults().cend(); ++it) dirs.insert(it.key(), home + QLatin1Char('/') + it.value());
    const auto text = SmallFile::read(file);
    if (!text) return dirs;
    const QMap<QString, QString> named = parse(*text, home);
    for (auto it = named.cbegin(); it != named.cend(); ++it) {
        if (it.value().isEmpty()) dirs.remove(it.key());
        else dirs.insert(it.key(), it.value());
    }
    return dirs;
}

}  // namespace UserDirs
