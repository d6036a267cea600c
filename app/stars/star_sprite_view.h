#pragma once

#include <optional>

#include <QWidget>

#include "app/stars/erasure_edits.h"
#include "app/stars/star_picture.h"

/// A star enlarged, with the discs erased of it. A click erases, or selects the disc under it; the
/// wheel zooms and, with Ctrl, sets the eraser's radius; the middle button moves the picture.
/// Arrow keys move the eraser by a pixel, Return erases, Del deletes the disc selected.
class StarSpriteView final : public QWidget
{
    Q_OBJECT

public:
    explicit StarSpriteView(QWidget* parent = nullptr);

    /// Shows another picture: the whole of it, or, of the `same` star, the part seen before.
    void setPicture(startable::StarPicture picture, bool same);
    /// The document's erasures, and which of them is selected (-1: none).
    void setErasures(startable::Erasures erasures, int selected);
    void setEraser(const startable::Eraser& eraser);
    void setSmooth(bool smooth);

    /// Image pixels, where a pixel's middle is a whole number, and places in the widget.
    QPointF toImage(QPointF inWidget) const;
    QPointF toWidget(QPointF inImage) const;
    void zoomAt(QPointF inWidget, double factor);
    void fit();

    QSize sizeHint() const override { return {360, 320}; }

signals:
    void eraseRequested(QPointF inImage);
    void erasureSelected(int index);
    void deleteRequested();
    void radiusChanged(double radius);

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void act(QPointF inImage, bool always);
    void paintDisc(QPainter& painter, QPointF middle, double radius, double feather, int mode,
                   bool bold) const;
    void paintEraser(QPainter& painter) const;
    void moveEraser(QPointF by);

    startable::StarPicture m_picture;
    startable::Erasures m_erasures;
    int m_selected = -1;
    startable::Eraser m_eraser;
    bool m_smooth = false;
    double m_scale = 1.0; ///< widget pixels for one of the image
    bool m_fitted = true;
    QPointF m_origin;                 ///< of the picture's corner, in the widget
    std::optional<QPointF> m_pointer; ///< the eraser's place, image pixels
    std::optional<QPointF> m_dragFrom;
};
