#include <gtest/gtest.h>

#include "support/printers.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QRegularExpression>

#include "core/paths.h"
#include "core/record_json.h"

namespace {

QDateTime at(qint64 secs) { return QDateTime::fromSecsSinceEpoch(secs, Qt::UTC); }

Finding sampleFinding() {
    Finding f;
    f.id = "caches";
    f.title = "App caches";
    f.place = "~/Library/Caches · 2 folders";
    f.bytes = 4'200'000'000;
    f.bucket = Bucket::now;
    f.explain = "Apps keep copies.";
    f.comesBack = "Comes back by itself";
    f.removal = Removal::trash();
    f.paths = {"/Users/a/Library/Caches"};
    f.parts = {{"Spotify", "/Users/a/Library/Caches/Spotify", 100, "changed today", at(1'700'000'000)},
               {"Slack", "/Users/a/Library/Caches/Slack", 50, "", std::nullopt}};
    f.partial = true;
    return f;
}

HistoryEntry sampleEntry() {
    HistoryEntry e;
    e.id = QUuid::fromString(QStringLiteral("E621E1F8-C36C-495A-93FC-0C247A3E6E5F"));
    e.date = at(1'740'821'400);  // 2025-03-01T09:30:00Z
    e.title = "App caches";
    e.bytes = 150;
    e.moved = {{"/h/a", "/h/.local/share/Trash/files/a", 100, qint32(2049), quint64(1) << 40, 1'700'000'000.123456},
               {"/h/b", "/h/.local/share/Trash/files/b", 50, std::nullopt, std::nullopt, std::nullopt}};
    e.state = HistoryEntry::State::inTrash;
    return e;
}

// The keys of a JSON object in the order they appear in the text.
QStringList keyOrder(const QByteArray& text) {
    QStringList keys;
    const QRegularExpression re(QStringLiteral("^  \"([^\"]+)\" :"), QRegularExpression::MultilineOption);
    for (auto it = re.globalMatch(QString::fromUtf8(text)); it.hasNext();) keys.append(it.next().captured(1));
    return keys;
}

template <typename T>
T roundTrip(const T& value) {
    const auto parsed = parseJson(encodeJson(value).toText());
    EXPECT_TRUE(parsed.has_value());
    const auto decoded = decodeJson<T>(*parsed);
    EXPECT_TRUE(decoded.has_value());
    return decoded.value_or(T{});
}

// Every required key left out, one at a time, fails the decode of the whole record.
template <typename T>
void expectEachRequiredKeyNeeded(const T& value, const QStringList& optionalKeys = {}) {
    const QJsonObject full = parseJson(encodeJson(value).toText())->toObject();
    for (const QString& key : full.keys()) {
        QJsonObject cut = full;
        cut.remove(key);
        EXPECT_EQ(decodeJson<T>(cut).has_value(), optionalKeys.contains(key)) << key.toStdString();
    }
}

TEST(RecordJson, RemovalHasItsTaggedForm) {
    EXPECT_EQ(encodeJson(Removal::trash()).toText(false), R"({"trash":{}})");
    EXPECT_EQ(encodeJson(Removal::none()).toText(false), R"({"none":{}})");
    const QByteArray command = R"({"command":{"_0":["a","b"]}})";
    const auto decoded = decodeJson<Removal>(*parseJson(command));
    ASSERT_TRUE(decoded);
    EXPECT_EQ(*decoded, Removal::command({"a", "b"}));
    EXPECT_EQ(encodeJson(*decoded).toText(false), command);

    for (const char* bad : {R"({"trash":{},"none":{}})", R"({"command":{}})", R"({"command":{"_0":[1]}})",
                            R"({"later":{}})", R"({"trash":1})", R"([])"})
        EXPECT_FALSE(decodeJson<Removal>(parseJson(QByteArray("[") + bad + "]")->toArray().first())) << bad;
}

TEST(RecordJson, FindingKeepsItsFieldOrderAndRoundTrips) {
    const Finding f = sampleFinding();
    const QByteArray text = encodeJson(f).toText();
    EXPECT_EQ(keyOrder(text), QStringList({"id", "title", "place", "bytes", "bucket", "explain", "comesBack",
                                           "removal", "developer", "paths", "parts", "partial"}));
    EXPECT_TRUE(text.contains("\"modified\" : \"2023-11-14T22:13:20Z\""));
    EXPECT_EQ(text.count("\"modified\""), 1);  // the absent date is left out, not null
    EXPECT_EQ(roundTrip(f), f);
    expectEachRequiredKeyNeeded(f);
}

TEST(RecordJson, HistoryEntryRoundTripsWithAndWithoutIdentity) {
    const HistoryEntry e = sampleEntry();
    const QByteArray text = encodeJson(e).toText();
    EXPECT_EQ(keyOrder(text), QStringList({"id", "date", "title", "bytes", "moved", "state"}));
    EXPECT_TRUE(text.contains("\"date\" : \"2025-03-01T09:30:00Z\""));
    EXPECT_TRUE(text.contains("\"state\" : \"inTrash\""));
    EXPECT_TRUE(text.contains("E621E1F8-C36C-495A-93FC-0C247A3E6E5F"));
    EXPECT_EQ(roundTrip(e), e);
    expectEachRequiredKeyNeeded(e);
    expectEachRequiredKeyNeeded(e.moved.first(), {"dev", "ino", "born"});

    // Wrong types and unknown states fail the whole entry.
    QJsonObject o = parseJson(text)->toObject();
    for (const auto& [key, bad] : std::vector<std::pair<QString, QJsonValue>>{
             {"bytes", "150"}, {"state", "gone"}, {"date", "yesterday"}, {"id", "not-a-uuid"}, {"moved", 3}}) {
        QJsonObject broken = o;
        broken.insert(key, bad);
        EXPECT_FALSE(decodeJson<HistoryEntry>(broken)) << key.toStdString();
    }
}

TEST(RecordJson, EveryOtherRecordRoundTrips) {
    EXPECT_EQ(roundTrip(DiskPart{"Photos", 5, Paint::peach}), (DiskPart{"Photos", 5, Paint::peach}));
    const Volume v{"Macintosh HD", 1'000'000'000'000, 200, 300};
    EXPECT_EQ(roundTrip(v), v);
    const SystemPart s{"Purgeable", 7, Paint::aqua, Bucket::keep, "macOS frees this.", true};
    EXPECT_EQ(roundTrip(s), s);
    InstalledApp app{"Editor", "com.example.Editor", "/Applications/Editor.app", 10, std::nullopt, "",
                     {{"/h/Library/Caches/com.example.Editor", 5, "Bundle ID matches", Confidence::sure}}};
    EXPECT_EQ(roundTrip(app), app);
    expectEachRequiredKeyNeeded(app, {"lastUsed"});
    app.lastUsed = at(1'600'000'000);
    EXPECT_EQ(roundTrip(app), app);
    const Orphan orphan{"gone", "net.example.gone", app.leftovers};
    EXPECT_EQ(roundTrip(orphan), orphan);
    const LoginItem item{"Helper", "com.example.helper", "Example", LoginItem::Kind::daemon, false,
                         "/Library/LaunchDaemons/com.example.helper.plist", true, "Not signed", true, false};
    EXPECT_EQ(roundTrip(item), item);
    expectEachRequiredKeyNeeded(item);
}

TEST(RecordJson, SpaceNodeNestsItsKids) {
    SpaceNode root{"Home", "/h", 30, true, "", std::nullopt, {}};
    SpaceNode a{"a", "/h/a", 20, true, "partly locked", at(5), {}};
    a.kids.append({"f", "/h/a/f", 20, false, "", at(6), {}});
    root.kids = {a, {"b", "/h/b", 10, true, "", std::nullopt, {}}};
    EXPECT_EQ(roundTrip(root), root);
    QJsonObject o = parseJson(encodeJson(root).toText())->toObject();
    QJsonArray kids = o["kids"].toArray();
    QJsonObject broken = kids[0].toObject();
    broken.remove("isDir");
    kids[0] = broken;
    o["kids"] = kids;
    EXPECT_FALSE(decodeJson<SpaceNode>(o));  // a damaged child fails the whole tree
}

TEST(RecordJson, RawFileNameBytesAndLargeNumbersSurvive) {
    const QByteArray rawName("caf\xe9 \xff\xfe\n\"q\"\\", 12);
    Part p{Paths::fromBytes(rawName), "/h/" + Paths::fromBytes(rawName), std::numeric_limits<qint64>::max(), "",
           std::nullopt};
    const Part back = roundTrip(p);
    EXPECT_EQ(Paths::toBytes(back.name), rawName);
    EXPECT_EQ(back.bytes, std::numeric_limits<qint64>::max());
    EXPECT_TRUE(encodeJson(p).toText().contains("\\udce9"));
}

TEST(RecordJson, DamagedTextIsRejected) {
    for (const QByteArray& bad : {QByteArray(""), QByteArray("{"), QByteArray("null"), QByteArray("\x00\x01\xff", 3),
                                 QByteArray("[1,2")})
        EXPECT_FALSE(parseJson(bad).has_value());
    EXPECT_FALSE(decodeJsonList<HistoryEntry>(*parseJson("{\"a\":1}")));
    EXPECT_FALSE(decodeJsonList<HistoryEntry>(*parseJson("[1]")));
    EXPECT_TRUE(decodeJsonList<HistoryEntry>(*parseJson("[]")).value().isEmpty());
    // Decimal sizes and out-of-range identities are not accepted as whole numbers.
    QJsonObject moved = parseJson(encodeJson(sampleEntry().moved.first()).toText())->toObject();
    moved["bytes"] = 1.5;
    EXPECT_FALSE(decodeJson<HistoryEntry::Moved>(moved));
    moved["bytes"] = 1;
    moved["dev"] = 5'000'000'000.0;
    EXPECT_FALSE(decodeJson<HistoryEntry::Moved>(moved));
}

}  // namespace
