#pragma once

#include <array>
#include <vector>

#include <QImage>
#include <QRect>

#include "app/stars/erasure_edits.h"
#include "engine/astro/wcs.h"
#include "engine/image/image.h"
#include "engine/stars/star.h"

namespace startable {

/// What the table reads of the document; null what there is not. The pointers hold for one call.
struct Scene
{
    const std::vector<zre::Star>* stars = nullptr;
    const zre::Image* source = nullptr;
    const zre::Image* base = nullptr; ///< what the stars were lifted from
    zre::Wcs wcs;
    Erasures erasures;
};

/// What a picture of a star shows.
enum class Look
{
    Result,
    Original,
    Sprite,
    Coverage
};

struct LookName
{
    const char* name;
    const char* meaning;
};

/// In the order of `Look`.
inline constexpr std::array kLooks{
    LookName{"Result", "The picture as it is put together again, with what was erased."},
    LookName{"Original", "The source image."},
    LookName{"Sprite", "The star's own light alone, as it is drawn."},
    LookName{"Coverage", "How much of each pixel belongs to the star: white all of it."},
};

/// A star and what surrounds it.
struct StarPicture
{
    QImage image;
    QPoint origin; ///< the image pixel that the picture's first pixel shows
    QRect box;     ///< of the sprite, image pixels
};

/// Pictures star `index` of the scene; `brighten` lifts faint light. A null picture without the
/// star or without what the look needs.
StarPicture starPicture(const Scene& scene, int index, Look look, bool brighten);

} // namespace startable
