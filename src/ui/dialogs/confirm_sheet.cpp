#include "ui/dialogs/confirm_sheet.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QPushButton>
#include <QScrollArea>
#include <QVBoxLayout>

#include "core/fmt.h"
#include "core/picks.h"
#include "model/model.h"
#include "model/sentences.h"
#include "ui/theme/theme.h"

namespace {

constexpr int partsShown = 6;  // items listed under a row; the rest are counted

QLabel* muted(const QString& text, QWidget* parent) {
    auto* label = new QLabel(text, parent);
    label->setForegroundRole(QPalette::PlaceholderText);
    label->setWordWrap(true);
    return label;
}

}  // namespace

ConfirmSheet::ConfirmSheet(Model& model, const Confirm& confirm, QWidget* parent) : QDialog(parent) {
    setWindowTitle(confirm.title);
    setWindowModality(Qt::WindowModal);
    setMinimumWidth(520);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(Theme::margin, Theme::margin, Theme::margin, Theme::gap);
    layout->setSpacing(Theme::line);
    auto* heading = new QLabel(tr("Move %1 to the Trash?").arg(confirm.title), this);
    heading->setFont(Theme::figureFont());
    heading->setWordWrap(true);
    layout->addWidget(heading);
    layout->addWidget(muted(tr("%1 in all. History can put everything back while it is in the Trash.")
                                .arg(Fmt::bytes(confirm.bytes)), this));
    if (confirm.heldElsewhere > 0) layout->addWidget(muted(Sentences::heldElsewhere(confirm.heldElsewhere), this));
    layout->addSpacing(Theme::line);

    auto* body = new QWidget;
    auto* list = new QVBoxLayout(body);
    list->setContentsMargins(0, 0, 0, 0);
    list->setSpacing(2);
    auto addLine = [&](const QString& left, const QString& right, bool dim) {
        auto* row = new QHBoxLayout;
        auto* l = dim ? muted(left, body) : new QLabel(left, body);
        l->setWordWrap(false);
        row->addWidget(l, 1);
        auto* r = dim ? muted(right, body) : new QLabel(right, body);
        r->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
        row->addWidget(r);
        if (dim) row->setContentsMargins(Theme::gap, 0, 0, 0);
        list->addLayout(row);
        lines_ << left + QLatin1Char('\t') + right;
    };
    QStringList kept;
    const QList<Finding> commands = confirm.commands();
    for (const Finding& f : confirm.findings) {
        if (f.removal.isCommand()) continue;
        addLine(f.title, Fmt::bytes(f.bytes), false);
        const QList<Part> parts = f.parts;
        for (int i = 0; i < parts.size() && i < partsShown; ++i) addLine(parts[i].name, Fmt::bytes(parts[i].bytes), true);
        if (parts.size() > partsShown)
            addLine(tr("and %1").arg(Fmt::count(parts.size() - partsShown, QStringLiteral("more item"), QStringLiteral("more items"))), QString(), true);
        if (const auto note = Picks::keptNote(f.id); note && model.inside(f).size() > parts.size()) kept << *note;
    }
    for (const QString& path : confirm.paths) addLine(Fmt::path(path), QString(), false);
    if (!commands.isEmpty()) {
        list->addSpacing(Theme::line);
        list->addWidget(muted(tr("Cleared by running a command, so History cannot put these back:"), body));
        for (const Finding& f : commands) addLine(f.title, Fmt::bytes(f.bytes), false);
    }
    if (!kept.isEmpty()) {
        list->addSpacing(Theme::line);
        list->addWidget(muted(tr("Kept: ") + kept.join(QLatin1Char(' ')), body));
    }
    list->addStretch();
    auto* scroll = new QScrollArea(this);
    scroll->setWidget(body);
    scroll->setWidgetResizable(true);
    scroll->setFrameShape(QFrame::NoFrame);
    scroll->setMinimumHeight(std::min(360, body->sizeHint().height() + 4));
    layout->addWidget(scroll, 1);

    auto* buttons = new QDialogButtonBox(this);
    QPushButton* trash = buttons->addButton(tr("Move to Trash"), QDialogButtonBox::AcceptRole);
    QPushButton* now = buttons->addButton(tr("Delete Now"), QDialogButtonBox::DestructiveRole);
    buttons->addButton(QDialogButtonBox::Cancel);
    trash->setDefault(true);
    now->setToolTip(tr("Deletes at once instead of moving to the Trash: History cannot put it back."));
    layout->addSpacing(Theme::line);
    layout->addWidget(buttons);
    connect(trash, &QPushButton::clicked, this, [this, &model, confirm] {
        accept();
        model.perform(confirm, false);
    });
    connect(now, &QPushButton::clicked, this, [this, &model, confirm] {
        accept();
        model.perform(confirm, true);
    });
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(this, &QDialog::rejected, &model, &Model::dismissConfirm);
}
