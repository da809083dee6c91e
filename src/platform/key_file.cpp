#include "platform/key_file.h"

#include "platform/small_file.h"

namespace {

bool isKeyCharacter(QChar c) {
    return (c >= QLatin1Char('A') && c <= QLatin1Char('Z')) || (c >= QLatin1Char('a') && c <= QLatin1Char('z')) ||
           (c >= QLatin1Char('0') && c <= QLatin1Char('9')) || c == QLatin1Char('-') || c == QLatin1Char('_') ||
           c == QLatin1Char('.');
}

// A key as both dialects write it: letters, digits, "-", "_" and "." (X-GNOME-Autostart-enabled,
// ExecStart), optionally followed by a "[locale]".
bool isKey(const QString& key) {
    qsizetype end = key.size();
    if (key.endsWith(QLatin1Char(']'))) {
        end = key.indexOf(QLatin1Char('['));
        if (end <= 0 || end + 2 >= key.size()) return false;
    }
    if (end == 0) return false;
    for (qsizetype i = 0; i < end; ++i)
        if (!isKeyCharacter(key[i])) return false;
    return true;
}

QString unescapeDesktopValue(const QString& raw) {
    QString out;
    out.reserve(raw.size());
    for (qsizetype i = 0; i < raw.size(); ++i) {
        if (raw[i] != QLatin1Char('\\') || i + 1 == raw.size()) {
            out.append(raw[i]);
            continue;
        }
        const QChar next = raw[++i];
        if (next == QLatin1Char('s')) out.append(QLatin1Char(' '));
        else if (next == QLatin1Char('n')) out.append(QLatin1Char('\n'));
        else if (next == QLatin1Char('t')) out.append(QLatin1Char('\t'));
        else if (next == QLatin1Char('r')) out.append(QLatin1Char('\r'));
        else if (next == QLatin1Char('\\')) out.append(QLatin1Char('\\'));
        else out.append(QLatin1Char('\\')).append(next);  // kept for the Exec key's own quoting
    }
    return out;
}

// The file's lines; a unit's lines ending in a backslash are joined with the next one by a blank.
QStringList logicalLines(const QString& text, KeyFile::Syntax syntax) {
    QStringList lines = text.split(QLatin1Char('\n'));
    if (syntax != KeyFile::Syntax::systemdUnit) return lines;
    QStringList joined;
    QString pending;
    bool continuing = false;
    for (QString line : lines) {
        if (line.endsWith(QLatin1Char('\r'))) line.chop(1);
        const QString trimmed = line.trimmed();
        // A comment inside a continued value is dropped, as systemd does.
        if (continuing && (trimmed.startsWith(QLatin1Char('#')) || trimmed.startsWith(QLatin1Char(';')))) continue;
        const bool continues = !trimmed.startsWith(QLatin1Char('#')) && !trimmed.startsWith(QLatin1Char(';')) &&
                               line.endsWith(QLatin1Char('\\'));
        if (continues) {
            line.chop(1);
            while (line.endsWith(QLatin1Char(' ')) || line.endsWith(QLatin1Char('\t'))) line.chop(1);
        }
        pending += continuing ? QLatin1Char(' ') + line.trimmed() : line;
        continuing = continues;
        if (!continuing) {
            joined.append(pending);
            pending.clear();
        }
    }
    if (continuing) joined.append(pending);
    return joined;
}

}  // namespace

std::optional<QString> KeyFile::value(const QString& group, const QString& key) const {
    for (auto it = entries.crbegin(); it != entries.crend(); ++it)
        if (it->group == group && it->key == key) return it->value;
    return std::nullopt;
}

QStringList KeyFile::values(const QString& group, const QString& key) const {
    QStringList out;
    for (const Entry& e : entries)
        if (e.group == group && e.key == key) out.append(e.value);
    return out;
}

std::optional<bool> KeyFile::flag(const QString& group, const QString& key) const {
    const auto v = value(group, key);
    if (v == QLatin1String("true") || v == QLatin1String("1")) return true;
    if (v == QLatin1String("false") || v == QLatin1String("0")) return false;
    return std::nullopt;
}

std::optional<KeyFile> KeyFile::parse(const QByteArray& data, Syntax syntax) {
    const QString text = QString::fromUtf8(data);
    if (text.toUtf8() != data || data.contains('\0')) return std::nullopt;  // not a text file
    KeyFile file;
    QString group;
    for (QString line : logicalLines(text, syntax)) {
        if (line.endsWith(QLatin1Char('\r'))) line.chop(1);
        const QString trimmed = line.trimmed();
        if (trimmed.isEmpty() || trimmed.startsWith(QLatin1Char('#'))) continue;
        if (syntax == Syntax::systemdUnit && trimmed.startsWith(QLatin1Char(';'))) continue;
        if (trimmed.startsWith(QLatin1Char('['))) {
            if (!trimmed.endsWith(QLatin1Char(']')) || trimmed.size() < 3) return std::nullopt;
            group = trimmed.mid(1, trimmed.size() - 2);
            if (group.contains(QLatin1Char('[')) || group.contains(QLatin1Char(']'))) return std::nullopt;
            if (!file.groups.contains(group)) file.groups.append(group);
            continue;
        }
        const qsizetype equals = trimmed.indexOf(QLatin1Char('='));
        if (group.isEmpty() || equals < 0) return std::nullopt;
        const QString key = trimmed.left(equals).trimmed();
        if (!isKey(key)) return std::nullopt;
        const QString raw = trimmed.mid(equals + 1).trimmed();
        file.entries.append({group, key, syntax == Syntax::desktopEntry ? unescapeDesktopValue(raw) : raw});
    }
    return file;
}

std::optional<KeyFile> KeyFile::read(const QString& path, Syntax syntax) {
    const auto data = SmallFile::read(path);
    return data ? parse(*data, syntax) : std::nullopt;
}
