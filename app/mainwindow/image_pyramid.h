#pragma once

#include <vector>

#include <QImage>

/// A picture and its halvings, each made when it is first asked for: showing a large picture small
/// then costs no more than the pixels on the screen, and no detail flickers while it moves.
class ImagePyramid
{
public:
    ImagePyramid() = default;
    explicit ImagePyramid(QImage picture);

    bool isNull() const { return m_levels.empty(); }
    QSize size() const { return isNull() ? QSize() : m_levels.front().size(); }

    /// The coarsest level that still has a pixel for every one shown at `scale`; its pixels are
    /// 2^level picture pixels wide.
    int levelFor(double scale) const;
    const QImage& level(int level);

private:
    std::vector<QImage> m_levels; ///< Format_RGB32, level 0 the picture itself
};

/// `picture` (Format_RGB32) at half the size, rounded up: each pixel the rounded mean of two by
/// two, with the last column and row repeated where the size is odd.
QImage halved(const QImage& picture);
