#pragma once

#include <vector>

#include <QImage>
#include <QPainter>
#include <QPointF>
#include <QSize>

#include "app/mainwindow/preview_transform.h"
#include "engine/stars/star.h"

/// A star as the preview marks it. Places are those of the shown picture, in which pixel (0, 0)
/// covers the square from (0, 0) to (1, 1).
struct StarMark
{
    QPointF center;
    double radius = 0.0;  ///< of the ring, picture pixels
    bool rendered = true; ///< false for a star that is found but not drawn in the views
};

/// One mark for every star, in the order of `stars`; an erased star's has a radius of 0 and is
/// never ringed.
std::vector<StarMark> starMarks(const std::vector<zre::Star>& stars);

/// Index of the mark whose ring holds `at`, or passes it by no more than `slack` picture pixels;
/// the one of the nearest centre when there are several, -1 without any.
int starMarkAt(const std::vector<StarMark>& marks, QPointF at, double slack);

/// Draws rings about stars over the preview: about all of them, as faintly as wanted, and about one
/// of them that stands out. Works in device pixels, as `PreviewTransform` does.
class StarOverlay
{
public:
    /// No ring is smaller than this, so that it does not hide the star that it is about.
    static constexpr double kMinRadius = 5.0;

    void setMarks(std::vector<StarMark> marks);
    const std::vector<StarMark>& marks() const { return m_marks; }
    /// How strongly the rings of all stars are drawn, 0 to 1; 0 draws none.
    void setStrength(double strength);
    /// Rings the mark of this index whatever the strength, none for -1; `spotlight` darkens the
    /// rest of the picture.
    void setSelected(int index, bool spotlight);
    int selected() const { return m_selected; }

    /// The rings that lie in sight of a view of `size` device pixels. `painter` counts device
    /// pixels.
    void paint(QPainter& painter, const PreviewTransform& transform, QSize size);

    /// Radius of the ring of `mark` in the view, device pixels.
    static double viewRadius(const StarMark& mark, double scale);

private:
    bool canSelect() const;
    void drawLayer(const PreviewTransform& transform, QSize size);
    void paintSelected(QPainter& painter, const PreviewTransform& transform, QSize size) const;

    std::vector<StarMark> m_marks;
    double m_strength = 0.0;
    int m_selected = -1;
    bool m_spotlight = false;
    QImage m_layer; ///< the rings of all stars at `m_layerPlace`; null when it has to be drawn
    QRectF m_layerPlace;
};
