#pragma once
// JSON forms of the records: keys are the field names in declaration order, absent optionals are
// left out, and a missing or mistyped required field fails the decode of the whole record.

#include <QJsonArray>
#include <QList>
#include <optional>

#include "core/history_entry.h"
#include "core/json.h"
#include "core/records.h"
#include "core/space_node.h"

Json encodeJson(const Removal&);
Json encodeJson(const Part&);
Json encodeJson(const Finding&);
Json encodeJson(const DiskPart&);
Json encodeJson(const Volume&);
Json encodeJson(const SystemPart&);
Json encodeJson(const Leftover&);
Json encodeJson(const InstalledApp&);
Json encodeJson(const Orphan&);
Json encodeJson(const LoginItem&);
Json encodeJson(const HistoryEntry::Moved&);
Json encodeJson(const HistoryEntry&);
Json encodeJson(const SpaceNode&);

template <typename T>
std::optional<T> decodeJson(const QJsonValue&);

template <> std::optional<Removal> decodeJson(const QJsonValue&);
template <> std::optional<Part> decodeJson(const QJsonValue&);
template <> std::optional<Finding> decodeJson(const QJsonValue&);
template <> std::optional<DiskPart> decodeJson(const QJsonValue&);
template <> std::optional<Volume> decodeJson(const QJsonValue&);
template <> std::optional<SystemPart> decodeJson(const QJsonValue&);
template <> std::optional<Leftover> decodeJson(const QJsonValue&);
template <> std::optional<InstalledApp> decodeJson(const QJsonValue&);
template <> std::optional<Orphan> decodeJson(const QJsonValue&);
template <> std::optional<LoginItem> decodeJson(const QJsonValue&);
template <> std::optional<HistoryEntry::Moved> decodeJson(const QJsonValue&);
template <> std::optional<HistoryEntry> decodeJson(const QJsonValue&);
template <> std::optional<SpaceNode> decodeJson(const QJsonValue&);

template <typename T>
Json encodeJsonList(const QList<T>& list) {
    Json out = Json::array();
    for (const T& item : list) out.append(encodeJson(item));
    return out;
}

// A list decodes only when it is an array and every element decodes.
template <typename T>
std::optional<QList<T>> decodeJsonList(const QJsonValue& value) {
    if (!value.isArray()) return std::nullopt;
    QList<T> out;
    const QJsonArray array = value.toArray();
    out.reserve(array.size());
    for (const QJsonValue& element : array) {
        std::optional<T> item = decodeJson<T>(element);
        if (!item) return std::nullopt;
        out.append(std::move(*item));
    }
    return out;
}

Json encodeJson(const QStringList&);
std::optional<QStringList> decodeStringList(const QJsonValue&);
