#include "apps/property_list.h"

#include <plist/plist.h>

#include <QDateTime>
#include <memory>

#include "platform/small_file.h"

namespace {

// Real Info.plist files are a few kilobytes; anything this large is not one.
constexpr qint64 largestFile = 16 * 1024 * 1024;
// Nesting deeper than this is not a property list anyone writes; it stops a hostile file from
// exhausting the stack.
constexpr int deepestNesting = 64;

struct PlistFree {
    void operator()(plist_t p) const { plist_free(p); }
};
using PlistPtr = std::unique_ptr<void, PlistFree>;

QString takeString(char* s) {
    const QString out = s ? QString::fromUtf8(s) : QString();
    free(s);
    return out;
}

QVariant convert(plist_t node, int depth) {
    if (depth > deepestNesting) return {};
    switch (plist_get_node_type(node)) {
    case PLIST_STRING: {
        char* s = nullptr;
        plist_get_string_val(node, &s);
        return takeString(s);
    }
    case PLIST_BOOLEAN: {
        uint8_t b = 0;
        plist_get_bool_val(node, &b);
        return bool(b);
    }
    case PLIST_UINT: {
        uint64_t v = 0;
        plist_get_uint_val(node, &v);
        return qint64(v);
    }
    case PLIST_REAL: {
        double v = 0;
        plist_get_real_val(node, &v);
        return v;
    }
    case PLIST_DATE: {
        int32_t sec = 0, usec = 0;
        plist_get_date_val(node, &sec, &usec);
        // Property-list dates count from 2001-01-01 UTC.
        return QDateTime::fromSecsSinceEpoch(978307200LL + sec, Qt::UTC).addMSecs(usec / 1000);
    }
    case PLIST_DATA: {
        char* data = nullptr;
        uint64_t length = 0;
        plist_get_data_val(node, &data, &length);
        const QByteArray out(data, qsizetype(length));
        free(data);
        return out;
    }
    case PLIST_ARRAY: {
        QVariantList list;
        const uint32_t n = plist_array_get_size(node);
        for (uint32_t i = 0; i < n; ++i) list.append(convert(plist_array_get_item(node, i), depth + 1));
        return list;
    }
    case PLIST_DICT: {
        QVariantMap map;
        plist_dict_iter it = nullptr;
        plist_dict_new_iter(node, &it);
        for (;;) {
            char* key = nullptr;
            plist_t value = nullptr;
            plist_dict_next_item(node, it, &key, &value);
            if (!value) {
                free(key);
                break;
            }
            const QString name = takeString(key);
            map.insert(name, convert(value, depth + 1));
        }
        free(it);
        return map;
    }
    default:
        return {};
    }
}

}  // namespace

namespace PropertyList {

std::optional<QVariantMap> parse(const QByteArray& data) {
    if (data.isEmpty()) return std::nullopt;
    plist_t raw = nullptr;
    plist_from_memory(data.constData(), uint32_t(data.size()), &raw);
    const PlistPtr root(raw);
    if (!root || plist_get_node_type(root.get()) != PLIST_DICT) return std::nullopt;
    return convert(root.get(), 0).toMap();
}

std::optional<QVariantMap> read(const QString& path) {
    const auto data = SmallFile::read(path, largestFile);
    return data ? parse(*data) : std::nullopt;
}

std::optional<QString> text(const QVariantMap& dict, const QString& key) {
    const auto it = dict.constFind(key);
    if (it == dict.constEnd() || it->typeId() != QMetaType::QString) return std::nullopt;
    return it->toString();
}

QStringList texts(const QVariantMap& dict, const QString& key) {
    const auto it = dict.constFind(key);
    if (it == dict.constEnd()) return {};
    if (it->typeId() == QMetaType::QString) return {it->toString()};
    QStringList out;
    if (it->typeId() == QMetaType::QVariantList)
        for (const QVariant& v : it->toList())
            if (v.typeId() == QMetaType::QString) out.append(v.toString());
    return out;
}

}  // namespace PropertyList
