#pragma once
// Looking into lists of records, and arrays of JSON objects, by one of their fields.

#include <gtest/gtest.h>

#include <QJsonArray>
#include <QJsonObject>
#include <QList>
#include <QString>
#include <QStringList>

// The field of every item, in order.
template <typename T>
QStringList fieldOf(const QList<T>& items, QString T::*field) {
    QStringList out;
    for (const T& i : items) out.append(i.*field);
    return out;
}

// The text under `key` of every object in `array`, in order.
inline QStringList fieldOf(const QJsonArray& array, const QString& key) {
    QStringList out;
    for (const QJsonValue& v : array) out.append(v.toObject().value(key).toString());
    return out;
}

// The first item whose field holds `value`; nullptr when there is none.
template <typename T>
const T* findBy(const QList<T>& items, QString T::*field, const QString& value) {
    for (const T& i : items)
        if (i.*field == value) return &i;
    return nullptr;
}

// The same, for a test that goes on with the item: a failure and an empty item when there is none.
template <typename T>
const T& itemBy(const QList<T>& items, QString T::*field, const QString& value) {
    if (const T* found = findBy(items, field, value)) return *found;
    ADD_FAILURE() << "no item " << value.toStdString();
    static const T none{};
    return none;
}
