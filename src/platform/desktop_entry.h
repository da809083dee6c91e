#pragma once
// A desktop entry ("NAME.desktop": an application's launcher, or an autostart entry) with the
// keys Quarle reads. Localized keys are ignored: the untranslated Name is the one other tools
// match against too.

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <optional>

struct DesktopEntry {
    QString path;
    QString id;        // the file name without ".desktop"
    QString type;      // "Application", "Link", …; may be empty in an autostart override
    QString name;
    QStringList exec;  // Exec split into arguments (field codes such as %U left in); empty without one
    QString tryExec;
    QString icon;
    QString wmClass;   // StartupWMClass
    QString flatpak;   // X-Flatpak: the id of the Flatpak app that runs it
    bool hidden = false;                  // Hidden=true: treated as deleted
    std::optional<bool> autostartEnabled;  // X-GNOME-Autostart-enabled

    // The program Exec runs (after an "env" and its settings); empty without one.
    QString program() const;

    // Nothing when the file cannot be read, is damaged, has no "[Desktop Entry]" group, or its Exec
    // leaves a quote open.
    static std::optional<DesktopEntry> read(const QString& path);
    // The same from the file's text.
    static std::optional<DesktopEntry> parse(const QByteArray& data, const QString& path);

    bool operator==(const DesktopEntry&) const = default;
};
