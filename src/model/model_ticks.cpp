// Which rows and parts are ticked: the defaults after every result, the clicks on rows and parts,
// "Select suggested", hidden rows and parts that are never cleared.

#include <algorithm>

#include "core/fmt.h"
#include "core/prefs.h"
#include "model/model.h"
#include "model/sentences.h"
#include "scan/catalogue.h"

namespace {

QStringList sorted(const QSet<QString>& set) {
    QStringList list(set.begin(), set.end());
    std::sort(list.begin(), list.end());
    return list;
}

}  // namespace

QList<Part> Model::inside(const Finding& finding) const {
    if (!finding.parts.isEmpty()) return finding.parts;
    const std::optional<Catalogue::Rule> rule = Catalogue::rule(finding.id);
    if (!rule || !rule->listParts || !scan_) return {};
    if (const auto it = insideCache_.constFind(finding.id); it != insideCache_.cend()) return *it;
    QList<Part> parts;
    const QDateTime when = now();
    for (const QString& path : finding.paths) {
        const SpaceNode* node = scan_->home.find(path);
        if (!node) continue;
        for (const SpaceNode& kid : node->kids)
            parts.append({kid.name, kid.path, kid.bytes, kid.modified ? Fmt::ago(kid.modified, when) : QString(),
                          kid.modified});
    }
    insideCache_.insert(finding.id, parts);
    return parts;
}

QList<Part> Model::chosen(const Finding& finding) const {
    return picks_.chosen(finding.id, inside(finding), ticked_.contains(finding.id), now());
}

bool Model::isChosen(const Finding& finding, const Part& part) const {
    const QList<Part> parts = chosen(finding);
    return std::any_of(parts.begin(), parts.end(), [&](const Part& p) { return p.path == part.path; });
}

TickState Model::tickState(const Finding& finding) const {
    if (!ticked_.contains(finding.id)) return TickState::off;
    if (!finding.removal.isTrash()) return TickState::all;  // commands and listed-only rows are whole
    const QList<Part> parts = inside(finding);
    if (parts.isEmpty()) return TickState::all;
    const qsizetype n = chosen(finding).size();
    if (n == 0) return TickState::off;
    return n == parts.size() ? TickState::all : TickState::some;
}

void Model::changeTicked(QSet<QString> ticked) {
    assignTicked(std::move(ticked));
    recomputeClearable();
}

void Model::changePicks(Picks picks) {
    const bool neverChanged = picks.never != picks_.never;
    assignPicks(std::move(picks));
    if (neverChanged) savePref(QStringLiteral("neverClear"), sorted(picks_.never));
    recomputeClearable();
}

void Model::tick(const Finding& finding) {
    unticked_.remove(finding.id);
    QSet<QString> t = ticked_;
    t.insert(finding.id);
    changeTicked(std::move(t));
}

void Model::untick(const Finding& finding) {
    unticked_.insert(finding.id);
    QSet<QString> t = ticked_;
    t.remove(finding.id);
    changeTicked(std::move(t));
}

void Model::resetParts(const Finding& finding) {
    Picks p = picks_;
    p.reset(inside(finding));
    changePicks(std::move(p));
}

void Model::applyDefaultTicks() {
    if (!scan_) return;
    QSet<QString> present, suggestedIDs;
    for (const Finding& f : scan_->findings) {
        present.insert(f.id);
        if (f.bucket == Bucket::now && !f.removal.isNone()) suggestedIDs.insert(f.id);
    }
    // What the user ticked stays ticked; what the user unticked in this run stays unticked.
    assignTicked((ticked_ & present) | (suggestedIDs - unticked_));
    if (focus_ && !present.contains(*focus_))
        assignFocus(scan_->findings.isEmpty() ? std::nullopt : std::optional(scan_->findings.first().id));
}

