#include "ui/widgets/find_field.h"

#include <QAbstractItemView>
#include <QKeyEvent>

#include "model/model.h"

FindField::FindField(Model& model, QAbstractItemView* list, const QString& what, QWidget* parent)
    : QLineEdit(parent), list_(list) {
    setPlaceholderText(tr("Find %1 (Ctrl+F)").arg(what));
    setAccessibleName(tr("Find %1").arg(what));
    setClearButtonEnabled(true);
    connect(&model, &Model::findTokenChanged, this, [this] {
        if (!isVisible()) return;
        setFocus();
        selectAll();
    });
    connect(&model, &Model::keysTokenChanged, this, [this] {
        if (list_->isVisible()) list_->setFocus();
    });
}

void FindField::keyPressEvent(QKeyEvent* event) {
    const int key = event->key();
    if (key == Qt::Key_Escape) clear();
    if (key == Qt::Key_Escape || key == Qt::Key_Down || key == Qt::Key_Return || key == Qt::Key_Enter) {
        list_->setFocus();
        return;
    }
    QLineEdit::keyPressEvent(event);
}
