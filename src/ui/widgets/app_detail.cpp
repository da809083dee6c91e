#include "ui/widgets/app_detail.h"

#include <QDateTime>
#include <QHBoxLayout>
#include <QLabel>
#include <QListView>
#include <QPushButton>
#include <QVBoxLayout>

#include "core/fmt.h"
#include "model/model.h"
#include "ui/theme/theme.h"
#include "ui/widgets/leftover_delegate.h"
#include "ui/widgets/leftover_model.h"

namespace {

template <class T>
std::optional<T> focused(const QList<T>& list, const std::optional<QString>& id) {
    if (id)
        for (const T& item : list)
            if (item.id() == *id) return item;
    return std::nullopt;
}

qint64 tickedBytes(const QList<Leftover>& leftovers, const QSet<QString>& ticks) {
    qint64 sum = 0;
    for (const Leftover& l : leftovers)
        if (ticks.contains(l.path)) sum += l.bytes;
    return sum;
}

}  // namespace

AppDetail::AppDetail(Model& model, QWidget* parent)
    : QWidget(parent), model_(model), name_(new QLabel(this)), about_(new QLabel(this)), sizes_(new QLabel(this)),
      heading_(new QLabel(this)), rows_(new LeftoverModel(model, this)), view_(new QListView(this)),
      none_(new QLabel(this)), ticked_(new QLabel(this)), remove_(new QPushButton(this)) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(Theme::gap, 0, 0, 0);
    layout->setSpacing(Theme::line);
    name_->setFont(Theme::figureFont());
    name_->setTextInteractionFlags(Qt::TextSelectableByMouse);
    for (QLabel* dim : {about_, sizes_, none_}) {
        dim->setForegroundRole(QPalette::PlaceholderText);
        dim->setWordWrap(true);
    }
    about_->setTextInteractionFlags(Qt::TextSelectableByMouse);
    QFont bold = font();
    bold.setWeight(QFont::DemiBold);
    heading_->setFont(bold);
    layout->addWidget(name_);
    layout->addWidget(about_);
    layout->addWidget(sizes_);
    layout->addSpacing(Theme::gap);
    layout->addWidget(heading_);
    view_->setModel(rows_);
    view_->setItemDelegate(new LeftoverDelegate(view_));
    view_->setFrameShape(QFrame::NoFrame);
    view_->setAccessibleName(tr("Leftovers"));
    view_->setUniformItemSizes(true);
    layout->addWidget(view_, 1);
    none_->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    layout->addWidget(none_, 1);
    auto* footer = new QHBoxLayout;
    ticked_->setFont(Theme::figureFont());
    footer->addWidget(ticked_, 1);
    remove_->setDefault(true);
    footer->addWidget(remove_);
    layout->addSpacing(Theme::line);
    layout->addLayout(footer);

    connect(remove_, &QPushButton::clicked, this, [this] {
        if (const auto app = focused(model_.apps(), model_.appFocus())) model_.askUninstall(*app);
        else if (const auto orphan = focused(model_.orphans(), model_.orphanFocus())) model_.askRemoveOrphan(*orphan);
    });
    refresh();
}

void AppDetail::refresh() {
    rows_->refresh();
    const auto app = focused(model_.apps(), model_.appFocus());
    const auto orphan = app ? std::nullopt : focused(model_.orphans(), model_.orphanFocus());
    const QList<Leftover> leftovers = app ? app->leftovers : orphan ? orphan->leftovers : QList<Leftover>();
    const qint64 ticked = tickedBytes(leftovers, model_.leftoverTicks());
    if (app) {
        name_->setText(app->name);
        QStringList about;
        if (!app->developer.isEmpty()) about << app->developer;
        about << Fmt::path(app->path);
        if (app->lastUsed) about << tr("Last used %1").arg(Fmt::ago(app->lastUsed, QDateTime::currentDateTimeUtc()));
        about_->setText(about.join(QStringLiteral("  ·  ")));
        sizes_->setText(app->leftovers.isEmpty() ? tr("The app takes %1.").arg(Fmt::bytes(app->appBytes))
                                                 : tr("The app takes %1; what it left in your home, %2.")
                                                       .arg(Fmt::bytes(app->appBytes), Fmt::bytes(app->leftoverBytes())));
        heading_->setText(tr("What it left behind"));
        none_->setText(tr("Nothing of it was found in your home."));
        ticked_->setText(tr("%1 to the Trash").arg(Fmt::bytes(app->appBytes + ticked)));
        remove_->setText(tr("Uninstall…"));
        remove_->setAccessibleName(tr("Uninstall %1").arg(app->name));
    } else if (orphan) {
        name_->setText(orphan->name);
        about_->setText(orphan->bundleID.isEmpty() ? tr("No longer installed")
                                                   : orphan->bundleID + QStringLiteral("  ·  ") + tr("no longer installed"));
        sizes_->setText(tr("Its leftovers take %1.").arg(Fmt::bytes(orphan->bytes())));
        heading_->setText(tr("What it left behind"));
        none_->clear();
        ticked_->setText(ticked > 0 ? tr("%1 to the Trash").arg(Fmt::bytes(ticked)) : tr("Nothing ticked"));
        remove_->setText(tr("Remove leftovers…"));
        remove_->setAccessibleName(tr("Remove the leftovers of %1").arg(orphan->name));
    }
    const bool any = app || orphan;
    for (QWidget* w : std::initializer_list<QWidget*>{name_, about_, sizes_, heading_, ticked_, remove_}) w->setVisible(any);
    view_->setVisible(any && !leftovers.isEmpty());
    none_->setVisible(!any || leftovers.isEmpty());
    if (!any) none_->setText(tr("Choose an app to see what it left behind."));
    remove_->setEnabled(app.has_value() || ticked > 0);
}
