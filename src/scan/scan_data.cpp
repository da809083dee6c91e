#include "scan/scan_data.h"

#include <algorithm>

#include "core/checked.h"
#include "core/paths.h"
#include "scan/extras.h"
#include "scan/scanner.h"

namespace {

bool isExtra(const QString& id) { return Scanner::extraIDs().contains(id); }

// Moves `delta` bytes in or out of the stand-in for ~/.Trash, wherever the scan measured it.
void chargeTrash(ScanData& data, qint64 delta) {
    const QString files = Scanner::trashFiles();
    if (Paths::isWithin(files, data.home.path)) {
        if (data.home.find(files))
            data.home.adjust(files, delta, false);
        else if (delta > 0)
            data.home.adjust(files, delta, true, true);
        return;
    }
    data.outside[files] = std::max<qint64>(Checked::add(data.outside.value(files, 0), delta), 0);
}

// The folders outside the home that hold `path` grow or shrink with it.
void chargeOutside(ScanData& data, const QString& path, qint64 delta) {
    for (auto it = data.outside.begin(); it != data.outside.end(); ++it)
        if (it.key().startsWith(QLatin1Char('/')) && Paths::isWithin(path, it.key()))
            it.value() = std::max<qint64>(Checked::add(it.value(), delta), 0);
}

void dropFromExtras(QList<Finding>& extras, const QString& id, const QString& path) {
    for (qsizetype i = 0; i < extras.size(); ++i) {
        Finding& f = extras[i];
        if (f.id != id) continue;
        for (qsizetype k = 0; k < f.parts.size(); ++k) {
            if (f.parts[k].path != path) continue;
            f.bytes = std::max<qint64>(Checked::sub(f.bytes, f.parts[k].bytes), 0);
            f.parts.removeAt(k);
            f.paths.removeAll(path);
            break;
        }
        if (f.parts.isEmpty()) extras.removeAt(i);  // a scan makes no row without items
        return;
    }
}

void returnToExtras(QList<Finding>& extras, const Finding& finding, const Part& part) {
    for (Finding& f : extras) {
        if (f.id != finding.id) continue;
        const auto at = std::find_if(f.parts.begin(), f.parts.end(), [&](const Part& p) { return p.bytes < part.bytes; });
        f.parts.insert(at, part);
        f.paths.append(part.path);
        f.bytes = Checked::add(f.bytes, part.bytes);
        return;
    }
    Finding back = finding;
    back.parts = {part};
    back.paths = {part.path};
    back.bytes = part.bytes;
    // Back in the place a scan would have made it.
    const qsizetype rank = Scanner::extraIDs().indexOf(finding.id);
    const auto at = std::find_if(extras.begin(), extras.end(),
                                 [&](const Finding& f) { return Scanner::extraIDs().indexOf(f.id) > rank; });
    extras.insert(at, back);
}

// The tree that holds `path`: the outside cache folder's when it does, else the home's.
SpaceNode& treeOf(ScanData& data, const QString& path) {
    return !data.cache.path.isEmpty() && data.cache.contains(path) ? data.cache : data.home;
}

}  // namespace

const SpaceNode* ScanData::node(const QString& path) const {
    if (const SpaceNode* n = home.find(path)) return n;
    return cache.path.isEmpty() ? nullptr : cache.find(path);
}

void ScanData::removed(const Finding& finding, const Part& part, const std::optional<QString>& trashed) {
    Parked p{finding, part, {}, trashed};
    qint64 bytes = part.bytes;
    SpaceNode& tree = treeOf(*this, part.path);
    if (const SpaceNode* node = tree.find(part.path); node && node != &tree) {
        p.node = *node;
        bytes = node->bytes;
    }
    tree.prune(part.path, bytes);
    chargeOutside(*this, part.path, -bytes);
    if (isExtra(finding.id)) dropFromExtras(extras, finding.id, part.path);
    if (trashed) {
        quarleTrash = Checked::add(quarleTrash, bytes);
        if (Paths::isWithin(*trashed, Scanner::trashFiles())) chargeTrash(*this, bytes);
    }
    parked.insert(part.path, std::move(p));
}

bool ScanData::restored(const QString& path) {
    const auto it = parked.constFind(path);
    if (it == parked.cend()) return false;
    const Parked p = *it;
    parked.erase(it);
    const bool hadNode = !p.node.path.isEmpty();
    const qint64 bytes = hadNode ? p.node.bytes : p.part.bytes;
    SpaceNode& tree = treeOf(*this, path);
    if (hadNode) {
        const QString parent = Paths::parentOf(path);
        tree.adjust(parent, bytes, true, true);
        if (SpaceNode* at = tree.find(parent)) {
            at->kids.append(p.node);
            SpaceNode::sortBySize(at->kids);
        }
    } else {
        tree.adjust(path, bytes, false);
    }
    chargeOutside(*this, path, bytes);
    if (isExtra(p.finding.id)) returnToExtras(extras, p.finding, p.part);
    if (p.trashed) {
        quarleTrash = std::max<qint64>(Checked::sub(quarleTrash, bytes), 0);
        if (Paths::isWithin(*p.trashed, Scanner::trashFiles())) chargeTrash(*this, -bytes);
    }
    return true;
}

void ScanData::emptied(qint64 bytes) {
    quarleTrash = std::max<qint64>(Checked::sub(quarleTrash, bytes), 0);
    chargeTrash(*this, -bytes);
}

qint64 ScanResult::total(Bucket bucket) const {
    qint64 sum = 0;
    for (const Finding& f : findings)
        if (f.bucket == bucket) sum = Checked::add(sum, f.bytes);
    return sum;
}
