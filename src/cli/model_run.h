#pragma once
// Running the application model from the command line: the verbs start it, wait on its event loop
// for what it says it has done, answer its questions on the terminal and print its toasts, so
// that a verb behaves exactly as the window does.

#include <QString>
#include <functional>
#include <optional>

#include "model/model.h"

namespace ModelRun {

// Starts the model and waits for its first result (the demonstration's at once). On a terminal a
// live line of files and bytes is drawn unless `quiet`.
void startAndScan(Model& model, bool quiet);
// History as the model knows it; the demonstration is started instead, since it holds its own.
void loadHistory(Model& model);
// The apps list, loaded and waited for (the demonstration's at once).
void loadApps(Model& model);
// The login items, the same way.
void loadLoginItems(Model& model);

// Asks `question` with [y/N] on the terminal and reads the answer from standard input; `yes`
// answers it in advance. No answer is a no.
bool agree(const QString& question, bool yes);
// Shows the model's pending question and answers it the same way: confirmed or dismissed.
bool answerAsk(Model& model, bool yes);

// Collects the report of the action started after it was made.
class Reports {
public:
    explicit Reports(Model& model);
    ~Reports();
    bool has() const { return report_.has_value(); }
    // Runs the event loop until the report comes.
    ActionReport wait();

private:
    QMetaObject::Connection connection_;
    std::optional<ActionReport> report_;
};

// The toast on standard output, what was left alone or could not move on standard error; the
// exit status: 0 when everything was done, 1 otherwise.
int printReport(const ActionReport& report);

}  // namespace ModelRun
