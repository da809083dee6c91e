#include "removal_fixture.h"

#include <gtest/gtest.h>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QCryptographicHash>
#include <QRandomGenerator>
#include <cstdio>

#include "core/home.h"
#include "core/paths.h"
#include "removal/trash_info.h"

namespace Fixture {

QByteArray contents(const QString& path) {
    QByteArray out;
    const int fd = ::open(Paths::toBytes(path).constData(), O_RDONLY | O_CLOEXEC);
    if (fd < 0) return out;
    char buf[65536];
    for (ssize_t n; (n = ::read(fd, buf, sizeof buf)) > 0;) out.append(buf, n);
    ::close(fd);
    return out;
}

QStringList namesIn(const QString& folder) {
    QStringList names;
    if (DIR* dir = ::opendir(Paths::toBytes(folder).constData())) {
        while (const dirent* e = ::readdir(dir))
            if (qstrcmp(e->d_name, ".") && qstrcmp(e->d_name, "..")) names.append(Paths::fromBytes(QByteArray(e->d_name)));
        ::closedir(dir);
    }
    names.sort();
    return names;
}

namespace {
void hashInto(QCryptographicHash& hash, const QString& root, const QString& relative) {
    struct stat st;
    const QString path = relative.isEmpty() ? root : root + "/" + relative;
    if (::lstat(Paths::toBytes(path).constData(), &st) != 0) return;
    hash.addData(Paths::toBytes(relative) + '\0' + QByteArray::number(st.st_mode) + '\0');
    if (S_ISREG(st.st_mode)) hash.addData(contents(path));
    if (S_ISDIR(st.st_mode))
        for (const QString& name : namesIn(path)) hashInto(hash, root, relative.isEmpty() ? name : relative + "/" + name);
}
}  // namespace

QByteArray treeHash(const QString& root) {
    QCryptographicHash hash(QCryptographicHash::Sha256);
    hashInto(hash, root, QString());
    return hash.result().toHex();
}

QList<TrashItem> trashItems(const QString& root, const QString& base) {
    QList<TrashItem> items;
    for (const QString& infoName : namesIn(root + "/info")) {
        const auto info = TrashInfo::parse(contents(root + "/info/" + infoName), base);
        const QString trashed = root + "/files/" + infoName.chopped(10);
        struct stat st;
        if (info && ::lstat(Paths::toBytes(trashed).constData(), &st) == 0) items.append({info->original, trashed});
    }
    return items;
}

void expectEachOnce(const QStringList& originals, const QStringList& trashRoots, const QList<HistoryEntry>& history,
                    bool recorded) {
    QList<TrashItem> inTrash;
    for (const QString& root : trashRoots) {
        const QString base = root == Home::trashFolder() ? Home::dataFolder() : Paths::parentOf(root);
        inTrash += trashItems(root, base);
    }
    QSet<QString> inHistory;
    for (const HistoryEntry& e : history)
        for (const HistoryEntry::Moved& m : e.moved) inHistory.insert(m.original + "\n" + m.trashed);
    for (const QString& original : originals) {
        struct stat st;
        int places = ::lstat(Paths::toBytes(original).constData(), &st) == 0 ? 1 : 0;
        for (const TrashItem& item : inTrash) {
            if (item.original != original) continue;
            ++places;
            if (recorded) {
                EXPECT_TRUE(inHistory.contains(original + "\n" + item.trashed)) << item.trashed.toStdString();
            }
        }
        EXPECT_EQ(places, 1) << original.toStdString();
    }
}

quint32 timingSeed() {
    bool given = false;
    quint32 seed = qEnvironmentVariable("QUARLE_TEST_SEED").toUInt(&given);
    if (!given) seed = QRandomGenerator::global()->generate();
    std::printf("random timings: replay with QUARLE_TEST_SEED=%u\n", seed);
    return seed;
}

}  // namespace Fixture
