#include "core/json.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonParseError>
#include <QVariant>
#include <charconv>
#include <cmath>

Json Json::date(const QDateTime& d) {
    return Json(d.toUTC().toString(Qt::ISODate));
}

Json& Json::set(const QString& key, Json value) {
    keys_.push_back(key);
    items_.push_back(std::move(value));
    return *this;
}

Json& Json::append(Json value) {
    items_.push_back(std::move(value));
    return *this;
}

namespace {

void writeString(QByteArray& out, const QString& s) {
    out.append('"');
    const qsizetype n = s.size();
    for (qsizetype i = 0; i < n; ++i) {
        const char16_t u = s.at(i).unicode();
        switch (u) {
            case '"': out.append("\\\""); continue;
            case '\\': out.append("\\\\"); continue;
            case '\n': out.append("\\n"); continue;
            case '\r': out.append("\\r"); continue;
            case '\t': out.append("\\t"); continue;
            case '\b': out.append("\\b"); continue;
            case '\f': out.append("\\f"); continue;
            default: break;
        }
        if (u < 0x20) {
            out.append(QStringLiteral("\\u%1").arg(int(u), 4, 16, QLatin1Char('0')).toLatin1());
        } else if (u < 0x80) {
            out.append(char(u));
        } else if (QChar::isHighSurrogate(u) && i + 1 < n && QChar::isLowSurrogate(s.at(i + 1).unicode())) {
            out.append(s.mid(i, 2).toUtf8());
            ++i;
        } else if (QChar::isSurrogate(u)) {
            // A lone surrogate keeps a raw byte of a file name (see Paths); escaped, it survives.
            out.append(QStringLiteral("\\u%1").arg(int(u), 4, 16, QLatin1Char('0')).toLatin1());
        } else {
            out.append(QString(QChar(u)).toUtf8());
        }
    }
    out.append('"');
}

void newline(QByteArray& out, bool pretty, int indent) {
    if (!pretty) return;
    out.append('\n');
    out.append(QByteArray(indent * 2, ' '));
}

}  // namespace

void Json::write(QByteArray& out, bool pretty, int indent) const {
    switch (kind_) {
        case Kind::null: out.append("null"); return;
        case Kind::boolean: out.append(int_ ? "true" : "false"); return;
        case Kind::integer: out.append(QByteArray::number(int_)); return;
        case Kind::unsignedInteger: out.append(QByteArray::number(uint_)); return;
        case Kind::real: {
            if (!std::isfinite(real_)) {
                out.append("null");
                return;
            }
            char buf[64];
            const auto r = std::to_chars(buf, buf + sizeof buf, real_);  // shortest exact form
            out.append(buf, r.ptr - buf);
            return;
        }
        case Kind::string: writeString(out, text_); return;
        case Kind::array:
        case Kind::object: {
            const bool isObject = kind_ == Kind::object;
            out.append(isObject ? '{' : '[');
            if (items_.empty()) {
                out.append(isObject ? '}' : ']');
                return;
            }
            for (std::size_t i = 0; i < items_.size(); ++i) {
                if (i) out.append(',');
                newline(out, pretty, indent + 1);
                if (isObject) {
                    writeString(out, keys_[i]);
                    out.append(pretty ? " : " : ":");
                }
                items_[i].write(out, pretty, indent + 1);
            }
            newline(out, pretty, indent);
            out.append(isObject ? '}' : ']');
            return;
        }
    }
}

QByteArray Json::toText(bool pretty) const {
    QByteArray out;
    write(out, pretty, 0);
    if (pretty) out.append('\n');
    return out;
}

std::optional<QJsonValue> parseJson(const QByteArray& text) {
    QJsonParseError error{};
    const QJsonDocument doc = QJsonDocument::fromJson(text, &error);
    if (error.error != QJsonParseError::NoError) return std::nullopt;
    if (doc.isArray()) return QJsonValue(doc.array());
    if (doc.isObject()) return QJsonValue(doc.object());
    return std::nullopt;
}

