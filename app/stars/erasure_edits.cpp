#include "app/stars/erasure_edits.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

zre::StarErasure startable::Eraser::at(QPointF place) const
{
    return {place.x(), place.y(), radius, feather(), mode};
}

double startable::Eraser::turned(double notches) const
{
    constexpr double kNotch = 1.1;
    constexpr double kStep = 0.1; // a small disc must change too
    const double wanted = radius * std::pow(kNotch, notches);
    const double atLeast = radius + std::copysign(kStep, notches);
    const double next = notches > 0 ? std::max(wanted, atLeast) : std::min(wanted, atLeast);
    return std::clamp(std::round(next * 10.0) / 10.0, kMinRadius, kMaxRadius);
}

int startable::erasureAt(const Erasures& erasures, QPointF place, double reach)
{
    int found = -1;
    double best = 0.0;
    for (std::size_t i = 0; i < erasures.size(); ++i) {
        const double distance = std::hypot(erasures[i].x - place.x(), erasures[i].y - place.y());
        if (distance > std::max(erasures[i].radius, reach) || (found >= 0 && distance >= best))
            continue;
        best = distance;
        found = static_cast<int>(i);
    }
    return found;
}

bool startable::touches(const zre::StarErasure& erasure, const QRect& box)
{
    const double half = erasure.radius + erasure.feather;
    return erasure.x + half >= box.x() && erasure.x - half <= box.x() + box.width() &&
           erasure.y + half >= box.y() && erasure.y - half <= box.y() + box.height();
}
