#pragma once
// The one-line message over the bottom of the window. It goes away by itself after a few seconds
// (an equal text shown again starts the wait anew), stays while the model still works, and its
// close button dismisses it at once.

#include <QFrame>

class Model;
class QLabel;
class QTimer;

class ToastLine : public QFrame {
    Q_OBJECT
public:
    static constexpr int showFor = 4000;  // milliseconds

    explicit ToastLine(Model& model, QWidget* parent);
    QString text() const;
    QTimer* timer() const { return timer_; }
    // A line of the window's own that stays until the model shows another.
    void say(const QString& text);
    // Keeps the line at the bottom centre of its parent.
    void place();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void refresh();

    Model& model_;
    QLabel* label_;
    QTimer* timer_;
};
