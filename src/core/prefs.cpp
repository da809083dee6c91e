#include "core/prefs.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QStandardPaths>
#include <climits>
#include <mutex>

#include <errno.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "core/home.h"

namespace {

std::mutex storeLock;

// QSettings reads almost anything as INI and would rewrite a damaged file, dropping what it could
// not parse; Quarle keeps such a file aside instead. Every line must be blank, a comment, a
// [section] or a key=value pair, in UTF-8 without NUL bytes.
bool readableIni(const QString& file) {
    // Opened without blocking and checked to be a regular file: a FIFO or a device named like the
    // preferences would hang every reader, and counts as damaged.
    const int fd = ::open(QFile::encodeName(file).constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC | O_NOFOLLOW);
    if (fd < 0) return errno == ENOENT;
    struct stat st;
    QFile f;
    if (::fstat(fd, &st) != 0 || !S_ISREG(st.st_mode) || !f.open(fd, QIODevice::ReadOnly, QFileDevice::AutoCloseHandle)) {
        ::close(fd);
        return false;
    }
    const QByteArray text = f.readAll();
    if (text.contains('\0') || QString::fromUtf8(text).toUtf8() != text) return false;
    for (const QByteArray& raw : text.split('\n')) {
        const QByteArray line = raw.trimmed();
        if (line.isEmpty() || line.startsWith(';') || line.startsWith('#')) continue;
        if (line.startsWith('[') && line.endsWith(']')) continue;
        if (line.indexOf('=') > 0) continue;
        return false;
    }
    return true;
}

QSettings& store() {
    static QSettings* settings = Prefs::openStore(Prefs::storePath(), Prefs::sandboxed());
    return *settings;
}

}  // namespace

namespace Prefs {

bool sandboxed() {
    static const bool decided = qEnvironmentVariableIsSet("QUARLE_DEMO") ||
                                qEnvironmentVariableIsSet("QUARLE_SELFTEST") || Home::isFake();
    return decided;
}

QString storePath() {
    QString config = qEnvironmentVariable("XDG_CONFIG_HOME");
    if (!config.startsWith(QLatin1Char('/'))) config = Home::accountHome() + QStringLiteral("/.config");
    return config + (sandboxed() ? QStringLiteral("/Quarle/quarle.sandbox.conf")
                                 : QStringLiteral("/Quarle/quarle.conf"));
}

QSettings* openStore(const QString& file, bool wipe) {
    if (wipe) QFile::remove(file);
    if (readableIni(file)) {
        auto* settings = new QSettings(file, QSettings::IniFormat);
        if (settings->status() != QSettings::FormatError) return settings;
        delete settings;
    }
    // A damaged file is kept aside for the user and the preferences start again from defaults.
    const QString aside = file + QStringLiteral(".damaged-") + QString::number(QDateTime::currentSecsSinceEpoch());
    QFile::rename(file, aside);
    qWarning("Quarle: the preferences file could not be read; it was kept as %s and defaults are used.",
             qUtf8Printable(aside));
    return new QSettings(file, QSettings::IniFormat);
}

QVariant value(const QString& key, const QVariant& fallback) {
    std::lock_guard guard(storeLock);
    return store().value(key, fallback);
}

bool setValue(const QString& key, const QVariant& v) {
    std::lock_guard guard(storeLock);
    store().setValue(key, v);
    store().sync();
    return store().status() == QSettings::NoError;
}

QStringList stringList(const QString& key) {
    const QVariant v = value(key);
    if (v.typeId() == QMetaType::QStringList) return v.toStringList();
    if (v.typeId() == QMetaType::QString) return v.toString().isEmpty() ? QStringList() : QStringList{v.toString()};
    return v.toStringList();
}

int integer(const QString& key, int fallback, int min, int max) {
    const QVariant v = value(key);
    bool ok = false;
    const qlonglong i = v.toString().trimmed().toLongLong(&ok);
    if (!ok) {
        const qlonglong asNumber = v.toLongLong(&ok);  // a value stored as a number, not text
        if (!ok) return fallback;
        return asNumber < min ? fallback : int(std::min<qlonglong>(asNumber, max));
    }
    return i < min ? fallback : int(std::min<qlonglong>(i, max));
}

}  // namespace Prefs
