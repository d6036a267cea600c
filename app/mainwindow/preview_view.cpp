#include "app/mainwindow/preview_view.h"

#include <cmath>
#include <utility>

#include <QDragEnterEvent>
#include <QMimeData>
#include <QMouseEvent>
#include <QPainter>
#include <QVBoxLayout>

namespace {

constexpr QColor kBackdrop(0x1c, 0x1c, 0x1e); // neutral, so that it tints no judgement of colour
constexpr QColor kPlate(0, 0, 0, 180);
constexpr int kPlateMargin = 12;
constexpr double kWheelNotch = 1.25;
constexpr double kNotchDegrees = 120.0; // eighths of a degree, as the toolkit counts them
constexpr double kKeyPanPixels = 64.0;
constexpr double kClickSlop = 4.0; ///< a hand that moves no further has clicked
/// Beyond this magnification pixels are shown as the squares they are.
constexpr double kSmoothUpTo = 2.0;

/// Words on a dark plate about `center`, readable over any picture.
void paintPlate(QPainter& painter, const QString& text, QPointF center)
{
    QRectF plate = painter.fontMetrics().boundingRect(text);
    plate.adjust(-kPlateMargin, -0.5 * kPlateMargin, kPlateMargin, 0.5 * kPlateMargin);
    plate.moveCenter(center);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(kPlate);
    painter.drawRoundedRect(plate, 5, 5);
    painter.setPen(Qt::white);
    painter.drawText(plate, Qt::AlignCenter, text);
    painter.restore();
}

} // namespace

PreviewView::PreviewView(QWidget* parent)
    : QWidget(parent)
{
    setAcceptDrops(true);
    setMouseTracking(true);
    setFocusPolicy(Qt::StrongFocus);
    setMinimumSize(240, 180);
    setAccessibleName(tr("Preview"));
    setAttribute(Qt::WA_OpaquePaintEvent);
    setLayout(new QVBoxLayout);
}

void PreviewView::setPreview(QImage picture, bool processed)
{
    m_pyramid = ImagePyramid(std::move(picture));
    m_processed = processed;
    syncViewSize();
    m_transform.setImageSize(m_pyramid.size().expandedTo({0, 0}));
    if (m_emptyState && m_emptyState->isVisibleTo(this) != m_pyramid.isNull()) {
        m_emptyState->setVisible(m_pyramid.isNull());
        setFocus();
    }
    showCursorShape(m_cursor.value_or(QPointF(-1, -1)));
    transformChanged();
}

void PreviewView::setReference(std::function<QImage()> reference)
{
    m_makeReference = std::move(reference);
    m_reference = ImagePyramid();
    update();
}

void PreviewView::holdReference(bool held)
{
    m_referenceHeld = held;
    update();
}

void PreviewView::setSplit(bool on)
{
    m_split.setOn(on);
    update();
}

bool PreviewView::canCompare() const
{
    return m_processed && !m_pyramid.isNull() && m_makeReference;
}

void PreviewView::setDropOffer(std::function<QString(const QList<QUrl>&)> offer)
{
    m_dropOffer = std::move(offer);
}

void PreviewView::setEmptyState(QWidget* widget)
{
    m_emptyState = widget;
    layout()->addWidget(widget);
}

void PreviewView::setStarMarks(std::vector<StarMark> marks)
{
    m_stars.setMarks(std::move(marks));
    update();
}

void PreviewView::setStarRings(double strength)
{
    m_stars.setStrength(strength);
    update();
}

void PreviewView::setRingedStar(int index, bool spotlight)
{
    m_stars.setSelected(index, spotlight);
    update();
}

int PreviewView::starAt(QPointF inPicture) const
{
    constexpr double kSlack = 6.0; // device pixels
    return starMarkAt(m_stars.marks(), inPicture, kSlack / m_transform.scale());
}

void PreviewView::reveal(QPointF inPicture)
{
    constexpr double kMargin = 24.0;
    const QPointF place = m_transform.toView(inPicture);
    const QRectF view = QRectF({0, 0}, QSizeF(size()) * devicePixelRatioF());
    if (m_pyramid.isNull() || view.adjusted(kMargin, kMargin, -kMargin, -kMargin).contains(place))
        return;
    m_transform.panBy(m_transform.viewCenter() - place);
    transformChanged();
}

