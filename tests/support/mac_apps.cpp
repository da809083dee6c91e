#include "support/mac_apps.h"

#include <plist/plist.h>

#include <cstdlib>

#include "core/paths.h"
#include "support/files.h"

namespace {

plist_t toPlist(const QVariant& v) {
    switch (v.typeId()) {
    case QMetaType::Bool:
        return plist_new_bool(v.toBool());
    case QMetaType::Int:
    case QMetaType::LongLong:
    case QMetaType::UInt:
    case QMetaType::ULongLong:
        return plist_new_uint(v.toULongLong());
    case QMetaType::Double:
        return plist_new_real(v.toDouble());
    case QMetaType::QByteArray: {
        const QByteArray data = v.toByteArray();
        return plist_new_data(data.constData(), uint64_t(data.size()));
    }
    case QMetaType::QStringList:
    case QMetaType::QVariantList: {
        plist_t array = plist_new_array();
        for (const QVariant& item : v.toList()) plist_array_append_item(array, toPlist(item));
        return array;
    }
    case QMetaType::QVariantMap: {
        plist_t dict = plist_new_dict();
        const QVariantMap map = v.toMap();
        for (auto it = map.cbegin(); it != map.cend(); ++it)
            plist_dict_set_item(dict, it.key().toUtf8().constData(), toPlist(it.value()));
        return dict;
    }
    default:
        return plist_new_string(v.toString().toUtf8().constData());
    }
}

}  // namespace

namespace MacApps {

void writePlist(const QString& path, const QVariantMap& values, Form form) {
    plist_t root = toPlist(values);
    char* out = nullptr;
    uint32_t length = 0;
    if (form == Form::xml)
        plist_to_xml(root, &out, &length);
    else
        plist_to_bin(root, &out, &length);
    plist_free(root);
    Files::makeDirs(Paths::parentOf(path));
    Files::writeText(path, QByteArray(out, qsizetype(length)));
    free(out);
}

QString app(const QString& folder, const QString& fileName, const QVariantMap& info, Form form, qint64 bytes) {
    const QString bundle = folder + QLatin1Char('/') + fileName;
    writePlist(bundle + QStringLiteral("/Contents/Info.plist"), info, form);
    Files::makeDirs(bundle + QStringLiteral("/Contents/MacOS"));
    Files::write(bundle + QStringLiteral("/Contents/MacOS/main"), bytes);
    return bundle;
}

QVariantMap info(const QString& bundleID, const QString& displayName) {
    QVariantMap keys{{QStringLiteral("CFBundleIdentifier"), bundleID},
                     {QStringLiteral("CFBundleExecutable"), QStringLiteral("main")}};
    if (!displayName.isEmpty()) keys.insert(QStringLiteral("CFBundleDisplayName"), displayName);
    return keys;
}

QString libraryFolder(const QString& home, const QString& place, const QString& name, qint64 bytes) {
    const QString path = home + QStringLiteral("/Library/") + place + QLatin1Char('/') + name;
    Files::makeDirs(path);
    Files::write(path + QStringLiteral("/data"), bytes);
    return path;
}

QString libraryFile(const QString& home, const QString& place, const QString& name, qint64 bytes) {
    const QString folder = home + QStringLiteral("/Library/") + place;
    Files::makeDirs(folder);
    Files::write(folder + QLatin1Char('/') + name, bytes);
    return folder + QLatin1Char('/') + name;
}

}  // namespace MacApps
