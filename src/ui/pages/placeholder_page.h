#pragma once
// A page that arrives with the next version: its name and one plain line.

#include <QWidget>

class PlaceholderPage : public QWidget {
    Q_OBJECT
public:
    PlaceholderPage(const QString& title, QWidget* parent = nullptr);
};
