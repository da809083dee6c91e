// The Storage page: columns of the home tree, back and forward, folders listed on demand, how much
// of each folder is ticked for clearing, and moving one item to the Trash.

#include <QFileInfo>
#include <QMimeDatabase>
#include <algorithm>

#include "core/checked.h"
#include "core/home.h"
#include "core/paths.h"
#include "model/model.h"
#include "model/targets.h"
#include "removal/safety.h"

namespace {

constexpr qsizetype backSteps = 100;

std::optional<QDateTime> known(const QDateTime& at) { return at.isValid() ? std::optional(at.toUTC()) : std::nullopt; }

QString kindOf(const QMimeType& type, bool isDir) {
    if (isDir) return QObject::tr("Folder");
    if (!type.isValid() || type.isDefault() || type.comment().isEmpty()) return QObject::tr("Document");
    QString kind = type.comment();  // "plain text document": shown on its own, so it starts as a sentence
    kind[0] = kind[0].toUpper();
    return kind;
}

}  // namespace

void Model::recordStep() {
    QList<SpaceStep> back = spaceBack_;
    back.append({columns_, spaceSelection_});
    if (back.size() > backSteps) back.removeFirst();
    assignSpaceBack(std::move(back));
    assignSpaceForward({});
}

void Model::open(const SpaceNode& given, int inColumn, bool record) {
    const SpaceNode node = given;  // often one of the columns about to be replaced
    if (record) recordStep();
    assignSpaceSelection(node);
    QList<SpaceNode> shown = columns_.mid(0, std::max(inColumn + 1, 0));
    if (node.isDir && !node.kids.isEmpty()) shown.append(node);
    assignColumns(std::move(shown));
    if (node.isDir && node.kids.isEmpty()) listLazily(node, inColumn);
}

void Model::listInBackground(const QString& path, std::function<void(QList<SpaceNode>, bool stale)> land) {
    const ModelServices s = services_;
    const std::shared_ptr<ScanCancel> closing = closing_;
    const qint64 epoch = diskEpoch_;
    inBackground<QList<SpaceNode>>(
        Priority::userInitiated, Job::listing,
        [s, closing, path] { return s.listFolder(path, [closing] { return closing->stopped(); }); },
        [this, epoch, land = std::move(land)](QList<SpaceNode> kids) { land(std::move(kids), epoch != diskEpoch_); });
}

void Model::listLazily(const SpaceNode& node, int inColumn) {
    if (demo_) return;  // the demonstration's folders are not on this disk: an empty one stays empty
    ++listings_;
    assignColumnLoading(true);
    const QString path = node.path;
    listInBackground(path, [this, path, inColumn](QList<SpaceNode> kids, bool stale) {
        --listings_;
        assignColumnLoading(listings_ > 0);
        if (!spaceSelection_ || spaceSelection_->path != path) return;  // the user moved on
        if (stale) {  // Quarle changed the disk while it was listed
            listLazily(*spaceSelection_, inColumn);
            return;
        }
        storeListing(path, kids);
        const SpaceNode* fresh = scan_ ? scan_->home.find(path) : nullptr;
        if (!fresh) return;
        assignSpaceSelection(*fresh);
        QList<SpaceNode> shown = columns_.mid(0, inColumn + 1);
        shown.append(*fresh);
        assignColumns(std::move(shown));
    });
}

void Model::storeListing(const QString& path, const QList<SpaceNode>& kids) {
    lazyKids_.insert(path, kids);
    if (!scan_ || !scan_->home.find(path)) return;
    ScanResult shown = *scan_;
    shown.home.setKids(path, kids, true);
    assignScan(std::move(shown));
}

void Model::refreshLazyColumns() {
    if (demo_) return;  // the demonstration's folders are not on this disk
    for (const SpaceNode& column : columns_) {
        if (!lazyKids_.contains(column.path)) continue;
        const QString path = column.path;
        listInBackground(path, [this, path](QList<SpaceNode> kids, bool stale) {
            // Gone from the tree, or listed before a later change: a newer listing follows.
            if (!lazyKids_.contains(path) || stale) return;
            storeListing(path, kids);
            rebuildColumns();
        });
    }
}

SpaceStep Model::rebuilt(const QList<SpaceNode>& columns, const std::optional<SpaceNode>& selection) const {
    SpaceStep step;
    if (!scan_) return step;
    for (const SpaceNode& column : columns) {
        const SpaceNode* node = scan_->home.find(column.path);
        if (!node) break;  // a folder that no longer exists ends the columns there
        step.columns.append(*node);
    }
    if (step.columns.isEmpty()) step.columns.append(scan_->home);
    if (selection)
        if (const SpaceNode* node = scan_->home.find(selection->path)) step.selection = *node;
    return step;
}

void Model::installStep(const SpaceStep& step) {
    assignColumns(step.columns);
    assignSpaceSelection(step.selection);
}

void Model::rebuildColumns() { installStep(rebuilt(columns_, spaceSelection_)); }

void Model::spaceGoBack() { travel(true); }

void Model::spaceGoForward() { travel(false); }

void Model::travel(bool back) {
    QList<SpaceStep> from = back ? spaceBack_ : spaceForward_;
    if (from.isEmpty()) return;
    QList<SpaceStep> to = back ? spaceForward_ : spaceBack_;
    const SpaceStep step = from.takeLast();
    to.append({columns_, spaceSelection_});
    assignSpaceBack(back ? std::move(from) : std::move(to));
    assignSpaceForward(back ? std::move(to) : std::move(from));
    installStep(rebuilt(step.columns, step.selection));
    refreshLazyColumns();
}

