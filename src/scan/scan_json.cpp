#include "scan/scan_json.h"

#include "core/record_json.h"

Json encodeJson(const ScanResult& r) {
    Json o = Json::object();
    o.set(QStringLiteral("volume"), encodeJson(r.volume));
    o.set(QStringLiteral("home"), encodeJson(r.home));
    o.set(QStringLiteral("findings"), encodeJsonList(r.findings));
    o.set(QStringLiteral("strata"), encodeJsonList(r.strata));
    o.set(QStringLiteral("system"), encodeJsonList(r.system));
    o.set(QStringLiteral("systemTotal"), r.systemTotal);
    o.set(QStringLiteral("snapshots"), encodeJson(r.snapshots));
    if (r.fullDiskAccess) o.set(QStringLiteral("fullDiskAccess"), *r.fullDiskAccess);
    o.set(QStringLiteral("files"), r.files);
    o.set(QStringLiteral("seconds"), r.seconds);
    o.set(QStringLiteral("date"), Json::date(r.date));
    return o;
}
