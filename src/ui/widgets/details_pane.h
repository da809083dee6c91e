#pragma once
// Beside Storage's columns: the selected item's name, size, kind and dates, what of it is ticked in
// Clean, and "Show in file manager". It shows what it is given; the dates come from the model.

#include <optional>

#include "ui/widgets/card.h"

struct SpaceDetails;
struct SpaceNode;
class QGridLayout;
class QLabel;
class QPushButton;

class DetailsPane : public Card {
    Q_OBJECT
public:
    explicit DetailsPane(QWidget* parent = nullptr);
    // `details` only when it describes `node`; `clearable` is what is ticked in Clean inside it.
    void describe(const SpaceNode* node, const std::optional<SpaceDetails>& details, qint64 clearable, int items);
    // The label and value lines, for tests and accessibility tools.
    QStringList lines() const;
    QPushButton* revealButton() const { return reveal_; }

signals:
    void reveal(const QString& path);

private:
    void addLine(const QString& label, const QString& value);

    QLabel* name_;
    QLabel* size_;
    QGridLayout* grid_;
    QPushButton* reveal_;
    QString path_;
    int lines_ = 0;
};
