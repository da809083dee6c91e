#include "core/record_json.h"

#include <QUuid>

namespace {

// Reads a required list field into `out`, failing the record when it does not decode.
template <typename T>
void readList(JsonFields& f, const char* key, QList<T>& out) {
    auto list = decodeJsonList<T>(f.value(key));
    if (!list) {
        f.fail();
        return;
    }
    out = std::move(*list);
}

void readStrings(JsonFields& f, const char* key, QStringList& out) {
    auto list = decodeStringList(f.value(key));
    if (!list) {
        f.fail();
        return;
    }
    out = std::move(*list);
}

template <typename E>
E readEnum(JsonFields& f, const char* key, std::optional<E> (*fromRaw)(const QString&)) {
    const std::optional<E> e = fromRaw(f.text(key));
    if (!e) {
        f.fail();
        return E{};
    }
    return *e;
}

template <typename T>
std::optional<T> result(const JsonFields& f, T value) {
    if (!f.ok()) return std::nullopt;
    return value;
}

void setDate(Json& o, const char* key, const std::optional<QDateTime>& d) {
    if (d) o.set(QLatin1String(key), Json::date(*d));
}

}  // namespace

Json encodeJson(const QStringList& list) {
    Json out = Json::array();
    for (const QString& s : list) out.append(s);
    return out;
}

std::optional<QStringList> decodeStringList(const QJsonValue& value) {
    if (!value.isArray()) return std::nullopt;
    QStringList out;
    for (const QJsonValue& v : value.toArray()) {
        if (!v.isString()) return std::nullopt;
        out.append(v.toString());
    }
    return out;
}

// {"trash":{}}, {"none":{}}, {"command":{"_0":[args…]}}
Json encodeJson(const Removal& r) {
    Json payload = Json::object();
    const char* name = "trash";
    if (r.isCommand()) {
        name = "command";
        payload.set(QStringLiteral("_0"), encodeJson(r.args));
    } else if (r.isNone()) {
        name = "none";
    }
    return Json::object().set(QLatin1String(name), std::move(payload));
}

template <>
std::optional<Removal> decodeJson(const QJsonValue& value) {
    if (!value.isObject()) return std::nullopt;
    const QJsonObject o = value.toObject();
    if (o.size() != 1) return std::nullopt;
    const QString key = o.begin().key();
    const QJsonValue payload = o.begin().value();
    if (!payload.isObject()) return std::nullopt;
    if (key == QLatin1String("trash")) return Removal::trash();
    if (key == QLatin1String("none")) return Removal::none();
    if (key == QLatin1String("command")) {
        const auto args = decodeStringList(payload.toObject().value(QLatin1String("_0")));
        if (!args) return std::nullopt;
        return Removal::command(*args);
    }
    return std::nullopt;
}

Json encodeJson(const Part& p) {
    Json o = Json::object();
    o.set("name", p.name).set("path", p.path).set("bytes", p.bytes).set("note", p.note);
    setDate(o, "modified", p.modified);
    return o;
}

template <>
std::optional<Part> decodeJson(const QJsonValue& value) {
    JsonFields f(value);
    Part p;
    p.name = f.text("name");
    p.path = f.text("path");
    p.bytes = f.int64("bytes");
    p.note = f.text("note");
    p.modified = f.optionalDate("modified");
    return result(f, std::move(p));
}

Json encodeJson(const Finding& x) {
    Json o = Json::object();
    o.set("id", x.id).set("title", x.title).set("place", x.place).set("bytes", x.bytes);
    o.set("bucket", rawValue(x.bucket)).set("explain", x.explain).set("comesBack", x.comesBack);
    o.set("removal", encodeJson(x.removal)).set("developer", x.developer);
    o.set("paths", encodeJson(x.paths)).set("parts", encodeJsonList(x.parts));
    o.set("partial", x.partial);
    return o;
}

