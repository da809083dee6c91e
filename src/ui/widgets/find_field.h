#pragma once
// The find field of a list page. Ctrl+F focuses it while its page is shown; Escape clears it, and
// Escape, Down or Return hand the keys to the list it filters, as the end of a sheet does.

#include <QLineEdit>

class Model;
class QAbstractItemView;

class FindField : public QLineEdit {
public:
    // `what` names a row of the list: "a row", "an app".
    FindField(Model& model, QAbstractItemView* list, const QString& what, QWidget* parent);

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    QAbstractItemView* list_;
};
