#pragma once
// The confirmation before anything moves: the subject and its size, each row with the items
// chosen in it, rows cleared by a command apart, what stays and why; "Move to Trash" (Return),
// "Delete Now" and Cancel (Escape).

#include <QDialog>

#include "model/dialogs.h"

class Model;

class ConfirmSheet : public QDialog {
    Q_OBJECT
public:
    ConfirmSheet(Model& model, const Confirm& confirm, QWidget* parent);
    // The lines listing what moves, in order, for tests and accessibility tools.
    QStringList lines() const { return lines_; }

private:
    QStringList lines_;
};