std::optional<qint64> jsonInt64(const QJsonValue& v) {
    if (!v.isDouble()) return std::nullopt;
    const QVariant var = v.toVariant();
    if (var.typeId() == QMetaType::LongLong) return var.toLongLong();
    const double d = v.toDouble();
    if (d != std::floor(d) || d < -9.2233720368547758e18 || d >= 9.2233720368547758e18) return std::nullopt;
    return qint64(d);
}

std::optional<quint64> jsonUInt64(const QJsonValue& v) {
    if (const auto i = jsonInt64(v)) {
        if (*i < 0) return std::nullopt;
        return quint64(*i);
    }
    if (!v.isDouble()) return std::nullopt;
    const double d = v.toDouble();
    if (d != std::floor(d) || d < 0 || d >= 1.8446744073709552e19) return std::nullopt;
    return quint64(d);
}

std::optional<QDateTime> jsonDate(const QJsonValue& v) {
    if (!v.isString()) return std::nullopt;
    const QDateTime d = QDateTime::fromString(v.toString(), Qt::ISODate).toUTC();
    // An offset can carry a date past year 9999 (or before 1) in UTC, which ISO text cannot hold:
    // written back it would be empty, and the whole file unreadable.
    if (!d.isValid() || d.date().year() < 1 || d.date().year() > 9999) return std::nullopt;
    return d;
}

JsonFields::JsonFields(const QJsonValue& value) : object_(value.toObject()), ok_(value.isObject()) {}

QJsonValue JsonFields::present(const char* key) {
    const QJsonValue v = object_.value(QLatin1String(key));
    if (v.isUndefined()) ok_ = false;
    return v;
}

QString JsonFields::text(const char* key) {
    const QJsonValue v = present(key);
    if (!v.isString()) ok_ = false;
    return v.toString();
}

qint64 JsonFields::int64(const char* key) {
    const auto i = jsonInt64(present(key));
    if (!i) ok_ = false;
    return i.value_or(0);
}

bool JsonFields::boolean(const char* key) {
    const QJsonValue v = present(key);
    if (!v.isBool()) ok_ = false;
    return v.toBool();
}

double JsonFields::number(const char* key) {
    const QJsonValue v = present(key);
    if (!v.isDouble()) ok_ = false;
    return v.toDouble();
}

QDateTime JsonFields::date(const char* key) {
    const auto d = jsonDate(present(key));
    if (!d) ok_ = false;
    return d.value_or(QDateTime());
}

QJsonValue JsonFields::value(const char* key) { return present(key); }

QJsonArray JsonFields::array(const char* key) {
    const QJsonValue v = present(key);
    if (!v.isArray()) ok_ = false;
    return v.toArray();
}

// Optional fields: absent or null means nothing; present with the wrong type fails the read.
std::optional<QDateTime> JsonFields::optionalDate(const char* key) {
    const QJsonValue v = object_.value(QLatin1String(key));
    if (v.isUndefined() || v.isNull()) return std::nullopt;
    const auto d = jsonDate(v);
    if (!d) ok_ = false;
    return d;
}

std::optional<qint64> JsonFields::optionalInt64(const char* key) {
    const QJsonValue v = object_.value(QLatin1String(key));
    if (v.isUndefined() || v.isNull()) return std::nullopt;
    const auto i = jsonInt64(v);
    if (!i) ok_ = false;
    return i;
}

std::optional<quint64> JsonFields::optionalUInt64(const char* key) {
    const QJsonValue v = object_.value(QLatin1String(key));
    if (v.isUndefined() || v.isNull()) return std::nullopt;
    const auto u = jsonUInt64(v);
    if (!u) ok_ = false;
    return u;
}

std::optional<double> JsonFields::optionalNumber(const char* key) {
    const QJsonValue v = object_.value(QLatin1String(key));
    if (v.isUndefined() || v.isNull()) return std::nullopt;
    if (!v.isDouble()) {
        ok_ = false;
        return std::nullopt;
    }
    return v.toDouble();
}
