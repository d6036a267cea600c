#include "app/mainwindow/star_overlay.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <utility>

#include <QPainterPath>

namespace {

// Seen by either eye through red and cyan glasses.
constexpr QColor kRing(255, 232, 130);
constexpr QColor kFaintRing(255, 232, 130, 95);
constexpr QColor kSelectedRing(255, 176, 64);
constexpr QColor kUnder(0, 0, 0, 190); // keeps the ring visible on bright ground
constexpr QColor kVeil(0, 0, 0, 165);
constexpr double kRingWidth = 1.4;
constexpr double kUnderWidth = 4.0;
constexpr double kDotRadius = 1.9;
constexpr double kStampRadius = 32.0; ///< larger rings are few in sight, and drawn one by one
/// Rings that would cover more of the view than this share become dots.
constexpr double kCrowded = 1.2;

void strokeRing(QPainter& painter, QPointF center, double radius, const QColor& color, double width)
{
    QColor under = kUnder;
    under.setAlphaF(static_cast<float>(kUnder.alphaF() * color.alphaF()));
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(under, width + kUnderWidth - kRingWidth));
    painter.drawEllipse(center, radius, radius);
    painter.setPen(QPen(color, width));
    painter.drawEllipse(center, radius, radius);
}

void fillDot(QPainter& painter, QPointF center, const QColor& color)
{
    painter.setBrush(color);
    painter.setPen(QPen(kUnder, 1.0));
    painter.drawEllipse(center, kDotRadius, kDotRadius);
}

/// Rings of small sizes, drawn once each: copying one is many times faster than stroking it.
class RingStamps
{
public:
    explicit RingStamps(bool dots)
        : m_dots(dots)
    {
    }

    void draw(QPainter& painter, QPointF center, double radius, bool rendered)
    {
        const QColor& color = rendered ? kRing : kFaintRing;
        if (radius > kStampRadius && !m_dots) {
            strokeRing(painter, center, radius, color, kRingWidth);
            return;
        }
        const int key = m_dots ? 0 : static_cast<int>(std::lround(radius * 2.0));
        QImage& stamp = m_stamps[{key, rendered}];
        if (stamp.isNull())
            stamp = make(0.5 * key, color);
        const double half = 0.5 * stamp.width();
        painter.drawImage(QPoint(static_cast<int>(std::lround(center.x() - half)),
                                 static_cast<int>(std::lround(center.y() - half))),
                          stamp);
    }

private:
    QImage make(double radius, const QColor& color) const
    {
        const double reach = m_dots ? kDotRadius + 0.5 : radius + 0.5 * kUnderWidth;
        const int half = static_cast<int>(std::ceil(reach)) + 1;
        QImage stamp(2 * half, 2 * half, QImage::Format_ARGB32_Premultiplied);
        stamp.fill(Qt::transparent);
        QPainter painter(&stamp);
        painter.setRenderHint(QPainter::Antialiasing);
        if (m_dots)
            fillDot(painter, QPointF(half, half), color);
        else
            strokeRing(painter, QPointF(half, half), radius, color, kRingWidth);
        return stamp;
    }

    bool m_dots;
    std::map<std::pair<int, bool>, QImage> m_stamps;
};

} // namespace

std::vector<StarMark> starMarks(const std::vector<zre::Star>& stars)
{
    constexpr double kRoom = 1.5; // between the star's light and the ring, pixels
    std::vector<StarMark> marks;
    marks.reserve(stars.size());
    for (const zre::Star& star : stars) {
        const double radius = star.erased ? 0.0 : 0.5 * std::max(star.boxW, star.boxH) + kRoom;
        marks.push_back({{star.x + 0.5, star.y + 0.5}, radius, star.depth >= 0.0f});
    }
    return marks;
}

