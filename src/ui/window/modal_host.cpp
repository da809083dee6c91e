#include "ui/window/modal_host.h"

#include "model/model.h"
#include "ui/dialogs/ask_dialog.h"
#include "ui/dialogs/confirm_sheet.h"
#include "ui/dialogs/welcome_sheet.h"

namespace {

// Closes a dialog the model no longer asks for, without answering it.
template <class Dialog>
void retire(QPointer<Dialog>& dialog) {
    if (!dialog) return;
    dialog->disconnect();
    dialog->hide();
    dialog->deleteLater();
    dialog = nullptr;
}

template <class Dialog>
void opened(Dialog* dialog, Model& model) {
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    QObject::connect(dialog, &QDialog::finished, &model, &Model::bumpKeys);
    dialog->open();
}

// Shows the dialog of the model's pending confirmation or question: the one already open when it is
// the same, a new one in place of another.
template <class Dialog, class Pending>
void follow(QPointer<Dialog>& shown, const std::optional<Pending>& pending, Model& model, QWidget* window) {
    if (pending && shown && shown->property("id").toUuid() == pending->id) return;
    retire(shown);
    if (!pending) return;
    shown = new Dialog(model, *pending, window);
    shown->setProperty("id", pending->id);
    opened(shown.data(), model);
}

}  // namespace

ModalHost::ModalHost(Model& model, QWidget* window) : QObject(window), model_(model), window_(window) {
    connect(&model_, &Model::confirmChanged, this, &ModalHost::followConfirm);
    connect(&model_, &Model::askChanged, this, &ModalHost::followAsk);
    connect(&model_, &Model::showWelcomeChanged, this, &ModalHost::followWelcome);
}

ConfirmSheet* ModalHost::confirmSheet() const { return confirm_; }
AskDialog* ModalHost::askDialog() const { return ask_; }
WelcomeSheet* ModalHost::welcomeSheet() const { return welcome_; }

void ModalHost::followWelcome() {
    if (!model_.showWelcome()) {
        retire(welcome_);
        return;
    }
    if (welcome_) return;
    welcome_ = new WelcomeSheet(model_, window_);
    opened(welcome_.data(), model_);
}

void ModalHost::followConfirm() { follow(confirm_, model_.confirm(), model_, window_); }

void ModalHost::followAsk() { follow(ask_, model_.ask(), model_, window_); }
