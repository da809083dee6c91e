#pragma once
// Property lists (the XML and binary forms; libplist 2.2 does not read the old text form) turned
// into plain Qt values: dict → QVariantMap, array → QVariantList, string → QString, boolean → bool,
// integer → qint64, real → double, date → QDateTime, data → QByteArray.

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QVariantMap>
#include <optional>

namespace PropertyList {

// The dictionary at the root of the file; nothing when the file cannot be read, is not a regular
// file, is damaged, or its root is not a dictionary.
std::optional<QVariantMap> read(const QString& path);
std::optional<QVariantMap> parse(const QByteArray& data);

// A string value; nothing when the key is missing or holds another type.
std::optional<QString> text(const QVariantMap& dict, const QString& key);
// A string or an array (its string elements), as several keys of launchd jobs accept either.
QStringList texts(const QVariantMap& dict, const QString& key);

}  // namespace PropertyList
