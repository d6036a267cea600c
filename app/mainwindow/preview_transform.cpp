#include "app/mainwindow/preview_transform.h"

#include <algorithm>

/// So many device pixels of the picture stay in sight.
static constexpr double kMinInSight = 48.0;

double PreviewTransform::fitScale() const
{
    if (m_image.isEmpty())
        return 1.0;
    return std::min(
        {m_view.width() / m_image.width(), m_view.height() / m_image.height(), kMaxFitScale});
}

void PreviewTransform::placeFitted()
{
    m_scale = fitScale();
    centerOn({m_image.width() / 2, m_image.height() / 2});
}

void PreviewTransform::centerOn(QPointF imagePoint)
{
    m_origin = viewCenter() - imagePoint * m_scale;
}

void PreviewTransform::setImageSize(QSize size)
{
    if (QSizeF(size) == m_image)
        return;
    const QPointF center = toImage(viewCenter());
    const QSizeF old = m_image;
    m_image = size;
    if (m_fitted || old.isEmpty()) {
        fit();
        return;
    }
    centerOn(
        {center.x() * m_image.width() / old.width(), center.y() * m_image.height() / old.height()});
    keepInSight();
}

void PreviewTransform::setViewSize(QSizeF size)
{
    size = size.expandedTo({1, 1});
    if (size == m_view)
        return;
    const QPointF center = toImage(viewCenter());
    m_view = size;
    if (m_fitted) {
        placeFitted();
    } else {
        centerOn(center);
        keepInSight();
    }
}

void PreviewTransform::fit()
{
    m_fitted = true;
    placeFitted();
}

void PreviewTransform::zoomAt(QPointF at, double factor)
{
    const double wanted = m_scale * factor;
    const bool crossesOne = (m_scale < 1.0 && wanted > 1.0) || (m_scale > 1.0 && wanted < 1.0);
    setScaleAt(at, crossesOne ? 1.0 : wanted);
}

void PreviewTransform::setScaleAt(QPointF at, double scale)
{
    const QPointF under = toImage(at);
    const QPointF anchor(std::clamp(under.x(), 0.0, m_image.width()),
                         std::clamp(under.y(), 0.0, m_image.height()));
    const QPointF place = toView(anchor);
    m_scale = std::clamp(scale, std::min(1.0, fitScale()) / 4, kMaxScale);
    m_origin = place - anchor * m_scale;
    m_fitted = false;
}

void PreviewTransform::panBy(QPointF delta)
{
    m_origin += delta;
    m_fitted = false;
    keepInSight();
}

void PreviewTransform::keepInSight()
{
    const auto bound = [](double origin, double extent, double view) {
        const double inSight = std::min({kMinInSight, extent, view});
        return std::clamp(origin, inSight - extent, view - inSight);
    };
    m_origin = {bound(m_origin.x(), m_image.width() * m_scale, m_view.width()),
                bound(m_origin.y(), m_image.height() * m_scale, m_view.height())};
}
