#pragma once
// The Apps page's detail pane: the focused app (or gone app) with its maker, sizes and the leftovers
// with their ticks, badges and reasons, and the button that removes it: Uninstall… or Remove
// leftovers…. It reads the model's focus and ticks and calls the model; it holds nothing of its own.

#include <QWidget>

class LeftoverModel;
class Model;
class QLabel;
class QListView;
class QPushButton;

class AppDetail : public QWidget {
    Q_OBJECT
public:
    explicit AppDetail(Model& model, QWidget* parent = nullptr);
    void refresh();

    QListView* leftovers() const { return view_; }
    LeftoverModel* rows() const { return rows_; }
    QPushButton* removeButton() const { return remove_; }
    QLabel* tickedLine() const { return ticked_; }

private:
    Model& model_;
    QLabel* name_;
    QLabel* about_;
    QLabel* sizes_;
    QLabel* heading_;
    LeftoverModel* rows_;
    QListView* view_;
    QLabel* none_;
    QLabel* ticked_;
    QPushButton* remove_;
};