void Model::toggle(const Finding& finding) {
    if (finding.removal.isNone()) return;
    if (tickState(finding) != TickState::off) {
        untick(finding);
        return;
    }
    tick(finding);
    resetParts(finding);
    // Ticking a row always chooses something, even when every part is kept by default.
    const QList<Part> parts = inside(finding);
    if (finding.removal.isTrash() && !parts.isEmpty() && chosen(finding).isEmpty()) {
        Picks p = picks_;
        for (const Part& part : parts)
            if (!p.never.contains(part.path)) p.on.insert(part.path);
        changePicks(std::move(p));
    }
}

void Model::togglePart(const Finding& finding, const Part& part) {
    if (!finding.removal.isTrash() || inside(finding).size() < 2) return;
    Picks p = picks_;
    if (tickState(finding) != TickState::off) {
        if (!isChosen(finding, part)) {
            p.on.insert(part.path);
            p.off.remove(part.path);
            changePicks(std::move(p));
            return;
        }
        p.off.insert(part.path);
        p.on.remove(part.path);
        changePicks(std::move(p));
        if (chosen(finding).isEmpty()) {  // the last chosen part went: the row goes with it
            untick(finding);
            resetParts(finding);
        }
        return;
    }
    tick(finding);
    resetParts(finding);
    p = picks_;
    for (const Part& other : inside(finding)) {
        if (other.path == part.path) continue;
        p.off.insert(other.path);
        p.on.remove(other.path);
    }
    p.on.insert(part.path);
    p.off.remove(part.path);
    changePicks(std::move(p));
}

void Model::pickAll(const Finding& finding, bool on) {
    resetParts(finding);
    if (!on) {
        untick(finding);
        return;
    }
    tick(finding);
    Picks p = picks_;
    for (const Part& part : inside(finding))
        if (!p.never.contains(part.path)) p.on.insert(part.path);
    changePicks(std::move(p));
}

QList<Finding> Model::suggested(bool developerOnly) const {
    QList<Finding> out;
    if (!scan_) return out;
    for (const Finding& f : scan_->findings)
        if (f.bucket == Bucket::now && !f.removal.isNone() && (!developerOnly || f.developer)) out.append(f);
    return out;
}

void Model::selectSuggested(bool developerOnly) {
    const QList<Finding> rows = suggested(developerOnly);
    for (const Finding& f : rows)
        if (tickState(f) == TickState::off) toggle(f);
    for (const Finding& f : rows)
        if (f.removal.isTrash() && !inside(f).isEmpty()) resetParts(f);
}

QString Model::hiddenTitle(const QString& id) const {
    if (derived_)
        for (const Finding& f : derived_->findings)
            if (f.id == id) return f.title;
    return id;
}

void Model::hideRow(const Finding& given) {
    const Finding finding = given;  // the shown row goes away with the next result
    QSet<QString> hidden = hiddenRows_;
    hidden.insert(finding.id);
    savePref(QStringLiteral("hiddenRows"), sorted(hidden));
    assignHiddenRows(std::move(hidden));
    QSet<QString> t = ticked_;
    t.remove(finding.id);
    changeTicked(std::move(t));
    if (focus_ == finding.id) assignFocus(std::nullopt);
    rederive();
    assignToast(Sentences::rowHidden(finding.title));
}

void Model::showRow(const QString& id) {
    QSet<QString> hidden = hiddenRows_;
    hidden.remove(id);
    savePref(QStringLiteral("hiddenRows"), sorted(hidden));
    assignHiddenRows(std::move(hidden));
    rederive();
}

void Model::neverClear(const Part& part) {
    Picks p = picks_;
    p.never.insert(part.path);
    changePicks(std::move(p));
    assignToast(Sentences::neverCleared(part.name));
}

void Model::allowClear(const QString& path) {
    Picks p = picks_;
    p.never.remove(path);
    changePicks(std::move(p));
}

void Model::setFocus(const std::optional<QString>& id) { assignFocus(id); }