int starMarkAt(const std::vector<StarMark>& marks, QPointF at, double slack)
{
    int found = -1;
    double nearest = 0.0;
    for (std::size_t i = 0; i < marks.size(); ++i) {
        const QPointF off = marks[i].center - at;
        const double distance = std::hypot(off.x(), off.y());
        if (marks[i].radius <= 0.0 || !(distance <= marks[i].radius + slack))
            continue;
        if (found < 0 || distance < nearest) {
            found = static_cast<int>(i);
            nearest = distance;
        }
    }
    return found;
}

void StarOverlay::setMarks(std::vector<StarMark> marks)
{
    m_marks = std::move(marks);
    m_layer = {};
}

void StarOverlay::setStrength(double strength)
{
    m_strength = strength;
    if (strength <= 0.0)
        m_layer = {};
}

void StarOverlay::setSelected(int index, bool spotlight)
{
    m_selected = index;
    m_spotlight = spotlight;
}

bool StarOverlay::canSelect() const
{
    return m_selected >= 0 && static_cast<std::size_t>(m_selected) < m_marks.size() &&
           m_marks[static_cast<std::size_t>(m_selected)].radius > 0.0;
}

double StarOverlay::viewRadius(const StarMark& mark, double scale)
{
    return std::max(kMinRadius, mark.radius * scale);
}

void StarOverlay::paint(QPainter& painter, const PreviewTransform& transform, QSize size)
{
    if (m_strength > 0.0 && !m_marks.empty() && !size.isEmpty()) {
        if (m_layer.size() != size || m_layerPlace != transform.imageRect())
            drawLayer(transform, size);
        painter.save();
        painter.setOpacity(m_strength);
        painter.drawImage(QPoint(0, 0), m_layer);
        painter.restore();
    }
    if (canSelect())
        paintSelected(painter, transform, size);
}

// The layer stays while the view does, so that fading costs one blend.
void StarOverlay::drawLayer(const PreviewTransform& transform, QSize size)
{
    m_layerPlace = transform.imageRect();
    if (m_layer.size() != size)
        m_layer = QImage(size, QImage::Format_ARGB32_Premultiplied);
    m_layer.fill(Qt::transparent);
    const auto inSight = [&](const StarMark& mark, QPointF& center, double& radius) {
        if (mark.radius <= 0.0)
            return false;
        center = transform.toView(mark.center);
        radius = viewRadius(mark, transform.scale());
        const double reach = radius + kUnderWidth;
        return center.x() >= -reach && center.y() >= -reach && center.x() <= size.width() + reach &&
               center.y() <= size.height() + reach;
    };
    QPointF center;
    double radius = 0.0;
    double covered = 0.0;
    for (const StarMark& mark : m_marks)
        if (inSight(mark, center, radius))
            covered += 4.0 * radius * radius;
    const bool crowded =
        covered > kCrowded * size.width() * size.height() && transform.scale() < 1.0;
    RingStamps stamps(crowded);
    QPainter painter(&m_layer);
    painter.setRenderHint(QPainter::Antialiasing);
    for (const StarMark& mark : m_marks)
        if (inSight(mark, center, radius))
            stamps.draw(painter, center, radius, mark.rendered);
}

void StarOverlay::paintSelected(QPainter& painter, const PreviewTransform& transform,
                                QSize size) const
{
    constexpr double kSelectedWidth = 2.2;
    constexpr double kMinLight = 36.0; // device pixels
    const StarMark& mark = m_marks[static_cast<std::size_t>(m_selected)];
    const QPointF center = transform.toView(mark.center);
    const double radius = viewRadius(mark, transform.scale()) + 1.0;
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    if (m_spotlight) {
        const double light = std::max(kMinLight, 2.5 * radius);
        QPainterPath veil;
        veil.addRect(QRectF({0, 0}, QSizeF(size)).intersected(transform.imageRect()));
        veil.addEllipse(center, light, light); // the rule of odd and even leaves it out
        painter.fillPath(veil, kVeil);
    }
    strokeRing(painter, center, radius, kSelectedRing, kSelectedWidth);
    painter.restore();
}
