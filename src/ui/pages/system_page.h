#pragma once
// System: what the disk bar's System Data slice holds, row by row, and what to do about each.

#include <QWidget>

class Model;
class QGridLayout;
class QLabel;
class QTimer;
class QVBoxLayout;

class SystemPage : public QWidget {
    Q_OBJECT
public:
    explicit SystemPage(Model& model, QWidget* parent = nullptr);

    // The grid of rows: swatch, name over its line, bar, size, and a way to Clean where it helps.
    QGridLayout* rows() const { return rows_; }

protected:
    void changeEvent(QEvent* event) override;

private:
    void refresh();

    Model& model_;
    QLabel* figure_;
    QLabel* line_;
    QGridLayout* rows_;
    QLabel* snapshots_;
    QTimer* fold_;
};
