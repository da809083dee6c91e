#pragma once
// A sunburst of one folder: four rings around its name, each slice a child sized by its bytes and
// placed inside its parent's slice; children under about a degree are folded into one "smaller
// items" slice per parent, which also holds the folder's bytes that no child accounts for. The
// slices are laid out when the folder or the size changes and drawn once into a picture, so a
// repaint is a copy and a hover outline.

#include <QPainterPath>
#include <QPixmap>
#include <QWidget>

#include "core/space_node.h"

class SpaceMap : public QWidget {
    Q_OBJECT
public:
    static constexpr int rings = 4;

    struct Slice {
        QString name;
        QString path;       // for "smaller items", the parent folder's
        qint64 bytes = 0;
        int ring = 0;       // 0 is the innermost
        double start = 0;   // degrees, clockwise from twelve o'clock
        double span = 0;
        bool isDir = false;
        bool folded = false;  // the "smaller items" slice
        int parent = -1;      // index of the slice it lies in; -1 in the first ring
        QColor colour;
        QPainterPath shape;
    };

    explicit SpaceMap(QWidget* parent = nullptr);
    // Shows `folder`; the same folder with the same tree keeps what is drawn.
    void setFolder(const SpaceNode& folder);

    const SpaceNode& folder() const { return folder_; }
    const QList<Slice>& slices() const { return slices_; }
    // The slice under a point of the widget; -1 for none (the middle or outside).
    int sliceAt(const QPointF& at) const;
    // A point in the middle of slice `i`, where a click opens it.
    QPointF pointIn(int i) const;
    // The name and size of the slice under the pointer, or of the folder.
    QString hoverLine() const;
    QSize sizeHint() const override { return {400, 430}; }

signals:
    // A slice was clicked: its path and whether it is a folder ("smaller items" gives its folder).
    void clicked(const QString& path, bool isDir);
    // The middle was clicked: the folder's own.
    void middleClicked(const QString& path);

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void leaveEvent(QEvent* event) override;

private:
    void lay(const SpaceNode& node, int ring, double start, double span, int parent);
    void shape();
    void colour();
    void draw();
    void setHover(int slice);
    QRectF square() const;
    double middleRadius() const;
    double ringWidth() const;

    SpaceNode folder_;
    QList<Slice> slices_;
    QPixmap picture_;
    bool stale_ = true;  // the picture no longer matches the slices, size or palette
    int hover_ = -1;
};
