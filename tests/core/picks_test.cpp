#include <gtest/gtest.h>

#include "support/printers.h"

#include "core/picks.h"
#include "support/lists.h"

namespace {

const QDateTime now = QDateTime::fromSecsSinceEpoch(1'700'000'000, Qt::UTC);

Part part(const QString& name, std::optional<qint64> ageSeconds, const QString& note = {}) {
    std::optional<QDateTime> modified;
    if (ageSeconds) modified = now.addSecs(-*ageSeconds);
    return Part{name, "/p/" + name, 1, note, modified};
}

QStringList paths(const QList<Part>& parts) { return fieldOf(parts, &Part::path); }

TEST(Picks, WhatStartsUnticked) {
    const QList<Part> parts{part("new", 10), part("edge", Picks::recent - 1), part("old", Picks::recent),
                            part("undated", std::nullopt), part("future", -3600)};
    for (const char* rule : {"derived", "archives"})
        EXPECT_EQ(Picks::keptByDefault(rule, parts, now), QSet<QString>({"/p/new", "/p/edge", "/p/future"}));
    EXPECT_TRUE(Picks::keptByDefault("caches", parts, now).isEmpty());

    // Installers of apps that are not installed; the newest device support per device.
    const QList<Part> installers{part("a.dmg", 1, "downloaded today · Slack is installed"), part("b.pkg", 1, "downloaded today")};
    EXPECT_EQ(Picks::keptByDefault("installers", installers, now), QSet<QString>({"/p/b.pkg"}));
    const QList<Part> devices{part("iPhone14,2 17.1", 300), part("iPhone14,2 17.4", 100), part("iPhone14,2 16.0", 100),
                            part("Watch6,1 10.0", std::nullopt), part("Watch6,1 10.2", std::nullopt),
                            part("iPad8,1 17.0", 5000), part("Loose", std::nullopt)};
    // Equal dates: the first met stays; no dates: the first met stays; a single part is kept.
    EXPECT_EQ(Picks::keptByDefault("devicesupport", devices, now),
              QSet<QString>({"/p/iPhone14,2 17.4", "/p/Watch6,1 10.0", "/p/iPad8,1 17.0", "/p/Loose"}));
}

TEST(Picks, ChosenAppliesNeverOffOnThenTheDefault) {
    const QList<Part> parts{part("a", 1), part("b", Picks::recent * 2), part("c", Picks::recent * 2), part("d", 1)};
    Picks picks;
    EXPECT_TRUE(picks.chosen("derived", parts, false, now).isEmpty());
    EXPECT_EQ(paths(picks.chosen("derived", parts, true, now)), QStringList({"/p/b", "/p/c"}));

    picks.on = {"/p/a", "/p/d"};
    picks.off = {"/p/b", "/p/d"};  // off beats on
    picks.never = {"/p/a"};        // never beats on
    EXPECT_EQ(paths(picks.chosen("derived", parts, true, now)), QStringList({"/p/c"}));
    EXPECT_EQ(paths(picks.chosen("caches", parts, true, now)), QStringList({"/p/c"}));

    picks.reset({parts[1], parts[3]});
    EXPECT_EQ(picks.off, QSet<QString>());
    EXPECT_EQ(picks.on, QSet<QString>({"/p/a"}));
    EXPECT_EQ(picks.never, QSet<QString>({"/p/a"}));
    EXPECT_EQ(paths(picks.chosen("derived", parts, true, now)), QStringList({"/p/b", "/p/c"}));
}

}  // namespace