int Model::selectionColumn() const {
    if (!spaceSelection_) return -1;
    for (qsizetype c = 0; c < columns_.size(); ++c)
        for (const SpaceNode& kid : columns_[c].kids)
            if (kid.path == spaceSelection_->path) return int(c);
    return -1;
}

void Model::spaceStep(int delta) {
    const int c = selectionColumn();
    if (c < 0) {
        // Nothing selected yet: the first item of the last column.
        if (!columns_.isEmpty() && !columns_.last().kids.isEmpty())
            open(columns_.last().kids.first(), int(columns_.size() - 1), true);
        return;
    }
    const QList<SpaceNode>& items = columns_[c].kids;
    qsizetype at = 0;
    while (items[at].path != spaceSelection_->path) ++at;
    const qsizetype to = std::clamp<qsizetype>(at + delta, 0, items.size() - 1);
    if (to != at) open(items[to], c, true);  // at either end the selection stays put
}

void Model::spaceIn() {
    const int c = selectionColumn();
    if (c < 0 || c + 1 >= columns_.size()) return;
    const SpaceNode& folder = columns_[c + 1];
    if (folder.path == spaceSelection_->path && !folder.kids.isEmpty()) open(folder.kids.first(), c + 1, true);
}

void Model::spaceOut() {
    const int c = selectionColumn();
    if (c > 0) open(columns_[c], c - 1, true);
}

void Model::spaceGoUp() { spaceOut(); }

bool Model::canGoUp() const { return selectionColumn() > 0; }

void Model::spaceReveal(const QString& path) {
    if (!scan_) return;
    QList<const SpaceNode*> chain;  // the nodes from below the home down to `path`
    for (const SpaceNode* at = &scan_->home; at->path != path;) {
        const auto next = std::find_if(at->kids.begin(), at->kids.end(),
                                       [&](const SpaceNode& kid) { return Paths::isWithin(path, kid.path); });
        if (next == at->kids.end()) break;
        chain.append(&*next);
        at = &*next;
    }
    if (chain.isEmpty()) return;
    recordStep();
    QList<SpaceNode> shown{scan_->home};
    for (qsizetype k = 0; k + 1 < chain.size(); ++k) shown.append(*chain[k]);
    const SpaceNode last = *chain.last();
    assignColumns(std::move(shown));
    open(last, int(chain.size() - 1), false);
}

void Model::askTrash(const SpaceNode& node) { askTrash(node.path, node.name, node.bytes); }

void Model::askTrash(const QString& path, const QString& name, qint64 bytes) {
    // The demonstration's paths are invented: its confirmation ends in its own toast, never on disk.
    const Safety::Verdict verdict = demo_ ? Safety::Verdict{} : Safety::check(path, Home::path());
    if (!verdict.ok()) {
        assignToast(verdict.refusal->description());
        return;
    }
    assignConfirm(Confirm{QUuid::createUuid(), name, {}, {path}, bytes, {}});
}

void Model::trashCurrent() {
    switch (page_) {
        case Page::clean: askClean(false); break;
        case Page::developer: askClean(true); break;
        case Page::space:
            if (spaceSelection_) askTrash(*spaceSelection_);
            break;
        case Page::apps:
            for (const InstalledApp& app : apps_)
                if (app.id() == appFocus_) return askUninstall(app);
            for (const Orphan& orphan : orphans_)
                if (orphan.id() == orphanFocus_) return askRemoveOrphan(orphan);
            break;
        default: break;
    }
}

void Model::recomputeClearable() {
    Clearable in;
    if (scan_) {
        const QString& home = scan_->home.path;
        for (const Finding& f : clearing(false)) {
            for (const Targets::Target& t : Targets::of(f, &scan_->home)) {
                if (!Paths::isWithin(t.part.path, home)) continue;
                // The item itself and every folder above it, up to and including the home folder.
                for (QString at = t.part.path;; at = Paths::parentOf(at)) {
                    in[at] = Checked::add(in.value(at, 0), t.part.bytes);
                    if (at == home || at == QLatin1String("/")) break;
                }
            }
        }
    }
    assignClearableIn(std::move(in));
}

void Model::readDetails(const SpaceNode& node) {
    // The file types' database is read from the disk on first use: even the demonstration asks
    // it in the background, by name only, since its items are not on this disk.
    inBackground<SpaceDetails>(
        Priority::userInitiated, Job::details,
        [node, demo = demo_] {
            if (demo) {
                const QList<QMimeType> types = QMimeDatabase().mimeTypesForFileName(node.name);
                return SpaceDetails{node.path, kindOf(types.value(0), node.isDir), {}, node.modified, {}};
            }
            const QFileInfo info(node.path);
            // Only a plain file is opened to tell its type: a pipe or a device could block, a link leads away.
            const bool plain = info.isFile() && !info.isSymLink();
            const QMimeType type = node.isDir ? QMimeType()
                                   : plain    ? QMimeDatabase().mimeTypeForFile(info)
                                              : QMimeDatabase().mimeTypeForFile(info, QMimeDatabase::MatchExtension);
            return SpaceDetails{node.path, kindOf(type, node.isDir || info.isDir()), known(info.birthTime()),
                                known(info.lastModified()), known(info.lastRead())};
        },
        [this](SpaceDetails details) {
            if (spaceSelection_ && spaceSelection_->path == details.path) assignSpaceDetails(std::move(details));
        });
}
