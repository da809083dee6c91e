#pragma once
// The one JSON writer and reader every persisted form uses. Objects are written with their keys in
// the order they were added (records list their fields in declaration order), pretty-printed, with
// dates as ISO 8601 text in UTC and whole seconds. Reading goes through QJsonDocument, where key
// order does not matter.

#include <QByteArray>
#include <QDateTime>
#include <QJsonObject>
#include <QJsonValue>
#include <QString>
#include <optional>
#include <utility>
#include <vector>

class Json {
public:
    Json() = default;  // null
    Json(bool b) : kind_(Kind::boolean), int_(b) {}
    Json(int i) : kind_(Kind::integer), int_(i) {}
    Json(qint64 i) : kind_(Kind::integer), int_(i) {}
    Json(quint64 u) : kind_(Kind::unsignedInteger), uint_(u) {}
    Json(double d) : kind_(Kind::real), real_(d) {}
    Json(QString s) : kind_(Kind::string), text_(std::move(s)) {}
    Json(const char* s) : Json(QString::fromUtf8(s)) {}

    static Json object() { return Json(Kind::object); }
    static Json array() { return Json(Kind::array); }
    static Json date(const QDateTime& d);

    Json& set(const QString& key, Json value);  // appends a member to an object
    Json& append(Json value);                   // appends an element to an array

    QByteArray toText(bool pretty = true) const;

private:
    enum class Kind { null, boolean, integer, unsignedInteger, real, string, array, object };
    explicit Json(Kind k) : kind_(k) {}
    void write(QByteArray& out, bool pretty, int indent) const;

    Kind kind_ = Kind::null;
    qint64 int_ = 0;
    quint64 uint_ = 0;
    double real_ = 0;
    QString text_;
    std::vector<Json> items_;
    std::vector<QString> keys_;  // parallel to items_ for objects
};

// Parses JSON text; nothing when it is not valid JSON.
std::optional<QJsonValue> parseJson(const QByteArray& text);

// Reads the fields of one JSON object. Every required accessor that finds its key missing or of
// the wrong type marks the whole read as failed, so a decoder reads all fields and checks ok().
class JsonFields {
public:
    explicit JsonFields(const QJsonValue& value);

    bool ok() const { return ok_; }
    bool has(const char* key) const { return object_.contains(QLatin1String(key)); }

    QString text(const char* key);
    qint64 int64(const char* key);
    bool boolean(const char* key);
    double number(const char* key);
    QDateTime date(const char* key);
    QJsonValue value(const char* key);  // any present value
    QJsonArray array(const char* key);

    std::optional<QDateTime> optionalDate(const char* key);
    std::optional<qint64> optionalInt64(const char* key);
    std::optional<quint64> optionalUInt64(const char* key);
    std::optional<double> optionalNumber(const char* key);

    void fail() { ok_ = false; }

private:
    QJsonValue present(const char* key);
    QJsonObject object_;
    bool ok_ = true;
};

// Conversions of single JSON values; nothing when the value is not of that type.
std::optional<qint64> jsonInt64(const QJsonValue& v);
std::optional<quint64> jsonUInt64(const QJsonValue& v);
std::optional<QDateTime> jsonDate(const QJsonValue& v);
