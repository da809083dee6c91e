#include "cli/model_run.h"

#include <unistd.h>

#include <cstdio>
#include <iostream>
#include <string>

#include "cli/output.h"
#include "core/fmt.h"
#include "core/home.h"
#include "core/paths.h"
#include "model/wait.h"

namespace ModelRun {

void startAndScan(Model& model, bool quiet) {
    const bool live = !quiet && Out::isTerminal();
    QMetaObject::Connection progress;
    if (live)
        progress = QObject::connect(&model, &Model::scannedBytesChanged, [&model] {
            Out::raw(Paths::toBytes(QStringLiteral("\r\033[KScanning %1 … %2, %3")
                                        .arg(Fmt::path(Home::path()), Fmt::count(model.scannedFiles(), QStringLiteral("file")),
                                             Fmt::bytes(model.scannedBytes()))));
            std::fflush(stdout);
        });
    model.start();
    ModelWait::until([&] { return model.scan().has_value() && !model.scanning(); });
    if (live) {
        QObject::disconnect(progress);
        Out::raw("\r\033[K");
    }
}

void loadHistory(Model& model) {
    if (model.demo())
        model.start();
    else
        model.loadHistory();
}

void loadApps(Model& model) {
    if (model.demo()) {
        model.start();
        return;
    }
    model.loadApps();
    ModelWait::until([&] { return model.appsLoaded() && !model.appsLoading(); });
}

void loadLoginItems(Model& model) {
    if (model.demo()) {
        model.start();
        return;
    }
    bool loaded = false;
    const auto connection = QObject::connect(&model, &Model::loginItemsChanged, [&] { loaded = true; });
    model.loadLoginItems();
    ModelWait::until([&] { return loaded; });
    QObject::disconnect(connection);
}

bool agree(const QString& question, bool yes) {
    if (yes) return true;
    Out::raw(Paths::toBytes(Out::escape(question) + QStringLiteral(" [y/N] ")));
    std::fflush(stdout);
    std::string answer;
    const bool answered = static_cast<bool>(std::getline(std::cin, answer));
    if (!answered || ::isatty(STDIN_FILENO) != 1) Out::line();  // the answer was not typed here
    if (!answered) return false;
    const QString a = QString::fromStdString(answer).trimmed().toLower();
    return a == QLatin1String("y") || a == QLatin1String("yes");
}

bool answerAsk(Model& model, bool yes) {
    if (!model.ask()) return true;
    const Ask ask = *model.ask();
    Out::line(ask.title);
    Out::line(ask.message);
    if (!agree(ask.button + QLatin1Char('?'), yes)) {
        model.dismissAsk();
        return false;
    }
    model.confirmAsk();
    return true;
}

Reports::Reports(Model& model)
    : connection_(QObject::connect(&model, &Model::reported, [this](const ActionReport& r) { report_ = r; })) {}

Reports::~Reports() { QObject::disconnect(connection_); }

ActionReport Reports::wait() {
    ModelWait::until([&] { return report_.has_value(); });
    return *report_;
}

int printReport(const ActionReport& report) {
    for (const Remover::Refused& r : report.refused) Out::error(r.refusal.description());
    for (const QString& failed : report.failed)
        Out::error(QStringLiteral("Couldn't remove %1; it is still where it was.").arg(Fmt::path(failed)));
    if (!report.toast.isEmpty()) Out::line(report.toast);
    for (const QString& path : report.notBack) Out::line(QStringLiteral("    ") + Fmt::path(path));
    return report.ok() ? 0 : 1;
}

}  // namespace ModelRun
