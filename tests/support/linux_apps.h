#pragma once
// Building Linux-shaped fixtures: Flatpak installations with deployed apps, AppImages, desktop
// entries and other small text files, and fake command-line tools (flatpak, dpkg, systemctl).

#include <QByteArray>
#include <QString>
#include <QStringList>

namespace LinuxFixtures {

// Sets an environment variable for one scope and puts the old value back afterwards.
class ScopedEnv {
public:
    ScopedEnv(const char* name, const QByteArray& value);
    ~ScopedEnv();
    ScopedEnv(const ScopedEnv&) = delete;
    ScopedEnv& operator=(const ScopedEnv&) = delete;

private:
    const char* name_;
    bool had_;
    QByteArray old_;
};

struct Flatpak {
    QString id;
    QString name;       // Name of its exported desktop entry; no entry when empty
    QString command;    // "command" of its metadata
    QString developer;  // <developer><name> of its AppStream data; no AppStream file when empty
    QString wmClass;    // StartupWMClass of its desktop entry
    qint64 bytes = 30'000;  // of its program file
};

// Deploys the app as flatpak does: <installation>/app/<id>/x86_64/stable/<commit>/ holding
// "metadata", "files/" and "export/", with the links "current" → x86_64/stable and
// "x86_64/stable/active" → <commit>. Returns <installation>/app/<id>.
QString flatpak(const QString& installation, const Flatpak& app);

// An ELF file of `bytes` bytes carrying the AppImage magic of `appImageType` (0: plain ELF).
QString elf(const QString& path, int appImageType = 2, qint64 bytes = 50'000);

// A file holding `contents`, its parent folders created.
QString text(const QString& path, const QByteArray& contents);

// A desktop entry: "[Desktop Entry]" followed by the lines given ("Name=Editor", …).
QString desktopEntry(const QString& path, const QStringList& lines);

// An executable shell script folder/name running `body`.
QString script(const QString& folder, const QString& name, const QByteArray& body);

// The contents of a file, empty when it cannot be read.
QByteArray contents(const QString& path);

}  // namespace LinuxFixtures
