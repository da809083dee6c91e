// The findings of a scan: one row per catalogue rule that found something, the scan's own extra
// rows and the Trash, ordered by bucket and then size.

#include <QRegularExpression>
#include <algorithm>

#include "core/checked.h"
#include "core/fmt.h"
#include "core/home.h"
#include "measure/walker.h"
#include "scan/catalogue.h"
#include "scan/rows.h"
#include "scan/scanner.h"
#include "scan/system_data.h"

namespace {

Part partOf(const SpaceNode& node, const QString& name, const QDateTime& now) {
    return {name, node.path, node.bytes, Rows::agoNote(QStringLiteral("changed"), node.modified, now), node.modified};
}

// A rule's row from the nodes of its folders; nothing when none of them is in the tree. A row offers
// either each folder whole or the entries inside it, and its total is what those offers free: a
// folder that stays keeps its own blocks, and entries the rule skips are not counted. Parts of 0
// bytes are not offered.
std::optional<Finding> ruleFinding(const Catalogue::Rule& rule, const ScanData& data, const QDateTime& now) {
    Finding f{rule.id,  rule.title,     {},           0, rule.bucket, rule.explain, rule.comesBack,
              rule.removal, rule.developer, {}, {}, false};
    for (const QString& relative : rule.paths) {
        const SpaceNode* node = data.node(Catalogue::at(relative));
        if (!node) continue;
        f.paths.append(node->path);
        f.partial = f.partial || node->note == Walker::partlyLocked;
        if (!rule.listParts) {
            if (node->bytes > 0) f.parts.append(partOf(*node, Fmt::path(node->path), now));
            continue;
        }
        for (const SpaceNode& kid : node->kids)
            if (!rule.skips(kid.name) && kid.bytes > 0) f.parts.append(partOf(kid, Scanner::prettyPart(rule.id, kid.name), now));
    }
    for (const Part& part : f.parts) f.bytes = Checked::add(f.bytes, part.bytes);
    if (f.paths.isEmpty()) return std::nullopt;
    Rows::sortParts(f.parts);
    f.place = Fmt::path(f.paths.first());
    if (f.paths.size() > 1) f.place += QStringLiteral(" and %1 more").arg(f.paths.size() - 1);
    if (rule.listParts) f.place += QStringLiteral(" · ") + Fmt::count(f.parts.size(), QStringLiteral("folder"));
    return f;
}

// A Linux home's Trash is the desktop's own folder, not ~/.Trash, and no Full Disk Access guards it:
// without access the folder itself could not be read, and the file manager is where it gets emptied.
void speakOfTheDesktopTrash(Finding& bin) {
    const QString folder = Fmt::path(Home::trashFolder());
    if (bin.removal.isNone()) {
        bin.place = folder + QStringLiteral(" · Quarle can't read all of it");
        bin.explain = QStringLiteral(
            "Quarle can only see what it moved there itself, because your Trash folder can't be read. Empty it in "
            "your file manager.");
    } else {
        bin.place = folder;
    }
}

}  // namespace

namespace Scanner {

QString prettyPart(const QString& ruleID, const QString& name) {
    // Xcode names a project's build folder "Name-" and 28 letters of a hash.
    static const QRegularExpression hashSuffix(QStringLiteral("^(.+)-[a-z]{28}$"));
    if (ruleID == QLatin1String("derived")) {
        const QRegularExpressionMatch m = hashSuffix.match(name);
        if (m.hasMatch()) return m.captured(1);
    }
    return name;
}

Finding trash(qint64 measured, qint64 quarleTrash, std::optional<bool> fullDiskAccess) {
    Finding f;
    f.id = QStringLiteral("trash");
    f.bucket = Bucket::call;
    f.comesBack = ComesBack::goneForGood;
    f.developer = false;
    f.paths = {trashFiles()};
    // Only a probe that answered yes counts as access: an unknown answer cannot promise the whole Trash.
    if (fullDiskAccess.value_or(false)) {
        f.title = QStringLiteral("Trash");
        f.place = QStringLiteral("~/.Trash");
        f.bytes = measured;
        f.explain = QStringLiteral(
            "Things you already moved to the Trash. Emptying it can't be undone; Quarle's own items wait there "
            "for their days to run out.");
        f.removal = Removal::command({QStringLiteral("empty-trash")});
    } else {
        f.title = QStringLiteral("Trash (Quarle's items)");
        f.place = QStringLiteral("~/.Trash · Full Disk Access needed to see and empty all of it");
        f.bytes = std::max(measured, quarleTrash);
        f.explain = QStringLiteral(
            "Quarle can only see what it moved there itself. Turn on Full Disk Access to see the whole Trash and "
            "empty it from here; until then, empty it in Finder.");
        f.removal = Removal::none();
    }
    return f;
}

QStringList offeredPaths(const ScanData& data) {
    QStringList paths;
    for (const Catalogue::Rule& rule : Catalogue::rules())
        if (const auto f = ruleFinding(rule, data, data.date))
            for (const Part& p : f->parts) paths.append(p.path);
    for (const Finding& f : data.extras)
        for (const Part& p : f.parts) paths.append(p.path);
    return paths;
}

ScanResult derive(const ScanData& data, const Volume& volume) {
    ScanResult r;
    r.volume = volume;
    r.home = data.home;
    for (const Catalogue::Rule& rule : Catalogue::rules())
        if (auto f = ruleFinding(rule, data, data.date)) r.findings.append(std::move(*f));
    r.findings.append(data.extras);
    for (Finding& f : r.findings)
        for (Part& p : f.parts)
            if (const auto held = data.heldElsewhere.find(p.path); held != data.heldElsewhere.end())
                p.note = Rows::withHeldElsewhere(p.note, *held);
    Finding bin = trash(SystemData::trashMeasured(data), data.quarleTrash, data.fullDiskAccess);
    if (data.linuxSystem) speakOfTheDesktopTrash(bin);
    r.findings.append(std::move(bin));
    // A row that frees nothing is not offered.
    r.findings.removeIf([](const Finding& f) { return f.bytes <= 0; });
    std::stable_sort(r.findings.begin(), r.findings.end(), [](const Finding& a, const Finding& b) {
        if (a.bucket != b.bucket) return a.bucket < b.bucket;
        return a.bytes > b.bytes;
    });
    SystemData::Bar bar = SystemData::diskBar(data, volume);
    r.strata = std::move(bar.strata);
    r.systemTotal = bar.systemTotal;
    r.system = SystemData::breakdown(data, volume, r.findings, r.systemTotal);
    r.snapshots = data.snapshots;
    r.fullDiskAccess = data.fullDiskAccess;
    r.files = data.files;
    r.seconds = data.seconds;
    r.date = data.date;
    return r;
}

}  // namespace Scanner
