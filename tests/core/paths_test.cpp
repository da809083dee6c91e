#include <gtest/gtest.h>

#include "support/printers.h"

#include <random>

#include "core/paths.h"

namespace {

TEST(Paths, AnyByteStringRoundTrips) {
    const QByteArray samples[] = {
        "plain", "caf\xc3\xa9", "\xf0\x9f\x98\x80 emoji", QByteArray("\xff\xfe", 2), "\xc3",  // cut sequence
        "\xed\xa0\x80",                                                                   // encoded surrogate
        "\xc0\xaf",                                                                       // overlong slash
        "a\nb\tc", QByteArray(255, 'n'), "\xe2\x82"};
    for (const QByteArray& s : samples) EXPECT_EQ(Paths::toBytes(Paths::fromBytes(s)), s) << s.toHex().constData();

    std::mt19937 random(7);
    for (int i = 0; i < 2000; ++i) {
        QByteArray s(int(random() % 40), '\0');
        for (char& c : s) c = char(random() % 255 + 1);
        ASSERT_EQ(Paths::toBytes(Paths::fromBytes(s)), s) << s.toHex().constData();
    }
    EXPECT_FALSE(Paths::hasRawBytes(Paths::fromBytes("caf\xc3\xa9 \xf0\x9f\x98\x80")));
    EXPECT_TRUE(Paths::hasRawBytes(Paths::fromBytes("caf\xe9")));
    EXPECT_EQ(Paths::fromBytes("caf\xc3\xa9"), QString::fromUtf8("café"));
}

TEST(Paths, StandardizeComponentsAndContainment) {
    const QString home = "/Users/a";
    EXPECT_EQ(Paths::standardize("~", home), "/Users/a");
    EXPECT_EQ(Paths::standardize("~/Library//Caches/", home), "/Users/a/Library/Caches");
    EXPECT_EQ(Paths::standardize("/a/./b/../c", home), "/a/c");
    EXPECT_EQ(Paths::standardize("/../..", home), "/");
    EXPECT_EQ(Paths::standardize("//", home), "/");
    EXPECT_EQ(Paths::standardize("~other/x", home), "~other/x");
    EXPECT_EQ(Paths::standardize("rel/../../x", home), "../x");
    EXPECT_EQ(Paths::standardize("./", home), ".");

    EXPECT_EQ(Paths::lastComponent("/a/b c"), "b c");
    EXPECT_EQ(Paths::parentOf("/a/b"), "/a");
    EXPECT_EQ(Paths::parentOf("/a"), "/");
    EXPECT_TRUE(Paths::isWithin("/a/b", "/a"));
    EXPECT_TRUE(Paths::isWithin("/a", "/a"));
    EXPECT_FALSE(Paths::isWithin("/ab", "/a"));
    EXPECT_TRUE(Paths::isWithin("/x", "/"));
}

}  // namespace
