#pragma once
// Storage's columns side by side: each the children of the folder chosen in the column before it,
// as the model's `columns` hold them. Clicks and keys go to the model's browsing operations; the
// page calls refresh() when the model's columns, selection or clearable figures change.

#include <QScrollArea>

class ColumnModel;
class Model;
class QLabel;
class QListView;
class QHBoxLayout;
class Spinner;

class ColumnBrowser : public QScrollArea {
    Q_OBJECT
public:
    explicit ColumnBrowser(Model& model, QWidget* parent = nullptr);
    void refresh();

    int columnCount() const { return int(views_.size()); }
    QListView* column(int i) const { return views_.value(i); }
    ColumnModel* rows(int i) const;
    // The list that holds the selection (the last one without a selection), to give it the keys.
    QListView* currentColumn() const;
    bool listingShown() const;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    QListView* addColumn();
    void clicked(int column, const QModelIndex& index);
    void showNewest();

    Model& model_;
    QWidget* strip_;
    QHBoxLayout* layout_;
    QWidget* listing_;  // "Listing…" with a spinner, after the last column
    Spinner* spinner_;
    QList<QListView*> views_;
    int shownColumns_ = 0;
};
