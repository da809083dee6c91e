#pragma once
// The disk as one rounded bar: the strata in their paints, largest first, then the free space.

#include <QList>
#include <QWidget>

#include "core/records.h"

class DiskBar : public QWidget {
    Q_OBJECT
public:
    explicit DiskBar(QWidget* parent = nullptr);
    void setParts(const QList<DiskPart>& strata, qint64 total);
    QSize sizeHint() const override { return {600, 22}; }

protected:
    void paintEvent(QPaintEvent*) override;

private:
    QList<DiskPart> strata_;
    qint64 total_ = 0;
};
