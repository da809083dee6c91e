#pragma once
// Apps: the installed apps in the chosen order with what they left in the home, the leftovers of
// apps that are gone, and the focused one's detail with Uninstall… or Remove leftovers…. Loaded the
// first time the page is shown.

#include <QWidget>

class AppDetail;
class AppListModel;
class Model;
class QComboBox;
class QLabel;
class QLineEdit;
class QListView;
class QProgressBar;
class QTimer;

class AppsPage : public QWidget {
    Q_OBJECT
public:
    explicit AppsPage(Model& model, QWidget* parent = nullptr);
    void refresh();

    QListView* view() const { return view_; }
    AppListModel* rows() const { return rows_; }
    AppDetail* detail() const { return detail_; }
    QComboBox* sortBox() const { return sort_; }
    QLineEdit* find() const { return find_; }
    QLabel* state() const { return state_; }

protected:
    void showEvent(QShowEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    // The list's current row follows the model's focus; a new focus or order brings it into view.
    void followFocus();
    // Shows only the apps whose name or maker holds the find field's words.
    void applyFind();

    Model& model_;
    AppListModel* rows_;
    QListView* view_;
    AppDetail* detail_;
    QComboBox* sort_;
    QLineEdit* find_;
    QLabel* sortLabel_;
    QWidget* content_;
    QWidget* waiting_;
    QProgressBar* spinner_;
    QLabel* state_;
    QTimer* fold_;
    QString focusShown_;  // the focus the list last showed, and in which order
    int orderShown_ = -1;
};