void PreviewView::zoomIn()
{
    m_transform.zoomAt(m_transform.viewCenter(), kWheelNotch);
    transformChanged();
}

void PreviewView::zoomOut()
{
    m_transform.zoomAt(m_transform.viewCenter(), 1.0 / kWheelNotch);
    transformChanged();
}

void PreviewView::zoomToFit()
{
    m_transform.fit();
    transformChanged();
}

void PreviewView::zoomToPixels()
{
    m_transform.setScaleAt(m_transform.viewCenter(), 1.0);
    transformChanged();
}

void PreviewView::syncViewSize()
{
    m_transform.setViewSize(QSizeF(size()) * devicePixelRatioF());
}

void PreviewView::transformChanged()
{
    emit zoomChanged(m_pyramid.isNull() ? 0.0 : m_transform.scale(), m_transform.isFitted());
    tellCursor();
    update();
}

void PreviewView::tellCursor()
{
    if (m_cursor && !m_pyramid.isNull())
        emit cursorMoved(m_transform.toImage(devicePoint(*m_cursor)));
    else
        emit cursorLeft();
}

void PreviewView::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.fillRect(rect(), kBackdrop);
    syncViewSize(); // the window may have come to a screen of another density
    if (m_referenceHeld && canCompare())
        paintReference(painter);
    else if (!m_pyramid.isNull())
        paintPicture(painter);
    if (m_split.isOn() && !m_referenceHeld && canCompare())
        paintSplit(painter);
    if (!m_pyramid.isNull())
        paintStars(painter);
    if (!m_dropText.isEmpty())
        paintDropOffer(painter);
}

void PreviewView::paintStars(QPainter& painter)
{
    painter.save();
    painter.scale(1.0 / devicePixelRatioF(), 1.0 / devicePixelRatioF());
    m_stars.paint(painter, m_transform, (QSizeF(size()) * devicePixelRatioF()).toSize());
    painter.restore();
}

void PreviewView::paintDropOffer(QPainter& painter)
{
    const QColor accent = palette().color(QPalette::Highlight);
    QColor veil = accent;
    veil.setAlphaF(0.18F);
    painter.fillRect(rect(), veil);
    painter.setPen(QPen(accent, 4));
    painter.drawRect(QRectF(rect()).adjusted(2, 2, -2, -2));

    const QString text =
        fontMetrics().elidedText(m_dropText, Qt::ElideMiddle, width() - 6 * kPlateMargin);
    paintPlate(painter, text, rect().center());
}

/// The pixels of `rect`, which lies within `picture` (Format_RGB32), without a copy of them.
static QImage partOf(const QImage& picture, const QRect& rect)
{
    const auto* row = reinterpret_cast<const QRgb*>(picture.constScanLine(rect.top()));
    return {reinterpret_cast<const uchar*>(row + rect.left()), rect.width(), rect.height(),
            picture.bytesPerLine(), QImage::Format_RGB32};
}

void PreviewView::paintPicture(QPainter& painter)
{
    paintPyramid(painter, m_pyramid, m_transform.imageRect());
}

void PreviewView::paintReference(QPainter& painter)
{
    if (m_reference.isNull())
        m_reference = ImagePyramid(m_makeReference());
    if (m_reference.isNull())
        return;
    const int halves = m_pyramid.size().width() >= 2 * m_reference.size().width() ? 2 : 1;
    QRectF outline = m_transform.imageRect();
    outline.setWidth(outline.width() / halves);
    for (int half = 0; half < halves; ++half)
        paintPyramid(painter, m_reference, outline.translated(half * outline.width(), 0));
}

void PreviewView::paintSplit(QPainter& painter)
{
    const double x = m_split.x(width());
    painter.save();
    painter.setClipRect(QRectF(0, 0, x, height()));
    painter.fillRect(rect(), kBackdrop);
    paintReference(painter);
    painter.restore();
    m_split.paint(painter, size());
    const QString name = tr("Source");
    const double halfName = painter.fontMetrics().horizontalAdvance(name) / 2.0;
    paintPlate(painter, name, {x - halfName - 3 * kPlateMargin, 2.0 * kPlateMargin});
}

