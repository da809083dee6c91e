#include "ui/pages/login_items_page.h"

#include <QHeaderView>
#include <QLabel>
#include <QTimer>
#include <QTreeWidget>
#include <QVBoxLayout>

#include "model/model.h"
#include "ui/theme/theme.h"

namespace {

QString kindText(LoginItem::Kind kind) {
    switch (kind) {
    case LoginItem::Kind::app: return QObject::tr("App");
    case LoginItem::Kind::agent: return QObject::tr("Agent");
    case LoginItem::Kind::daemon: return QObject::tr("Daemon");
    case LoginItem::Kind::loginItem: return QObject::tr("Login item");
    }
    return {};
}

// What a person should know first: a program that is gone, then whether it runs at all.
QString stateText(const LoginItem& item) {
    QStringList words;
    if (item.missing) words << QObject::tr("Program missing");
    words << (item.enabled ? QObject::tr("On") : QObject::tr("Off"));
    if (item.appStillThere) words << QObject::tr("its app is installed");
    return words.join(QStringLiteral(" · "));
}

}  // namespace

LoginItemsPage::LoginItemsPage(Model& model, QWidget* parent)
    : QWidget(parent), model_(model), state_(new QLabel(this)), list_(new QTreeWidget(this)), fold_(new QTimer(this)) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(Theme::margin, Theme::margin, Theme::margin, Theme::margin);
    layout->setSpacing(Theme::line);
    auto* heading = new QLabel(tr("Login items"), this);
    heading->setFont(Theme::titleFont());
    layout->addWidget(heading);
    auto* line = new QLabel(tr("What starts when you log in or the computer starts: apps, agents for your session and "
                               "daemons for the whole system."),
                            this);
    line->setForegroundRole(QPalette::PlaceholderText);
    line->setWordWrap(true);
    layout->addWidget(line);
    layout->addSpacing(Theme::line);
    list_->setColumnCount(6);
    list_->setHeaderLabels({tr("Name"), tr("Kind"), tr("Runs for"), tr("Made by"), tr("Signed by"), tr("State")});
    list_->header()->setStretchLastSection(false);
    list_->header()->setSectionResizeMode(0, QHeaderView::Stretch);
    list_->setColumnWidth(1, 90);
    list_->setColumnWidth(2, 130);
    list_->setColumnWidth(3, 160);
    list_->setColumnWidth(4, 220);
    list_->setColumnWidth(5, 210);
    list_->setRootIsDecorated(false);
    list_->setAlternatingRowColors(true);
    list_->setFrameShape(QFrame::NoFrame);
    list_->setAccessibleName(tr("Login items"));
    layout->addWidget(list_, 1);
    state_->setForegroundRole(QPalette::PlaceholderText);
    state_->setAlignment(Qt::AlignCenter);
    layout->addWidget(state_, 1);

    fold_->setSingleShot(true);
    fold_->setInterval(0);
    connect(fold_, &QTimer::timeout, this, &LoginItemsPage::refresh);
    for (auto changed : {&Model::loginItemsChanged, &Model::loginItemsLoadingChanged, &Model::loginItemsLoadedChanged})
        connect(&model_, changed, fold_, qOverload<>(&QTimer::start));
    refresh();
}

void LoginItemsPage::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    if (!model_.loginItemsLoaded()) model_.loadLoginItems();
}

void LoginItemsPage::refresh() {
    list_->clear();
    for (const LoginItem& item : model_.loginItems()) {
        const QString maker = item.developer.isEmpty() ? item.signer : item.developer;
        auto* row = new QTreeWidgetItem(list_, {item.name, kindText(item.kind), item.scope(), maker, item.signer, stateText(item)});
        row->setToolTip(0, item.identifier.isEmpty() ? item.path : item.identifier + QLatin1Char('\n') + item.path);
        row->setToolTip(4, item.signer);
        if (item.missing) row->setForeground(5, Theme::paint(Paint::peach));
    }
    const bool none = model_.loginItems().isEmpty();
    list_->setVisible(!none);
    state_->setVisible(none);
    state_->setText(model_.loginItemsLoading() ? tr("Looking for login items…")
                    : model_.loginItemsLoaded() ? tr("Nothing starts with your session or the system.")
                                                : QString());
}
