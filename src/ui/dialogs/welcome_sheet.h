#pragma once
// The sheet that greets the first start: what Quarle does and what it promises, in a few lines.
// Return and Escape both close it; either way it does not open again by itself.

#include <QDialog>

class Model;

class WelcomeSheet : public QDialog {
    Q_OBJECT
public:
    WelcomeSheet(Model& model, QWidget* parent);
};
