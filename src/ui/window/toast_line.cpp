#include "ui/window/toast_line.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QTimer>
#include <QToolButton>

#include "model/model.h"
#include "ui/theme/theme.h"

ToastLine::ToastLine(Model& model, QWidget* parent)
    : QFrame(parent), model_(model), label_(new QLabel(this)), timer_(new QTimer(this)) {
    setObjectName(QStringLiteral("toast"));
    setAutoFillBackground(true);
    setBackgroundRole(QPalette::ToolTipBase);
    setFrameShape(QFrame::StyledPanel);
    setAccessibleName(tr("Message"));
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(Theme::gap, Theme::line + 2, Theme::line, Theme::line + 2);
    label_->setTextInteractionFlags(Qt::TextSelectableByMouse);
    auto* close = new QToolButton(this);
    close->setText(QStringLiteral("✕"));
    close->setAutoRaise(true);
    close->setAccessibleName(tr("Dismiss"));
    layout->addWidget(label_, 1);
    layout->addWidget(close);
    connect(close, &QToolButton::clicked, &model_, &Model::dismissToast);

    timer_->setSingleShot(true);
    timer_->setInterval(showFor);
    connect(timer_, &QTimer::timeout, this, [this] {
        // "Working…" and the emptying line stay as long as the work they announce.
        if (model_.jobs() > 0) timer_->start();
        else model_.dismissToast();
    });
    // Every assignment re-arms the wait, an equal text too.
    connect(&model_, &Model::toastChanged, this, &ToastLine::refresh);
    parent->installEventFilter(this);
    refresh();
}

QString ToastLine::text() const { return isHidden() ? QString() : label_->text(); }

void ToastLine::refresh() {
    const std::optional<QString>& toast = model_.toast();
    if (!toast) {
        timer_->stop();
        hide();
        return;
    }
    label_->setText(*toast);
    timer_->start();
    show();
    raise();
    place();
}

void ToastLine::say(const QString& text) {
    timer_->stop();
    label_->setText(text);
    show();
    raise();
    place();
}

void ToastLine::place() {
    const QWidget* p = parentWidget();
    const int w = std::min(p->width() - 2 * Theme::margin, std::max(360, sizeHint().width()));
    const int h = sizeHint().height();
    setGeometry((p->width() - w) / 2, p->height() - h - Theme::gap, w, h);
}

bool ToastLine::eventFilter(QObject* watched, QEvent* event) {
    if (watched == parentWidget() && event->type() == QEvent::Resize) place();
    return QFrame::eventFilter(watched, event);
}
