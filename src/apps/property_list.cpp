#include "apps/property_list.h"

#include <plist/plist.h>

#include <cstring>

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
        // A NUL byte inside an XML string makes libplist's plist_get_string_val abort; such a
        // string is damaged and reads as no value.
        uint64_t length = 0;
        const char* s = plist_get_string_ptr(node, &length);
        if (!s || std::strlen(s) != length) return {};
        return QString::fromUtf8(s, qsizetype(length));
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

// libplist 2.2 aborts on an assertion when a dictionary key or a string of a binary property list
// holds a NUL character (a UTF-16 string can); such a file is damaged, so it is looked for first.
bool binaryStringHoldsNul(const QByteArray& data) {
    const auto* base = reinterpret_cast<const uchar*>(data.constData());
    const quint64 size = quint64(data.size());
    if (!data.startsWith("bplist00") || size < 8 + 32) return false;
    const auto number = [&](quint64 at, int n) {
        quint64 v = 0;
        for (int i = 0; i < n; ++i) v = v << 8 | base[at + i];
        return v;
    };
    const int offsetSize = base[size - 32 + 6];
    const quint64 count = number(size - 32 + 8, 8), table = number(size - 32 + 24, 8);
    // A trailer libplist refuses anyway.
    if (offsetSize < 1 || offsetSize > 8 || table >= size || count > (size - table) / quint64(offsetSize)) return false;
    for (quint64 i = 0; i < count; ++i) {
        const quint64 at = number(table + i * quint64(offsetSize), offsetSize);
        if (at >= size) continue;
        const uchar kind = base[at] & 0xF0;
        if (kind != 0x50 && kind != 0x60) continue;  // ASCII and UTF-16 strings
        quint64 length = base[at] & 0x0F, start = at + 1;
        if (length == 0x0F) {  // the length follows as an integer object
            if (start >= size || (base[start] & 0xF0) != 0x10) continue;
            const int n = 1 << (base[start] & 0x0F);
            if (n > 8 || start + 1 + quint64(n) > size) continue;
            length = number(start + 1, n);
            start += 1 + quint64(n);
        }
        const int unit = kind == 0x60 ? 2 : 1;
        if (length > (size - start) / quint64(unit)) continue;
        for (quint64 k = 0; k < length; ++k)
            if (base[start + k * unit] == 0 && (unit == 1 || base[start + k * unit + 1] == 0)) return true;
    }
    return false;
}

}  // namespace

namespace PropertyList {

std::optional<QVariantMap> parse(const QByteArray& data) {
    if (data.isEmpty() || binaryStringHoldsNul(data)) return std::nullopt;
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
