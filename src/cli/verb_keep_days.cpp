// quarle keep-days [N] [--yes]: how long Quarle's items wait in the Trash, set through the model's
// question as in Settings.

#include "cli/model_run.h"
#include "cli/options.h"
#include "cli/output.h"
#include "cli/verbs.h"
#include "core/fmt.h"
#include "core/prefs.h"
#include "model/sentences.h"

namespace {

QString keeping(int days) { return QStringLiteral("Quarle keeps its items in the Trash ") + Sentences::keepFor(days) + QLatin1Char('.'); }

}  // namespace

int runKeepDays(const QStringList& args) {
    const auto p = Options::parse(QStringLiteral("keep-days"), args, {{QStringLiteral("--yes")}, {}},
                                  QStringLiteral("keep-days [N] [--yes]"));
    if (!p) return 2;
    const QStringList rest = p->operands;
    const bool yes = p->has("--yes");
    if (rest.isEmpty()) {
        Out::line(keeping(Model::storedKeepDays()));
        return 0;
    }
    bool ok = false;
    const qlonglong asked = rest.size() == 1 ? rest.first().toLongLong(&ok) : -1;
    if (!ok || asked < 0) {
        Out::error(QStringLiteral("keep-days takes a whole number of days, 0 to keep items until you empty them: "
                                  "quarle keep-days [N] [--yes]"));
        return 2;
    }
    const int days = int(std::min<qlonglong>(asked, Prefs::maxKeepDays));
    if (asked > days)
        Out::error(QStringLiteral("Quarle keeps items at most %1 days (a hundred years); using that.").arg(days));
    Model model;
    ModelRun::loadHistory(model);
    const int before = model.keepDays();
    if (days == before) {
        Out::line(keeping(days));
        return 0;
    }
    ModelRun::Reports reports(model);
    model.setKeepDays(days, false);
    if (!ModelRun::answerAsk(model, yes)) {
        Out::line(keeping(before));
        return 1;
    }
    const ActionReport report = reports.wait();
    Out::line(keeping(model.keepDays()));
    if (report.bytes > 0) Out::line(QStringLiteral("Emptied %1 that had been there longer.").arg(Fmt::bytes(report.bytes)));
    if (!report.saved) Out::error(Sentences::settingsNotSaved);
    return report.saved ? 0 : 1;
}
