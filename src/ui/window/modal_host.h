#pragma once
// Opens the model's pending confirmation and question over the window, one of each at most: a
// new one replaces the old, and one the model clears closes; and the welcome sheet while the
// model asks for it. Page keys are re-armed after.

#include <QObject>
#include <QPointer>

class AskDialog;
class ConfirmSheet;
class WelcomeSheet;
class Model;
class QWidget;

class ModalHost : public QObject {
    Q_OBJECT
public:
    ModalHost(Model& model, QWidget* window);
    ConfirmSheet* confirmSheet() const;
    AskDialog* askDialog() const;
    WelcomeSheet* welcomeSheet() const;

private:
    void followConfirm();
    void followAsk();
    void followWelcome();

    Model& model_;
    QWidget* window_;
    QPointer<ConfirmSheet> confirm_;
    QPointer<AskDialog> ask_;
    QPointer<WelcomeSheet> welcome_;
};