// Works in device pixels, and draws from a part of the level that holds just what is in sight: the
// raster engine counts in 16 bits before the point, which a wide or magnified picture overflows.
void PreviewView::paintPyramid(QPainter& painter, ImagePyramid& pyramid, const QRectF& place)
{
    const double scale = place.width() / pyramid.size().width();
    QPointF origin = place.topLeft();
    if (scale >= 1.0)
        origin = {std::round(origin.x()), std::round(origin.y())};
    const int level = pyramid.levelFor(scale);
    const QImage& picture = pyramid.level(level);
    const double levelScale = std::ldexp(scale, level);

    painter.save();
    painter.scale(1.0 / devicePixelRatioF(), 1.0 / devicePixelRatioF());
    const QRectF outline(origin, place.size());
    const QRectF seen = outline.intersected(QRectF({0, 0}, QSizeF(size()) * devicePixelRatioF()));
    // The coarse levels of an odd size reach beyond the picture.
    painter.setClipRect(seen, Qt::IntersectClip);
    const QRect source = QRectF((seen.topLeft() - origin) / levelScale, seen.size() / levelScale)
                             .toAlignedRect()
                             .adjusted(-1, -1, 1, 1)
                             .intersected(picture.rect());
    if (!source.isEmpty()) {
        painter.translate(origin + QPointF(source.topLeft()) * levelScale);
        painter.scale(levelScale, levelScale);
        painter.setRenderHint(QPainter::SmoothPixmapTransform, scale <= kSmoothUpTo);
        painter.drawImage(QPoint(0, 0), partOf(picture, source));
    }
    painter.restore();
}

void PreviewView::resizeEvent(QResizeEvent*)
{
    syncViewSize();
    transformChanged();
}

void PreviewView::wheelEvent(QWheelEvent* event)
{
    if (m_pyramid.isNull() || event->angleDelta().y() == 0) {
        event->ignore();
        return;
    }
    m_transform.zoomAt(devicePoint(event->position()),
                       std::pow(kWheelNotch, event->angleDelta().y() / kNotchDegrees));
    transformChanged();
}

void PreviewView::mousePressEvent(QMouseEvent* event)
{
    const bool pans = event->button() == Qt::LeftButton || event->button() == Qt::MiddleButton;
    if (m_pyramid.isNull() || !pans) {
        event->ignore();
        return;
    }
    if (m_picking && pick(*event))
        return;
    m_splitDragged = canCompare() && m_split.isNear(event->position(), width());
    m_dragging = !m_splitDragged;
    m_dragFrom = event->position();
    if (m_dragging && event->button() == Qt::LeftButton)
        m_clickFrom = event->position();
    showCursorShape(event->position());
}

void PreviewView::showCursorShape(QPointF at)
{
    const bool onSplit = canCompare() && m_split.isNear(at, width());
    if (m_pyramid.isNull())
        setCursor(Qt::ArrowCursor);
    else if (m_picking)
        setCursor(Qt::CrossCursor);
    else if (m_splitDragged || (onSplit && !m_dragging))
        setCursor(Qt::SplitHCursor);
    else
        setCursor(m_dragging ? Qt::ClosedHandCursor : Qt::OpenHandCursor);
}

void PreviewView::mouseMoveEvent(QMouseEvent* event)
{
    m_cursor = event->position();
    if (m_splitDragged) {
        m_split.moveTo(event->position().x(), width());
        update();
    }
    if (m_clickFrom && (event->position() - *m_clickFrom).manhattanLength() > kClickSlop)
        m_clickFrom.reset();
    if (m_dragging && !m_clickFrom) {
        m_transform.panBy(devicePoint(event->position() - m_dragFrom));
        m_dragFrom = event->position();
        transformChanged();
    } else {
        tellCursor();
    }
    showCursorShape(event->position());
}

void PreviewView::startPicking()
{
    if (m_pyramid.isNull())
        return;
    m_picking = true;
    showCursorShape(m_cursor.value_or(QPointF(-1, -1)));
    setFocus();
}

