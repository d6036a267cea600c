#include "app/stars/star_picture.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "engine/qt/zre_qt.h"
#include "engine/stars/star_sprites.h"

using startable::Look;
using startable::Scene;

/// The sprite's box and what lies around it, within the image.
static QRect sceneAround(const zre::Star& star, const zre::Image& image)
{
    constexpr int kLeastMargin = 10;
    constexpr int kLargestSide = 768; // of a picture; an image-wide blob is shown about its middle
    const QPoint middle(static_cast<int>(std::clamp(star.x, 0.0, image.width - 1.0)),
                        static_cast<int>(std::clamp(star.y, 0.0, image.height - 1.0)));
    QRect around(QPoint(star.boxX, star.boxY), QSize(star.boxW, star.boxH));
    const int margin = std::max(kLeastMargin, std::min(kLargestSide, star.boxW) / 2);
    around = around.united(QRect(middle, QSize(1, 1))).adjusted(-margin, -margin, margin, margin);
    if (around.width() > kLargestSide || around.height() > kLargestSide)
        around = around.intersected(
            {middle - QPoint(kLargestSide, kLargestSide) / 2, QSize(kLargestSide, kLargestSide)});
    return around.intersected({0, 0, image.width, image.height});
}

static zre::Image cropped(const zre::Image& image, const QRect& part)
{
    zre::Image out(part.width(), part.height(), image.channels >= 3 ? 1 : 0);
    for (int c = 0; c < out.channels; ++c)
        for (int y = 0; y < part.height(); ++y) {
            const float* from =
                image.plane(c) +
                static_cast<std::size_t>(part.y() + y) * static_cast<std::size_t>(image.width) +
                part.x();
            std::copy_n(from, part.width(),
                        out.plane(c) +
                            static_cast<std::size_t>(y) * static_cast<std::size_t>(part.width()));
        }
    return out;
}

/// The stars whose sprites show in `part`, placed in it. The star looked at is among them even
/// where the views hide it.
static std::vector<zre::Star> starsWithin(const Scene& scene, int index, const QRect& part,
                                          bool alone)
{
    std::vector<zre::Star> found;
    for (std::size_t i = 0; i < scene.stars->size(); ++i) {
        const zre::Star& star = (*scene.stars)[i];
        const bool chosen = static_cast<int>(i) == index;
        if (star.erased || (!chosen && (alone || star.depth < 0.0f)) ||
            !part.intersects({star.boxX, star.boxY, star.boxW, star.boxH}))
            continue;
        found.push_back(star);
        found.back().depth = 0.0f;
        found.back().x -= part.x();
        found.back().y -= part.y();
        found.back().boxX -= part.x();
        found.back().boxY -= part.y();
    }
    return found;
}

/// As the views draw them, without any shift.
static void drawStars(const Scene& scene, int index, const QRect& part, bool alone,
                      zre::Image& picture)
{
    zre::drawStarSprites(starsWithin(scene, index, part, alone), picture, 0.0, 0.0, 0.0, 0.0, 0.0,
                         1.0, -1.0, -1.0, nullptr, 0.0f);
}

static zre::Image coverageOf(const zre::Star& star, const QRect& part)
{
    zre::Image picture(part.width(), part.height(), 0);
    const auto boxWidth = static_cast<std::size_t>(std::max(star.boxW, 0));
    const QRect box = part.intersected({star.boxX, star.boxY, star.boxW, star.boxH});
    if (star.alpha.size() < boxWidth * static_cast<std::size_t>(std::max(star.boxH, 0)))
        return picture; // an erased star has none
    for (int y = box.top(); y <= box.bottom(); ++y)
        std::copy_n(star.alpha.data() + static_cast<std::size_t>(y - star.boxY) * boxWidth +
                        (box.x() - star.boxX),
                    box.width(),
                    picture.data.data() +
                        static_cast<std::size_t>(y - part.y()) *
                            static_cast<std::size_t>(part.width()) +
                        (box.x() - part.x()));
    return picture;
}

static zre::Image pictureOf(const Scene& scene, int index, Look look, const QRect& part)
{
    switch (look) {
    case Look::Coverage:
        return coverageOf((*scene.stars)[static_cast<std::size_t>(index)], part);
    case Look::Original:
        return cropped(*scene.source, part);
    case Look::Sprite: {
        zre::Image black(part.width(), part.height(), scene.source->colorModel);
        drawStars(scene, index, part, true, black);
        return black;
    }
    case Look::Result:
        break;
    }
    const bool hasBase = scene.base && scene.base->sameSize(*scene.source);
    zre::Image result = cropped(hasBase ? *scene.base : *scene.source, part);
    if (hasBase)
        drawStars(scene, index, part, false, result);
    return result;
}

/// Lifts faint light by an inverse hyperbolic sine, which leaves 0 and 1 as they are.
static void brightenFaint(zre::Image& picture)
{
    constexpr float kStrength = 30.0f;
    const float full = std::asinh(kStrength);
    for (float& value : picture.data)
        value = std::asinh(kStrength * value) / full;
}

startable::StarPicture startable::starPicture(const Scene& scene, int index, Look look,
                                              bool brighten)
{
    if (!scene.stars || !scene.source || !scene.source->usable() || index < 0 ||
        static_cast<std::size_t>(index) >= scene.stars->size())
        return {};
    const zre::Star& star = (*scene.stars)[static_cast<std::size_t>(index)];
    const QRect part = sceneAround(star, *scene.source);
    if (part.isEmpty())
        return {};
    zre::Image picture = pictureOf(scene, index, look, part);
    if (brighten && look != Look::Coverage)
        brightenFaint(picture);
    return {
        zre_qt::toQImage(picture), part.topLeft(), {star.boxX, star.boxY, star.boxW, star.boxH}};
}
