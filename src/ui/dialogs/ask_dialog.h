#pragma once
// A question of the model: its title, its message, the confirming button named by its action
// (Return) and Cancel (Escape).

#include <QDialog>

#include "model/dialogs.h"

class Model;
class QPushButton;

class AskDialog : public QDialog {
    Q_OBJECT
public:
    AskDialog(Model& model, const Ask& ask, QWidget* parent);
    QPushButton* confirmButton() const { return confirm_; }

private:
    QPushButton* confirm_;
};
