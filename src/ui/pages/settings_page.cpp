#include "ui/pages/settings_page.h"

#include <QCheckBox>
#include <QComboBox>
#include <QCoreApplication>
#include <QLabel>
#include <QPushButton>
#include <QSystemTrayIcon>
#include <QTimer>
#include <QVBoxLayout>

#include "core/fmt.h"
#include "model/model.h"
#include "platform/build_info.h"
#include "platform/updates.h"
#include "ui/theme/theme.h"
#include "ui/widgets/card.h"
#include "ui/widgets/page_body.h"

namespace {

const int keepChoices[] = {1, 3, 7, 14, 30, 90, 0};  // 0: until the user empties the Trash

// A card of the page with its heading; returns where its lines go.
QVBoxLayout* card(QVBoxLayout* page, QWidget* parent, const QString& heading) {
    auto* c = new Card(parent);
    auto* box = new QVBoxLayout(c);
    box->setSpacing(Theme::line);
    auto* label = new QLabel(heading, c);
    label->setFont(Theme::figureFont());
    box->addWidget(label);
    box->addSpacing(Theme::line);
    page->addWidget(c);
    return box;
}

QLabel* muted(const QString& text, QWidget* parent) {
    auto* label = new QLabel(text, parent);
    label->setForegroundRole(QPalette::PlaceholderText);
    label->setWordWrap(true);
    return label;
}

// A setting: its name over a line saying what it does, the control at the right. Returns that line.
QLabel* setting(QVBoxLayout* box, QWidget* parent, const QString& name, const QString& note, QWidget* control) {
    auto* row = new QHBoxLayout;
    row->setSpacing(Theme::gap);
    auto* words = new QVBoxLayout;
    words->setSpacing(2);
    words->addWidget(new QLabel(name, parent));
    auto* line = muted(note, parent);
    line->setFont(Theme::smallFont());
    words->addWidget(line);
    row->addLayout(words, 1);
    row->addWidget(control, 0, Qt::AlignVCenter);
    box->addLayout(row);
    box->addSpacing(Theme::line);
    return line;
}

void clear(QVBoxLayout* box) {
    while (QLayoutItem* item = box->takeAt(0)) {
        if (QLayout* inner = item->layout()) {
            while (QLayoutItem* i = inner->takeAt(0)) {
                delete i->widget();
                delete i;
            }
        }
        delete item->widget();
        delete item;
    }
}

// A line with a name and the button that undoes it.
void addLine(QVBoxLayout* box, QWidget* parent, const QString& text, const QString& button, std::function<void()> undo) {
    auto* row = new QHBoxLayout;
    auto* label = new QLabel(text, parent);
    label->setObjectName(QStringLiteral("setAside"));
    row->addWidget(label, 1);
    auto* b = new QPushButton(button, parent);
    QObject::connect(b, &QPushButton::clicked, parent, std::move(undo));
    row->addWidget(b);
    box->addLayout(row);
}

}  // namespace

