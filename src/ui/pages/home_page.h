#pragma once
// Home: the disk and what fills it, the scan (live while it runs) and what can be cleared now.

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
    QStringList earlyRows() const;
    QPushButton* scanButton() const { return scan_; }
    QPushButton* cleanButton() const { return clean_; }

protected:
    void showEvent(QShowEvent* event) override;

private:
    void refreshLegend();
    void refreshScan();
    void refreshLive();
    void refreshClear();

    Model& model_;
    QLabel* heading_;
    QLabel* figures_;
    DiskBar* bar_;
    QGridLayout* legend_;
    QLabel* scanTitle_;
    QLabel* scanLine_;
    QPushButton* scan_;
    QGridLayout* early_;
    QLabel* clearFigure_;
    QLabel* clearLine_;
    QPushButton* clean_;
    QTimer* live_;
    QTimer* fold_;
};