template <>
std::optional<Finding> decodeJson(const QJsonValue& value) {
    JsonFields f(value);
    Finding x;
    x.id = f.text("id");
    x.title = f.text("title");
    x.place = f.text("place");
    x.bytes = f.int64("bytes");
    x.bucket = readEnum(f, "bucket", bucketFromRaw);
    x.explain = f.text("explain");
    x.comesBack = f.text("comesBack");
    if (auto r = decodeJson<Removal>(f.value("removal")))
        x.removal = *r;
    else
        f.fail();
    x.developer = f.boolean("developer");
    readStrings(f, "paths", x.paths);
    readList(f, "parts", x.parts);
    x.partial = f.boolean("partial");
    return result(f, std::move(x));
}

Json encodeJson(const DiskPart& d) {
    return Json::object().set("name", d.name).set("bytes", d.bytes).set("paint", rawValue(d.paint));
}

template <>
std::optional<DiskPart> decodeJson(const QJsonValue& value) {
    JsonFields f(value);
    DiskPart d;
    d.name = f.text("name");
    d.bytes = f.int64("bytes");
    d.paint = readEnum(f, "paint", paintFromRaw);
    return result(f, std::move(d));
}

Json encodeJson(const Volume& v) {
    return Json::object()
        .set("name", v.name)
        .set("total", v.total)
        .set("free", v.free)
        .set("freeImportant", v.freeImportant);
}

template <>
std::optional<Volume> decodeJson(const QJsonValue& value) {
    JsonFields f(value);
    Volume v;
    v.name = f.text("name");
    v.total = f.int64("total");
    v.free = f.int64("free");
    v.freeImportant = f.int64("freeImportant");
    return result(f, std::move(v));
}

Json encodeJson(const SystemPart& s) {
    return Json::object()
        .set("name", s.name)
        .set("bytes", s.bytes)
        .set("paint", rawValue(s.paint))
        .set("bucket", rawValue(s.bucket))
        .set("action", s.action)
        .set("estimated", s.estimated);
}

template <>
std::optional<SystemPart> decodeJson(const QJsonValue& value) {
    JsonFields f(value);
    SystemPart s;
    s.name = f.text("name");
    s.bytes = f.int64("bytes");
    s.paint = readEnum(f, "paint", paintFromRaw);
    s.bucket = readEnum(f, "bucket", bucketFromRaw);
    s.action = f.text("action");
    s.estimated = f.boolean("estimated");
    return result(f, std::move(s));
}

Json encodeJson(const Leftover& l) {
    return Json::object()
        .set("path", l.path)
        .set("bytes", l.bytes)
        .set("why", l.why)
        .set("confidence", rawValue(l.confidence));
}

template <>
std::optional<Leftover> decodeJson(const QJsonValue& value) {
    JsonFields f(value);
    Leftover l;
    l.path = f.text("path");
    l.bytes = f.int64("bytes");
    l.why = f.text("why");
    l.confidence = readEnum(f, "confidence", confidenceFromRaw);
    return result(f, std::move(l));
}

Json encodeJson(const InstalledApp& a) {
    Json o = Json::object();
    o.set("name", a.name).set("bundleID", a.bundleID).set("path", a.path).set("appBytes", a.appBytes);
    setDate(o, "lastUsed", a.lastUsed);
    o.set("developer", a.developer).set("leftovers", encodeJsonList(a.leftovers));
    return o;
}

template <>
std::optional<InstalledApp> decodeJson(const QJsonValue& value) {
    JsonFields f(value);
    InstalledApp a;
    a.name = f.text("name");
    a.bundleID = f.text("bundleID");
    a.path = f.text("path");
    a.appBytes = f.int64("appBytes");
    a.lastUsed = f.optionalDate("lastUsed");
    a.developer = f.text("developer");
    readList(f, "leftovers", a.leftovers);
    return result(f, std::move(a));
}

Json encodeJson(const Orphan& o) {
    return Json::object()
        .set("name", o.name)
        .set("bundleID", o.bundleID)
        .set("leftovers", encodeJsonList(o.leftovers));
}

