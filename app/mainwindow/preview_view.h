#pragma once

#include <functional>
#include <optional>
#include <vector>

#include <QImage>
#include <QUrl>
#include <QWidget>

#include "app/mainwindow/image_pyramid.h"
#include "app/mainwindow/preview_transform.h"
#include "app/mainwindow/split_line.h"
#include "app/mainwindow/star_overlay.h"

class QMimeData;

/// Shows one picture: the wheel zooms to the cursor, dragging pans, a double click changes between
/// the whole picture and 1:1. A reference, the unprocessed picture, can be looked at in its place
/// or beside it. Without a picture it shows a widget that tells how to begin.
class PreviewView final : public QWidget
{
    Q_OBJECT

public:
    explicit PreviewView(QWidget* parent = nullptr);

    /// Shows `picture`; what part of it is seen stays as it was. Only a processed one can be
    /// compared with the reference.
    void setPreview(QImage picture, bool processed = false);
    /// `reference` gives the unprocessed picture. It is asked when that is first looked at, and
    /// again after the next `setReference`. A reference half as wide as the picture, which is then
    /// a stereo pair, stands for either half.
    void setReference(std::function<QImage()> reference);
    /// Shows the reference in place of the picture while `held`.
    void holdReference(bool held);
    /// Parts the view: the reference to the left of a line that can be dragged.
    void setSplit(bool on);
    /// `offer` tells what dropping files does, in words; an empty text refuses them.
    void setDropOffer(std::function<QString(const QList<QUrl>&)> offer);
    /// Files let go anywhere over `window` are taken as if over this view.
    void takeDropsOf(QWidget& window);
    /// What fills the view until a picture comes; the view takes ownership.
    void setEmptyState(QWidget* widget);

    /// The next click into the picture is answered by `picked`; the escape key calls it off.
    void startPicking();

    /// The stars that can be ringed; a view that shows them elsewhere gets none.
    void setStarMarks(std::vector<StarMark> marks);
    /// Rings all of them, at a strength of 0 (no rings) to 1.
    void setStarRings(double strength);
    /// Rings the one of this index until further notice, none for -1. `spotlight` darkens the rest
    /// of the picture.
    void setRingedStar(int index, bool spotlight = false);
    /// Index of the star whose ring is at this place of the picture; -1 for none.
    int starAt(QPointF inPicture) const;
    /// Brings a place of the picture into sight if it is out of it.
    void reveal(QPointF inPicture);

    void zoomIn();
    void zoomOut();
    void zoomToFit();
    void zoomToPixels();

    const PreviewTransform& transform() const { return m_transform; }

signals:
    /// The pixel of the shown picture that was clicked after `startPicking`.
    void picked(QPoint pixel);
    void pickingCancelled();
    /// Device pixels shown for one picture pixel; 0 without a picture.
    void zoomChanged(double scale, bool fitted);
    /// The cursor is over this place of the picture, in its pixels; it may lie beside it.
    void cursorMoved(QPointF inPicture);
    void cursorLeft();
    /// A click of the left button that moved nothing, at this place within the picture.
    void clickedInPicture(QPointF inPicture);
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
    void leaveEvent(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragLeaveEvent(QDragLeaveEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    QPointF devicePoint(QPointF logical) const { return logical * devicePixelRatioF(); }
    bool pick(const QMouseEvent& event);
    void stopPicking();
    void cancelPicking(QKeyEvent& event);
    void syncViewSize();
    void transformChanged();
    bool canCompare() const;
    void paintPicture(QPainter& painter);
    void paintReference(QPainter& painter);
    void paintStars(QPainter& painter);
    void paintSplit(QPainter& painter);
    void paintPyramid(QPainter& painter, ImagePyramid& pyramid, const QRectF& outline);
    void showCursorShape(QPointF at);
    void tellCursor();
    void paintDropOffer(QPainter& painter);
    QString offerFor(const QMimeData* files) const;
    void setDropText(const QString& text);

    ImagePyramid m_pyramid;
    bool m_processed = false;
    std::function<QImage()> m_makeReference;
    ImagePyramid m_reference;
    bool m_referenceHeld = false;
    SplitLine m_split;
    bool m_splitDragged = false;
    std::optional<QPointF> m_cursor; ///< set while it is over the view
    PreviewTransform m_transform;
    QWidget* m_emptyState = nullptr; ///< a child
    QPointF m_dragFrom;
    bool m_dragging = false;
    std::optional<QPointF> m_clickFrom; ///< while what was pressed may still be a click
    StarOverlay m_stars;
    bool m_picking = false;
    std::function<QString(const QList<QUrl>&)> m_dropOffer;
    QString m_dropText; ///< set while files hover
};
