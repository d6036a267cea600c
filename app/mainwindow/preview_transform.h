#pragma once

#include <QPointF>
#include <QRectF>
#include <QSize>

/// Where the picture lies in the preview. View coordinates are device pixels, so that a scale of 1
/// shows one picture pixel on one screen pixel whatever the screen's density.
class PreviewTransform
{
public:
    static constexpr double kMaxScale = 32.0;
    /// Fitting enlarges a small picture no further than this, the limit of smooth magnification.
    static constexpr double kMaxFitScale = 2.0;

    /// A fitted picture is fitted again; otherwise the scale and the relative place shown stay, as
    /// views of one image may differ in size.
    void setImageSize(QSize size);
    void setViewSize(QSizeF size);

    void fit();
    /// Changes the scale, bound to its limits, and keeps the picture point at `at` where it is; a
    /// point beside the picture counts as the nearest one of its edge. A step across 1 stops there.
    void zoomAt(QPointF at, double factor);
    void setScaleAt(QPointF at, double scale);
    /// Moves the picture, of which some part always stays in sight.
    void panBy(QPointF delta);

    double scale() const { return m_scale; }
    bool isFitted() const { return m_fitted; }
    QPointF toImage(QPointF view) const { return (view - m_origin) / m_scale; }
    QPointF toView(QPointF image) const { return image * m_scale + m_origin; }
    /// The picture's outline in the view.
    QRectF imageRect() const { return {m_origin, m_image * m_scale}; }
    QPointF viewCenter() const { return {m_view.width() / 2, m_view.height() / 2}; }

private:
    double fitScale() const;
    void placeFitted();
    void centerOn(QPointF imagePoint);
    void keepInSight();

    QSizeF m_image{0, 0};
    QSizeF m_view{1, 1};
    double m_scale = 1.0;
    QPointF m_origin; ///< of the picture, in the view
    bool m_fitted = true;
};