template <>
std::optional<Orphan> decodeJson(const QJsonValue& value) {
    JsonFields f(value);
    Orphan o;
    o.name = f.text("name");
    o.bundleID = f.text("bundleID");
    readList(f, "leftovers", o.leftovers);
    return result(f, std::move(o));
}

Json encodeJson(const LoginItem& i) {
    return Json::object()
        .set("name", i.name)
        .set("identifier", i.identifier)
        .set("developer", i.developer)
        .set("kind", rawValue(i.kind))
        .set("enabled", i.enabled)
        .set("path", i.path)
        .set("needsAdmin", i.needsAdmin)
        .set("signer", i.signer)
        .set("missing", i.missing)
        .set("appStillThere", i.appStillThere);
}

template <>
std::optional<LoginItem> decodeJson(const QJsonValue& value) {
    JsonFields f(value);
    LoginItem i;
    i.name = f.text("name");
    i.identifier = f.text("identifier");
    i.developer = f.text("developer");
    i.kind = readEnum(f, "kind", loginKindFromRaw);
    i.enabled = f.boolean("enabled");
    i.path = f.text("path");
    i.needsAdmin = f.boolean("needsAdmin");
    i.signer = f.text("signer");
    i.missing = f.boolean("missing");
    i.appStillThere = f.boolean("appStillThere");
    return result(f, std::move(i));
}

Json encodeJson(const HistoryEntry::Moved& m) {
    Json o = Json::object();
    o.set("original", m.original).set("trashed", m.trashed).set("bytes", m.bytes);
    if (m.dev) o.set("dev", int(*m.dev));
    if (m.ino) o.set("ino", *m.ino);
    if (m.born) o.set("born", *m.born);
    return o;
}

template <>
std::optional<HistoryEntry::Moved> decodeJson(const QJsonValue& value) {
    JsonFields f(value);
    HistoryEntry::Moved m;
    m.original = f.text("original");
    m.trashed = f.text("trashed");
    m.bytes = f.int64("bytes");
    if (const auto dev = f.optionalInt64("dev")) {
        if (*dev < INT32_MIN || *dev > INT32_MAX) f.fail();
        m.dev = qint32(*dev);
    }
    m.ino = f.optionalUInt64("ino");
    m.born = f.optionalNumber("born");
    return result(f, std::move(m));
}

Json encodeJson(const HistoryEntry& e) {
    return Json::object()
        .set("id", e.id.toString(QUuid::WithoutBraces).toUpper())
        .set("date", Json::date(e.date))
        .set("title", e.title)
        .set("bytes", e.bytes)
        .set("moved", encodeJsonList(e.moved))
        .set("state", rawValue(e.state));
}

template <>
std::optional<HistoryEntry> decodeJson(const QJsonValue& value) {
    JsonFields f(value);
    HistoryEntry e;
    e.id = QUuid::fromString(f.text("id"));
    if (e.id.isNull()) f.fail();
    e.date = f.date("date");
    e.title = f.text("title");
    e.bytes = f.int64("bytes");
    readList(f, "moved", e.moved);
    e.state = readEnum(f, "state", historyStateFromRaw);
    return result(f, std::move(e));
}

Json encodeJson(const SpaceNode& n) {
    Json o = Json::object();
    o.set("name", n.name).set("path", n.path).set("bytes", n.bytes).set("isDir", n.isDir);
    o.set("note", n.note);
    setDate(o, "modified", n.modified);
    o.set("kids", encodeJsonList(n.kids));
    return o;
}

template <>
std::optional<SpaceNode> decodeJson(const QJsonValue& value) {
    JsonFields f(value);
    SpaceNode n;
    n.name = f.text("name");
    n.path = f.text("path");
    n.bytes = f.int64("bytes");
    n.isDir = f.boolean("isDir");
    n.note = f.text("note");
    n.modified = f.optionalDate("modified");
    readList(f, "kids", n.kids);
    return result(f, std::move(n));
}
