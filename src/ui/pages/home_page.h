#pragma once
// Home: the disk and what fills it, what can be cleared now (the largest rows, or the rows as the
// running scan finds them), the last scan with what it found by bucket, and Full Disk Access.

#include <QWidget>

class DiskBar;
class Model;
class QGridLayout;
class QLabel;
class QPushButton;
class QTimer;

class HomePage : public QWidget {
    Q_OBJECT
public:
    explicit HomePage(Model& model, QWidget* parent = nullptr);
    void refresh();

    // What the page shows, for tests and accessibility tools.
    QString figures() const;
    QString scanLine() const;
    QStringList legend() const;
    // The titles of the rows listed under what can be cleared (the early rows while scanning).
    QStringList rows() const;
    QString accessLine() const;
    QPushButton* scanButton() const { return scan_; }
    QPushButton* cleanButton() const { return clean_; }

protected:
    void changeEvent(QEvent* event) override;
    void showEvent(QShowEvent* event) override;

private:
    void refreshLegend();
    void refreshScan();
    void refreshLive();
    void refreshClear();
    void refreshFound();

    Model& model_;
    QLabel* heading_;
    QLabel* figures_;
    QLabel* access_;
    DiskBar* bar_;
    QGridLayout* legend_;
    QLabel* scanTitle_;
    QLabel* scanLine_;
    QGridLayout* found_;
    QLabel* trashFigure_;
    QLabel* trash_;
    QPushButton* history_;
    QPushButton* scan_;
    QLabel* clearFigure_;
    QLabel* clearLine_;
    QGridLayout* rows_;
    QLabel* more_;
    QPushButton* clean_;
    QTimer* live_;
    QTimer* fold_;
};
