// quarle report [--json]: scans the home folder (or shows the demonstration machine) and prints
// the disk bar, the findings by bucket, System Data and what the scan counted.

#include <QDateTime>
#include <QLocale>
#include <algorithm>
#include <condition_variable>
#include <mutex>
#include <thread>

#include "cli/options.h"
#include "cli/output.h"
#include "cli/verbs.h"
#include "core/checked.h"
#include "core/fmt.h"
#include "core/paths.h"
#include "core/home.h"
#include "demo/demo.h"
#include "scan/scan_json.h"
#include "scan/scanner.h"

namespace {

constexpr int barWidth = 60;
const QString barMarks = QStringLiteral("#=%@*+~:o");  // one per slice, in the bar's order
constexpr QChar freeMark = QLatin1Char('.');

// Early rows handed from the walking threads to the thread that prints.
class Mailbox {
public:
    void post(qint64 seq, const QList<EarlyRow>& rows) {
        std::lock_guard guard(lock_);
        if (seq <= seq_) return;  // an older list arrived late
        seq_ = seq;
        rows_ = rows;
    }
    void finish() {
        std::lock_guard guard(lock_);
        finished_ = true;
        wake_.notify_all();
    }
    // Waits up to `ms` for the scan to end; the latest rows, and whether it ended.
    std::pair<QList<EarlyRow>, bool> wait(int ms) {
        std::unique_lock guard(lock_);
        wake_.wait_for(guard, std::chrono::milliseconds(ms), [&] { return finished_; });
        return {rows_, finished_};
    }

private:
    std::mutex lock_;
    std::condition_variable wake_;
    qint64 seq_ = 0;
    QList<EarlyRow> rows_;
    bool finished_ = false;
};

QString padded(const QString& text, qsizetype width) { return text.leftJustified(width); }

// The scan with a live line of files and bytes, redrawn four times a second, and each rule's size
// printed above it once its folders are all measured.
ScanData scanWithProgress() {
    WalkProgress progress;
    Mailbox mailbox;
    ScanData data;
    std::thread worker([&] {
        data = Scanner::scan(progress, {}, [&](qint64 seq, const QList<EarlyRow>& rows) { mailbox.post(seq, rows); });
        mailbox.finish();
    });
    QSet<QString> shown;
    for (bool finished = false; !finished;) {
        QList<EarlyRow> rows;
        std::tie(rows, finished) = mailbox.wait(250);
        QByteArray out = "\r\033[K";
        for (const EarlyRow& row : rows) {
            if (!row.done || shown.contains(row.id)) continue;
            shown.insert(row.id);
            out += Paths::toBytes(QStringLiteral("  %1  %2\n").arg(padded(row.title, 32), Fmt::bytes(row.bytes)));
        }
        if (!finished)
            out += Paths::toBytes(QStringLiteral("Scanning %1 … %2, %3")
                                      .arg(Fmt::path(Home::path()), Fmt::count(progress.files(), QStringLiteral("file")),
                                           Fmt::bytes(progress.bytes())));
        Out::raw(out);
        std::fflush(stdout);
    }
    worker.join();
    if (!shown.isEmpty()) Out::line();  // the early rows stay above the report
    return data;
}

void printBar(const ScanResult& r) {
    const Volume& v = r.volume;
    Out::line(QStringLiteral("Disk %1: %2 used of %3, %4 free")
                  .arg(v.name, Fmt::bytes(v.used()), Fmt::bytes(v.total), Fmt::bytes(v.free)));
    if (v.total <= 0) return;
    QString bar;
    for (qsizetype i = 0; i < r.strata.size(); ++i) {
        const double share = double(r.strata[i].bytes) / double(v.total) * barWidth;
        bar += QString(std::max<qsizetype>(1, qsizetype(share + 0.5)), barMarks.at(i % barMarks.size()));
    }
    bar = bar.left(barWidth);
    Out::line(QLatin1Char('[') + bar + QString(barWidth - bar.size(), freeMark) + QLatin1Char(']'));
    QList<qint64> sizes;
    for (const DiskPart& s : r.strata) sizes.append(s.bytes);
    const QStringList shown = Fmt::parts(sizes).first;
    for (qsizetype i = 0; i < r.strata.size(); ++i)
        Out::line(QStringLiteral("  %1 %2 %3").arg(barMarks.at(i % barMarks.size())).arg(padded(r.strata[i].name, 20), shown[i].rightJustified(8)));
    Out::line(QStringLiteral("  %1 %2 %3").arg(freeMark).arg(padded(QStringLiteral("Free"), 20), Fmt::bytes(v.free).rightJustified(8)));
}

void printFindings(const ScanResult& r) {
    if (r.findings.isEmpty()) {
        Out::line(QStringLiteral("Nothing to clear was found."));
        return;
    }
    qsizetype width = 0;
    for (const Finding& f : r.findings) width = std::max(width, f.title.size());
    for (Bucket b : {Bucket::now, Bucket::call, Bucket::keep}) {
        QList<const Finding*> rows;
        QList<qint64> sizes;
        for (const Finding& f : r.findings)
            if (f.bucket == b) {
                rows.append(&f);
                sizes.append(f.bytes);
            }
        if (rows.isEmpty()) continue;
        const auto [shown, total] = Fmt::parts(sizes);
        Out::line();
        Out::line(QStringLiteral("%1: %2").arg(title(b), total));
        for (qsizetype i = 0; i < rows.size(); ++i) {
            const Finding& f = *rows[i];
            QString line = QStringLiteral("  %1  %2  %3").arg(padded(f.title, width), shown[i].rightJustified(8), f.place);
            if (f.partial) line += QStringLiteral(" (some of it could not be read)");
            Out::line(line);
            Out::line(QString(width + 14, QLatin1Char(' ')) + f.comesBack);
        }
    }
}

void printSystem(const ScanResult& r) {
    qsizetype width = 0;
    QList<qint64> sizes;
    qint64 sum = 0;
    for (const SystemPart& p : r.system) {
        width = std::max(width, p.name.size());
        sizes.append(p.bytes);
        sum = Checked::add(sum, p.bytes);
    }
    const auto [shown, total] = Fmt::parts(sizes);
    Out::line();
    // The rows' rounded sizes add up to the heading whenever the rows make up the whole.
    Out::line(QStringLiteral("System Data: %1").arg(sum == r.systemTotal ? total : Fmt::bytes(r.systemTotal)));
    for (qsizetype i = 0; i < r.system.size(); ++i) {
        const SystemPart& p = r.system[i];
        Out::line(QStringLiteral("  %1  %2  %3%4").arg(padded(p.name, width), shown[i].rightJustified(8), p.action,
                                                      p.estimated ? QStringLiteral(" (an estimate)") : QString()));
    }
}

void printReport(const ScanResult& r) {
    Out::line(QStringLiteral("Quarle report for %1").arg(r.home.path));
    Out::line();
    printBar(r);
    printFindings(r);
    printSystem(r);
    Out::line();
    if (!r.snapshots.isEmpty())
        Out::line(QStringLiteral("Local Time Machine snapshots: %1.").arg(r.snapshots.join(QStringLiteral(", "))));
    if (r.fullDiskAccess == false)
        Out::line(QStringLiteral("The Trash could not be read, so its row shows only what Quarle moved there."));
    Out::line(QStringLiteral("Scanned %1 in %2 seconds.")
                  .arg(Fmt::count(r.files, QStringLiteral("file")), QLocale().toString(r.seconds, 'f', 1)));
}

}  // namespace

int runReport(const QStringList& args) {
    const std::optional<bool> wantsJson = Options::json(QStringLiteral("report"), args);
    if (!wantsJson) return 2;
    const bool json = *wantsJson;
    ScanData data;
    Volume volume;
    if (Demo::isOn()) {
        data = Demo::scanData(QDateTime::currentDateTimeUtc());
        volume = Demo::volume();
    } else {
        // JSON is for programs: no live line around it, even on a terminal.
        WalkProgress progress;
        data = json || !Out::isTerminal() ? Scanner::scan(progress, {}) : scanWithProgress();
        volume = Scanner::volume();
    }
    const ScanResult result = Scanner::derive(data, volume);
    if (json)
        Out::raw(encodeJson(result).toText());
    else
        printReport(result);
    return 0;
}
