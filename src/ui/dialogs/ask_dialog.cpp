#include "ui/dialogs/ask_dialog.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include "model/model.h"
#include "ui/theme/theme.h"

AskDialog::AskDialog(Model& model, const Ask& ask, QWidget* parent) : QDialog(parent) {
    setWindowTitle(ask.title);
    setWindowModality(Qt::WindowModal);
    setMinimumWidth(440);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(Theme::margin, Theme::margin, Theme::margin, Theme::gap);
    layout->setSpacing(Theme::line * 2);
    auto* title = new QLabel(ask.title, this);
    title->setFont(Theme::figureFont());
    title->setWordWrap(true);
    auto* message = new QLabel(ask.message, this);
    message->setWordWrap(true);
    layout->addWidget(title);
    layout->addWidget(message);
    layout->addSpacing(Theme::line);
    auto* buttons = new QDialogButtonBox(this);
    confirm_ = buttons->addButton(ask.button, QDialogButtonBox::AcceptRole);
    buttons->addButton(QDialogButtonBox::Cancel);
    confirm_->setDefault(true);
    layout->addWidget(buttons);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(this, &QDialog::accepted, &model, &Model::confirmAsk);
    connect(this, &QDialog::rejected, &model, &Model::dismissAsk);
}
