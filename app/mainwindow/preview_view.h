#pragma once

#include <QImage>
#include <QWidget>

#include "app/mainwindow/image_pyramid.h"
#include "app/mainwindow/preview_transform.h"

/// Shows one picture: the wheel zooms to the cursor, dragging pans, a double click changes between
/// the whole picture and 1:1. Without a picture it shows a widget that tells how to begin.
class PreviewView final : public QWidget
{
    Q_OBJECT

public:
    explicit PreviewView(QWidget* parent = nullptr);

    /// Shows `picture`; what part of it is seen stays as it was.
    void setPreview(QImage picture);
    /// What fills the view until a picture comes; the view takes ownership.
    void setEmptyState(QWidget* widget);

    void zoomIn();
    void zoomOut();
    void zoomToFit();
    void zoomToPixels();

    const PreviewTransform& transform() const { return m_transform; }

signals:
    /// Device pixels shown for one picture pixel; 0 without a picture.
    void zoomChanged(double scale, bool fitted);
    void imageDropped(const QString& path);

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragLeaveEvent(QDragLeaveEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    QPointF devicePoint(QPointF logical) const { return logical * devicePixelRatioF(); }
    void syncViewSize();
    void transformChanged();
    void paintPicture(QPainter& painter);
    void setDropHighlight(bool on);

    ImagePyramid m_pyramid;
    PreviewTransform m_transform;
    QWidget* m_emptyState = nullptr; ///< a child
    QPointF m_dragFrom;
    bool m_dragging = false;
    bool m_dropHighlight = false;
};
