#pragma once
// Names of apps, installers and folders compared word for word, whatever their case and
// punctuation: "zoomusInstallerFull", "Code - OSS", "signal-desktop".

#include <QString>
#include <QStringList>

namespace Words {

// Lower-case words of a name, split at anything but letters and digits and where a lower-case
// letter meets an upper-case one: "zoomusInstallerFull" → zoomus, installer, full.
QStringList of(const QString& name);
// The words run together: "Code - OSS" → "codeoss".
QString squeezed(const QString& name);

}  // namespace Words
