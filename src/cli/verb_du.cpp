// quarle du [--tree DEPTH] [--json] PATH…

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QDir>
#include <cerrno>
#include <cstring>

#include "cli/history_lookup.h"
#include "cli/options.h"
#include "cli/option_checks.h"
#include "cli/output.h"
#include "cli/verbs.h"
#include "core/fmt.h"
#include "core/paths.h"
#include "core/record_json.h"
#include "measure/walker.h"

namespace {

// Files smaller than this are summed into their folder in the tree rather than listed.
constexpr qint64 treeMinFile = 1'000'000;

struct DuOptions {
    std::optional<int> treeDepth;
    bool json = false;
    QStringList paths;
};

std::optional<DuOptions> parse(const QStringList& args) {
    const QString usage = QStringLiteral("du [--tree DEPTH] [--json] PATH…");
    const auto p = Options::parse(QStringLiteral("du"), args, {{QStringLiteral("--json")}, {QStringLiteral("--tree")}}, usage);
    if (!p) return std::nullopt;
    DuOptions o;
    o.json = p->has("--json");
    o.paths = p->operands;
    if (const auto tree = p->value("--tree")) {
        bool ok = false;
        const int depth = tree->toInt(&ok);
        if (!ok || depth < 0) {
            Out::error(QStringLiteral("--tree needs a depth: a whole number, 0 or more."));
            return std::nullopt;
        }
        o.treeDepth = depth;
    }
    if (o.paths.isEmpty()) {
        Out::error(QStringLiteral("du needs at least one path: quarle ") + usage);
        return std::nullopt;
    }
    return o;
}

QString summary(const WalkResult& r) {
    QString s = Fmt::bytes(r.bytes) + QStringLiteral(" (") + Fmt::count(r.bytes, QStringLiteral("byte")) +
                QStringLiteral("), ") + Fmt::count(r.files, QStringLiteral("file"));
    if (r.denied > 0)
        s += QStringLiteral(", ") + Fmt::count(r.denied, QStringLiteral("folder")) +
             QStringLiteral(" could not be read");
    return s;
}

void printTree(const SpaceNode& node, int indent) {
    for (const SpaceNode& kid : node.kids) {
        QString line = QString(indent * 2, QLatin1Char(' ')) + Fmt::bytes(kid.bytes).rightJustified(8) +
                       QStringLiteral("  ") + kid.name + (kid.isDir ? QStringLiteral("/") : QString());
        if (!kid.note.isEmpty()) line += QStringLiteral("  (") + kid.note + QLatin1Char(')');
        Out::line(line);
        printTree(kid, indent + 1);
    }
}

// Why a path cannot be measured, or nothing when it can.
std::optional<QString> problem(const QString& given, const QString& path, struct stat& st) {
    if (::lstat(Paths::toBytes(path).constData(), &st) != 0) {
        if (errno == ENOENT || errno == ENOTDIR) return QStringLiteral("%1: no such file or folder.").arg(given);
        return QStringLiteral("%1: can't be looked at (%2).").arg(given, QString::fromLocal8Bit(std::strerror(errno)));
    }
    if (S_ISLNK(st.st_mode))
        return QStringLiteral("%1 is a symbolic link; Quarle doesn't follow links, so it was not measured.").arg(given);
    if (S_ISDIR(st.st_mode)) {
        const int fd = ::open(Paths::toBytes(path).constData(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
        if (fd < 0) return QStringLiteral("%1: the folder can't be read (%2).").arg(given, QString::fromLocal8Bit(std::strerror(errno)));
        ::close(fd);
    } else if (!S_ISREG(st.st_mode)) {
        return QStringLiteral("%1 is neither a file nor a folder, so it was not measured.").arg(given);
    }
    return std::nullopt;
}

}  // namespace

int runDu(const QStringList& args) {
    const std::optional<DuOptions> options = parse(args);
    if (!options) return 2;
    int status = 0;
    Json jsonOut = Json::array();
    for (const QString& given : options->paths) {
        const QString path = HistoryLookup::absolute(given);
        struct stat st;
        if (const auto why = problem(given, path, st)) {
            Out::error(*why);
            status = 1;
            continue;
        }
        SpaceNode node;
        WalkResult total;
        if (S_ISDIR(st.st_mode) && options->treeDepth) {
            WalkProgress counted;
            Walker::TreeOptions t;
            t.depth = *options->treeDepth;
            t.minFile = treeMinFile;
            t.progress = &counted;
            node = Walker::tree(path, t);
            total = {node.bytes, counted.files(), 0, node.modified};
        } else {
            total = Walker::size(path, true);
            node.name = Paths::lastComponent(path);
            node.path = path;
            node.bytes = total.bytes;
            node.isDir = S_ISDIR(st.st_mode);
            node.modified = total.newest;
        }
        if (total.denied > 0) node.note = Walker::partlyLocked;
        if (options->json) {
            jsonOut.append(encodeJson(node));
            continue;
        }
        QString head = given + QStringLiteral(": ") + summary(total);
        if (options->treeDepth && node.note == Walker::partlyLocked)
            head += QStringLiteral(" (some folders could not be read)");
        Out::line(head);
        if (options->treeDepth) printTree(node, 1);
    }
    if (options->json) Out::raw(jsonOut.toText());
    return status;
}

bool duOptionsParse(const QStringList& args) { return parse(args).has_value(); }