SettingsPage::SettingsPage(Model& model, QWidget* parent)
    : QWidget(parent), model_(model), keepDays_(new QComboBox), appearance_(new QComboBox), tray_(new QCheckBox),
      hidden_(new QVBoxLayout), never_(new QVBoxLayout), fold_(new QTimer(this)) {
    const auto [body, layout] = PageBody::scrolling(this, tr("Settings"), Theme::gap);

    for (int days : keepChoices)
        keepDays_->addItem(days > 0 ? Fmt::count(days, QStringLiteral("day")) : tr("Until I empty it"), days);
    keepDays_->setAccessibleName(tr("Keep moved items in the Trash"));
    appearance_->addItem(tr("Follow the system"), int(Appearance::system));
    appearance_->addItem(tr("Night"), int(Appearance::night));
    appearance_->addItem(tr("Paper"), int(Appearance::paper));
    appearance_->setAccessibleName(tr("Appearance"));
    for (QComboBox* box : {keepDays_, appearance_}) box->setMinimumWidth(220);
    tray_->setAccessibleName(tr("Show Quarle in the tray"));
    const bool tray = QSystemTrayIcon::isSystemTrayAvailable();
    tray_->setEnabled(tray);

    QVBoxLayout* general = card(layout, body, tr("General"));
    setting(general, body, tr("Keep moved items in the Trash"),
            tr("Then Quarle empties them for good. Until then History can put them back."), keepDays_);
    setting(general, body, tr("Appearance"), tr("Night and paper, or whichever the desktop uses."), appearance_);
    setting(general, body, tr("Show Quarle in the tray"),
            tray ? tr("Free space and a scan at hand; closing the window keeps Quarle running.")
                 : tr("This desktop has no tray, so there is nowhere to show it."),
            tray_);

    QVBoxLayout* hiddenBox = card(layout, body, tr("Hidden rows"));
    hiddenBox->addWidget(muted(tr("Rows you chose never to see on Clean or Developer."), body));
    hiddenBox->addLayout(hidden_);
    QVBoxLayout* neverBox = card(layout, body, tr("Never cleared"));
    neverBox->addWidget(muted(tr("Items Quarle leaves alone, whatever is ticked."), body));
    neverBox->addLayout(never_);

    auto* welcome = new QPushButton(tr("Show Welcome"), body);
    connect(welcome, &QPushButton::clicked, &model_, &Model::openWelcome);
    // dpkg and apt are asked on a thread of their own; the line says so until they answer.
    QLabel* updates = setting(card(layout, body, tr("Version")), body,
                              Updates::versionLine(BuildInfo::version(), BuildInfo::revision()),
                              Updates::sentence(std::nullopt), welcome);
    updates->setObjectName(QStringLiteral("updates"));
    Updates::askInBackground(QCoreApplication::applicationFilePath(), updates,
                             [updates](const Updates::Channel& c) { updates->setText(Updates::sentence(c)); });
    layout->addStretch();

    connect(keepDays_, &QComboBox::activated, this, [this] { model_.setKeepDays(keepDays_->currentData().toInt(), false); });
    connect(appearance_, &QComboBox::activated, this,
            [this] { model_.setAppearance(Appearance(appearance_->currentData().toInt())); });
    connect(tray_, &QCheckBox::toggled, this, [this](bool on) {
        if (on != model_.showMenuBar()) model_.setShowMenuBar(on);
    });
    fold_->setSingleShot(true);
    fold_->setInterval(0);
    connect(fold_, &QTimer::timeout, this, &SettingsPage::refresh);
    // A question about the keep period that was cancelled changes nothing, so the choice is read
    // again whenever a question comes or goes.
    for (auto signal : {&Model::keepDaysChanged, &Model::askChanged, &Model::appearanceChanged,
                        &Model::showMenuBarChanged, &Model::hiddenRowsChanged, &Model::picksChanged})
        connect(&model_, signal, fold_, qOverload<>(&QTimer::start));
    refresh();
}

void SettingsPage::refresh() {
    const int days = model_.keepDays() < 1 ? 0 : model_.keepDays();
    int at = keepDays_->findData(days);
    if (at < 0) {
        keepDays_->addItem(Fmt::count(days, QStringLiteral("day")), days);
        at = keepDays_->count() - 1;
    }
    keepDays_->setCurrentIndex(at);
    appearance_->setCurrentIndex(appearance_->findData(int(model_.appearance())));
    tray_->setChecked(model_.showMenuBar());

    clear(hidden_);
    QStringList ids(model_.hiddenRows().begin(), model_.hiddenRows().end());
    ids.sort();
    for (const QString& id : ids)
        addLine(hidden_, this, model_.hiddenTitle(id), tr("Show Again"), [this, id] { model_.showRow(id); });
    if (ids.isEmpty()) hidden_->addWidget(muted(tr("None."), this));
    clear(never_);
    QStringList paths(model_.picks().never.begin(), model_.picks().never.end());
    paths.sort();
    for (const QString& path : paths)
        addLine(never_, this, Fmt::path(path), tr("Allow Clearing Again"), [this, path] { model_.allowClear(path); });
    if (paths.isEmpty()) never_->addWidget(muted(tr("None."), this));
}

QStringList SettingsPage::setAside() const {
    QStringList out;
    for (const QLabel* label : findChildren<QLabel*>(QStringLiteral("setAside"))) out << label->text();
    return out;
}
