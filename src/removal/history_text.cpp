#include "removal/history_text.h"

#include <QSet>

#include "core/record_json.h"

namespace {

// The writer indents two spaces per level and never puts a raw newline inside a string, so a
// value printed on its own becomes the same value printed `levels` deeper by indenting its lines.
QByteArray nested(const Json& value, int levels) {
    QByteArray text = value.toText();
    text.chop(1);  // the final newline of a whole document
    return text.replace('\n', '\n' + QByteArray(levels * 2, ' '));
}

}  // namespace

const QByteArray& HistoryText::entryText(const HistoryEntry& entry) {
    Cached& cached = cache_[entry.id];
    if (cached.entry == entry && !cached.text.isEmpty()) return cached.text;

    // In the file an entry is at level 1, its "moved" list at level 2 and the items at level 3.
    const qsizetype known = cached.entry.moved.size();
    const bool grown = known <= entry.moved.size() && cached.entry.moved == entry.moved.first(known);
    if (!grown) cached.movedText.clear();
    for (qsizetype i = grown ? known : 0; i < entry.moved.size(); ++i) {
        if (i > 0) cached.movedText += ',';
        cached.movedText += "\n      " + nested(encodeJson(entry.moved[i]), 3);
    }
    HistoryEntry head = entry;
    head.moved.clear();
    QByteArray text = "  " + nested(encodeJson(head), 1);
    if (!entry.moved.isEmpty()) {
        static const QByteArray emptyMoved = "\n    \"moved\" : []";  // strings hold no raw newline: found once
        const qsizetype at = text.indexOf(emptyMoved) + emptyMoved.size() - 1;
        text.replace(at, 1, cached.movedText + "\n    ]");
    }
    cached.entry = entry;
    cached.text = text;
    return cached.text;
}

QByteArray HistoryText::of(const QList<HistoryEntry>& list) {
    if (list.isEmpty()) return Json::array().toText();
    QSet<QUuid> present;
    QByteArray out = "[";
    for (qsizetype i = 0; i < list.size(); ++i) {
        out += (i > 0 ? ",\n" : "\n") + entryText(list[i]);
        present.insert(list[i].id);
    }
    for (auto it = cache_.begin(); it != cache_.end();) it = present.contains(it.key()) ? std::next(it) : cache_.erase(it);
    return out + "\n]\n";
}
