#pragma once

#include <functional>

#include <QImage>
#include <QUrl>
#include <QWidget>

#include "app/mainwindow/image_pyramid.h"
#include "app/mainwindow/preview_transform.h"

class QMimeData;

/// Shows one picture: the wheel zooms to the cursor, dragging pans, a double click changes between
/// the whole picture and 1:1. Without a picture it shows a widget that tells how to begin.
class PreviewView final : public QWidget
{
    Q_OBJECT

public:
    explicit PreviewView(QWidget* parent = nullptr);

    /// Shows `picture`; what part of it is seen stays as it was.
    void setPreview(QImage picture);
    /// `offer` tells what dropping files does, in words; an empty text refuses them.
    void setDropOffer(std::function<QString(const QList<QUrl>&)> offer);
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
    void filesDropped(const QList<QUrl>& urls);

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
    void paintDropOffer(QPainter& painter);
    QString offerFor(const QMimeData* files) const;
    void setDropText(const QString& text);

    ImagePyramid m_pyramid;
    PreviewTransform m_transform;
    QWidget* m_emptyState = nullptr; ///< a child
    QPointF m_dragFrom;
    bool m_dragging = false;
    std::function<QString(const QList<QUrl>&)> m_dropOffer;
    QString m_dropText; ///< set while files hover
};
