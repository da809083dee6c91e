#pragma once
// Clean, and Developer with only the developer rows: findings by bucket with their ticks and parts,
// the row menu, the ticked total, Select suggested and Move to Trash….

#include <QWidget>

class FindingModel;
class Model;
class QLabel;
class QLineEdit;
class QPushButton;
class QTimer;
class QTreeView;

class CleanPage : public QWidget {
    Q_OBJECT
public:
    CleanPage(Model& model, bool developerOnly, QWidget* parent = nullptr);
    void refresh();

    QTreeView* view() const { return view_; }
    QLineEdit* find() const { return find_; }
    FindingModel* rows() const { return rows_; }
    QPushButton* trashButton() const { return trash_; }
    QPushButton* suggestButton() const { return suggest_; }
    QString totalLine() const;

protected:
    void showEvent(QShowEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void openMenu(const QPoint& at);
    void refreshFooter();
    // Shows only the rows whose name, place or note holds the find field's words.
    void applyFind();

    Model& model_;
    const bool developerOnly_;
    FindingModel* rows_;
    QTreeView* view_;
    QLineEdit* find_;
    QLabel* empty_;
    QLabel* total_;
    QPushButton* suggest_;
    QPushButton* trash_;
    QTimer* fold_;
};
