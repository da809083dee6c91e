#include <gtest/gtest.h>

#include "support/printers.h"

#include <QLocale>
#include <limits>

#include "core/fmt.h"
#include "core/home.h"

namespace {

const qint64 GB = 1'000'000'000;

class FmtTest : public ::testing::Test {
protected:
    void SetUp() override { QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates)); }
};

TEST_F(FmtTest, BytesRoundsBeforeChoosingTheUnit) {
    const std::pair<qint64, const char*> cases[] = {
        {0, "0 KB"},
        {1, "1 KB"},
        {-500, "1 KB"},
        {1499, "1 KB"},
        {1500, "2 KB"},  // printf rounds the exact half to even
        {999'499, "999 KB"},
        {999'500, "1 MB"},
        {999'499'999, "999 MB"},
        {999'500'000, "1.0 GB"},
        {1'050'000'000, "1.1 GB"},  // 1.05 is a little above its binary neighbour
        {99'949'999'999, "99.9 GB"},
        {99'950'000'000, "100 GB"},
        {999'949'999'999, "1000 GB"},
        {999'950'000'000, "1.0 TB"},
        {12'345'000'000'000, "12.3 TB"},
        {-1'500'000, "-2 MB"},
    };
    for (const auto& [n, text] : cases) EXPECT_EQ(Fmt::bytes(n).toStdString(), text) << n;
    EXPECT_EQ(Fmt::bytes(std::numeric_limits<qint64>::max()).toStdString(), "9223372.0 TB");
    EXPECT_DEATH(Fmt::bytes(std::numeric_limits<qint64>::min()), "overflow");
}

TEST_F(FmtTest, PartsAddUpToTheShownTotal) {
    auto [none, noneTotal] = Fmt::parts({});
    EXPECT_TRUE(none.isEmpty());
    EXPECT_EQ(noneTotal, "0 KB");

    // Below a gigabyte every part is shown on its own.
    auto [small, smallTotal] = Fmt::parts({400'000'000, 599'999'999});
    EXPECT_EQ(small, QStringList({"400 MB", "600 MB"}));
    EXPECT_EQ(smallTotal, "1.0 GB");

    // Floors 12, 12, 14 tenths against the target 40: the third and then the first get a tenth.
    auto [parts, total] = Fmt::parts({1'260'000'000, 1'260'000'000, 1'480'000'000});
    EXPECT_EQ(parts, QStringList({"1.3 GB", "1.2 GB", "1.5 GB"}));
    EXPECT_EQ(total, "4.0 GB");

    // Parts below a gigabyte keep their own form; negative ones count as nothing in the tenths.
    auto [mixed, mixedTotal] = Fmt::parts({640'000'000, 1'330'000'000, -5'000'000});
    EXPECT_EQ(mixed, QStringList({"640 MB", "1.3 GB", "-5 MB"}));
    EXPECT_EQ(mixedTotal, "2.0 GB");

    // Equal remainders keep their order: the first ones get the extra tenth.
    auto [even, evenTotal] = Fmt::parts({1'050'000'000, 1'050'000'000, 1'050'000'000, 1'050'000'000});
    EXPECT_EQ(even, QStringList({"1.1 GB", "1.1 GB", "1.0 GB", "1.0 GB"}));
    EXPECT_EQ(evenTotal, "4.2 GB");
    EXPECT_EQ(Fmt::parts({3 * GB}).second, "3.0 GB");
}

TEST_F(FmtTest, CountGroupsDigitsAndPicksTheWord) {
    EXPECT_EQ(Fmt::count(1, "file"), "1 file");
    EXPECT_EQ(Fmt::count(0, "file"), "0 files");
    EXPECT_EQ(Fmt::count(1200, "file"), "1,200 files");
    EXPECT_EQ(Fmt::count(2, "category", QStringLiteral("categories")), "2 categories");
    EXPECT_EQ(Fmt::count(1, "category", QStringLiteral("categories")), "1 category");

    QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
    EXPECT_EQ(Fmt::count(1200, "Datei"), "1.200 Dateis");
    QLocale::setDefault(QLocale::c());
    EXPECT_EQ(Fmt::count(1200, "file"), "1,200 files");  // even the C locale groups
}

TEST_F(FmtTest, PathShortensTheHomeFolderByPlainPrefix) {
    const QString home = Home::path();
    EXPECT_EQ(Fmt::path(home + "/Library/Caches"), "~/Library/Caches");
    EXPECT_EQ(Fmt::path(home), "~");
    EXPECT_EQ(Fmt::path(home + "b/x"), "~b/x");  // a text prefix, no check for "/"
    EXPECT_EQ(Fmt::path("/opt/homebrew"), "/opt/homebrew");
}

TEST_F(FmtTest, AgoCountsWholeDaysWithoutSingulars) {
    const QDateTime now = QDateTime::fromSecsSinceEpoch(1'700'000'000, Qt::UTC);
    const auto daysBefore = [&](double days) { return now.addSecs(qint64(-days * 86400)); };
    EXPECT_EQ(Fmt::ago(std::nullopt, now), "never seen");
    EXPECT_EQ(Fmt::ago(now.addSecs(-86399), now), "today");
    EXPECT_EQ(Fmt::ago(now.addSecs(3600), now), "today");  // a date in the future
    EXPECT_EQ(Fmt::ago(daysBefore(1), now), "yesterday");
    EXPECT_EQ(Fmt::ago(daysBefore(1.99), now), "yesterday");
    EXPECT_EQ(Fmt::ago(daysBefore(2), now), "2 days ago");
    EXPECT_EQ(Fmt::ago(daysBefore(13), now), "13 days ago");
    EXPECT_EQ(Fmt::ago(daysBefore(14), now), "2 weeks ago");
    EXPECT_EQ(Fmt::ago(daysBefore(59), now), "8 weeks ago");
    EXPECT_EQ(Fmt::ago(daysBefore(60), now), "2 months ago");
    EXPECT_EQ(Fmt::ago(daysBefore(729), now), "24 months ago");
    EXPECT_EQ(Fmt::ago(daysBefore(730), now), "2 years ago");
}

TEST_F(FmtTest, DayAndEmptyDayUseTheLocalesShortFormsWithTheYearOfAnotherYear) {
    const QDateTime past(QDate(2024, 3, 5), QTime(9, 30), Qt::LocalTime);
    EXPECT_EQ(Fmt::day(past), "Tue 5 Mar 2024");
    const QDateTime today(QDate::currentDate(), QTime(7, 5), Qt::LocalTime);
    EXPECT_EQ(Fmt::day(today), "Today 07:05");
    EXPECT_EQ(Fmt::emptyDay(past, 7), "Tue 12 Mar 2024");
    EXPECT_EQ(Fmt::emptyDay(past, 36500), "Thu 10 Feb 2124");
    const QDateTime thisYear(QDate(QDate::currentDate().year(), 1, 1), QTime(9, 0), Qt::LocalTime);
    EXPECT_FALSE(Fmt::emptyDay(thisYear, 0).contains(QString::number(thisYear.date().year())));
}

}  // namespace
