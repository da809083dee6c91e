#pragma once
// Building Mac-shaped fixtures: app bundles with an Info.plist, launchd jobs, Library items.
// Property lists are written with libplist, in its XML or binary form.

#include <QString>
#include <QVariantMap>

namespace MacApps {

enum class Form { xml, binary };

// Writes `values` as a property list (QString, bool, integers, double, QByteArray, QStringList,
// QVariantList and QVariantMap nest as they would in a real one), creating the parent folders.
void writePlist(const QString& path, const QVariantMap& values, Form form = Form::xml);

// folder/fileName with "Contents/Info.plist" holding `info` and an executable of `bytes` bytes at
// "Contents/MacOS/main". Returns the bundle's path.
QString app(const QString& folder, const QString& fileName, const QVariantMap& info, Form form = Form::xml,
            qint64 bytes = 40'000);

// The Info.plist keys of an app with this identifier and display name.
QVariantMap info(const QString& bundleID, const QString& displayName = {});

// home + "/Library/" + place + "/" + name: a folder holding one file of `bytes` bytes, or a file.
QString libraryFolder(const QString& home, const QString& place, const QString& name, qint64 bytes = 20'000);
QString libraryFile(const QString& home, const QString& place, const QString& name, qint64 bytes = 3'000);

}  // namespace MacApps