void PreviewView::stopPicking()
{
    m_picking = false;
    showCursorShape(m_cursor.value_or(QPointF(-1, -1)));
}

void PreviewView::cancelPicking(QKeyEvent& event)
{
    if (!m_picking) {
        event.ignore();
        return;
    }
    stopPicking();
    emit pickingCancelled();
}

/// Whether the click hit the picture and was taken.
bool PreviewView::pick(const QMouseEvent& event)
{
    const QPointF at = m_transform.toImage(devicePoint(event.position()));
    const QPoint pixel(static_cast<int>(std::floor(at.x())), static_cast<int>(std::floor(at.y())));
    if (event.button() != Qt::LeftButton || !QRect({0, 0}, m_pyramid.size()).contains(pixel))
        return false;
    stopPicking();
    emit picked(pixel);
    return true;
}

void PreviewView::mouseReleaseEvent(QMouseEvent* event)
{
    m_dragging = false;
    m_splitDragged = false;
    showCursorShape(event->position());
    const std::optional<QPointF> clicked = std::exchange(m_clickFrom, std::nullopt);
    if (!clicked || event->button() != Qt::LeftButton)
        return;
    const QPointF at = m_transform.toImage(devicePoint(*clicked));
    if (QRectF({0, 0}, QSizeF(m_pyramid.size())).contains(at))
        emit clickedInPicture(at);
}

void PreviewView::leaveEvent(QEvent*)
{
    m_cursor.reset();
    tellCursor();
}

void PreviewView::mouseDoubleClickEvent(QMouseEvent* event)
{
    if (m_pyramid.isNull() || event->button() != Qt::LeftButton)
        return;
    if (m_transform.isFitted())
        m_transform.setScaleAt(devicePoint(event->position()), 1.0);
    else
        m_transform.fit();
    transformChanged();
}

void PreviewView::keyPressEvent(QKeyEvent* event)
{
    QPointF step;
    switch (event->key()) {
    case Qt::Key_Escape:
        cancelPicking(*event);
        return;
    case Qt::Key_Left:
        step = {kKeyPanPixels, 0};
        break;
    case Qt::Key_Right:
        step = {-kKeyPanPixels, 0};
        break;
    case Qt::Key_Up:
        step = {0, kKeyPanPixels};
        break;
    case Qt::Key_Down:
        step = {0, -kKeyPanPixels};
        break;
    default:
        QWidget::keyPressEvent(event);
        return;
    }
    if (m_pyramid.isNull())
        return;
    m_transform.panBy(devicePoint(step));
    transformChanged();
}

void PreviewView::setDropText(const QString& text)
{
    m_dropText = text;
    update();
}

QString PreviewView::offerFor(const QMimeData* files) const
{
    return m_dropOffer && files->hasUrls() ? m_dropOffer(files->urls()) : QString();
}

void PreviewView::takeDropsOf(QWidget& window)
{
    window.setAcceptDrops(true);
    window.installEventFilter(this);
}

bool PreviewView::eventFilter(QObject* watched, QEvent* event)
{
    switch (event->type()) {
    case QEvent::DragEnter:
        dragEnterEvent(static_cast<QDragEnterEvent*>(event));
        return true;
    case QEvent::DragLeave:
        dragLeaveEvent(static_cast<QDragLeaveEvent*>(event));
        return true;
    case QEvent::Drop:
        dropEvent(static_cast<QDropEvent*>(event));
        return true;
    default:
        return QWidget::eventFilter(watched, event);
    }
}

void PreviewView::dragEnterEvent(QDragEnterEvent* event)
{
    setDropText(offerFor(event->mimeData()));
    if (!m_dropText.isEmpty())
        event->acceptProposedAction();
}

void PreviewView::dragLeaveEvent(QDragLeaveEvent*)
{
    setDropText({});
}

void PreviewView::dropEvent(QDropEvent* event)
{
    setDropText({});
    if (offerFor(event->mimeData()).isEmpty())
        return;
    event->acceptProposedAction();
    emit filesDropped(event->mimeData()->urls());
}
