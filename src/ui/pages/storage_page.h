#pragma once
// Storage: the home folder in columns beside a map of the selected folder, back and forward, the
// selected item's details with "Show in file manager", and Move to Trash… on the selection. The
// "storageMode" preference shows the columns, the map or both.

#include <QWidget>

#include "model/page.h"

class ColumnBrowser;
class DetailsPane;
class Model;
class QAbstractButton;
class QLabel;
class QPushButton;
class QTimer;
class QToolButton;
class SpaceMap;
struct SpaceNode;

class StoragePage : public QWidget {
    Q_OBJECT
public:
    explicit StoragePage(Model& model, QWidget* parent = nullptr);
    void refresh();

    ColumnBrowser* browser() const { return browser_; }
    SpaceMap* map() const { return map_; }
    DetailsPane* details() const { return details_; }
    QToolButton* backButton() const { return back_; }
    QToolButton* forwardButton() const { return forward_; }
    QPushButton* trashButton() const { return trash_; }
    QAbstractButton* modeButton(StorageMode mode) const;
    QString hoverLine() const;

protected:
    void showEvent(QShowEvent* event) override;

private:
    // The folder the map shows: the selected one, or the one that holds the selected file.
    const SpaceNode* mapFolder() const;
    void applyMode();
    void refreshDetails();

    Model& model_;
    QLabel* where_;
    QToolButton* back_;
    QToolButton* forward_;
    QList<QToolButton*> modes_;
    QPushButton* trash_;
    QWidget* body_;
    QLabel* empty_;
    ColumnBrowser* browser_;
    QWidget* side_;
    SpaceMap* map_;
    DetailsPane* details_;
    QTimer* fold_;
    QString asked_;  // the path whose details were last asked for
};
