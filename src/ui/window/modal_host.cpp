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

void ModalHost::followConfirm() {
    const std::optional<Confirm>& confirm = model_.confirm();
    if (confirm && confirm_ && confirm_->property("id").toUuid() == confirm->id) return;
    retire(confirm_);
    if (!confirm) return;
    confirm_ = new ConfirmSheet(model_, *confirm, window_);
    confirm_->setProperty("id", confirm->id);
    opened(confirm_.data(), model_);
}

void ModalHost::followAsk() {
    const std::optional<Ask>& ask = model_.ask();
    if (ask && ask_ && ask_->property("id").toUuid() == ask->id) return;
    retire(ask_);
    if (!ask) return;
    ask_ = new AskDialog(model_, *ask, window_);
    ask_->setProperty("id", ask->id);
    opened(ask_.data(), model_);
}
