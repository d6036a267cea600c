#include "app/session/open_document.h"

#include <algorithm>
#include <utility>

#include "engine/qt/zre_qt.h"
#include "engine/stars/star_sprites.h"

namespace {

struct Decoded
{
    zre::Image image;
    zre::Wcs solution;
    DecodedFile file;
};

/// As the file has it, unstretched; errors begin with `what`.
bool decodeLayer(const QString& path, const char* what, Decoded& layer, QString* error)
{
    QImage picture;
    if (decodeImageFile(path, picture, layer.image, layer.solution, nullptr, error,
                        StretchMode::None, &layer.file))
        return true;
    if (error)
        error->prepend(QLatin1String(what) + QLatin1String(":\n"));
    return false;
}

/// Takes `image` from `sum`, in place; the planes of `image` may be fewer.
void subtract(zre::Image& sum, const zre::Image& image)
{
    for (int c = 0; c < sum.channels; ++c) {
        const float* taken = image.plane(c < image.channels ? c : 0);
        float* left = sum.plane(c);
        for (std::size_t i = 0; i < sum.pixelCount(); ++i)
            left[i] = std::max(0.0f, left[i] - taken[i]);
    }
}

/// The layer of stars is nearly black, so that its own statistics tell nothing of how it is meant
/// to be seen; and a curve is no sum: only the whole picture can be stretched, not its parts.
void stretchAlike(Decoded& starless, Decoded& stars)
{
    const zre::MidtonesStretch stretch = zre::autoStretch(starless.image);
    zre::Image whole = zre::compositeStarlessStars(starless.image, stars.image);
    zre::applyStretch(whole, stretch);
    zre::applyStretch(starless.image, stretch);
    subtract(whole, starless.image);
    stars.image = std::move(whole);
    starless.file.stretch = stretch;
}

QString sizeMismatch(const zre::Image& stars, const zre::Image& starless)
{
    return QStringLiteral("The two images must be of the same size: the stars only image is "
                          "%1 x %2 pixels, the starless image %3 x %4.")
        .arg(stars.width)
        .arg(stars.height)
        .arg(starless.width)
        .arg(starless.height);
}

} // namespace

bool openPair(const QString& starsPath, const QString& starlessPath, StretchMode stretch,
              Session& session, QImage* preview, QString* error, const PairStage& stage)
{
    const PairStage tell = stage ? stage : [](double, const QString&) {};
    Decoded starless;
    Decoded stars;
    tell(0.0, "Loading starless image...");
    if (!decodeLayer(starlessPath, "Starless image", starless, error))
        return false;
    tell(0.4, "Loading stars image...");
    if (!decodeLayer(starsPath, "Stars only image", stars, error))
        return false;
    if (!stars.image.sameSize(starless.image)) {
        if (error)
            *error = sizeMismatch(stars.image, starless.image);
        return false;
    }
    tell(0.8, "Compositing...");
    if (stretch == StretchMode::Auto && starless.file.info.linear)
        stretchAlike(starless, stars);
    zre::Wcs& solution = starless.solution.valid ? starless.solution : stars.solution;
    session.installPair(starsPath, starlessPath, std::move(stars.image), std::move(starless.image),
                        std::move(solution), std::move(starless.file));
    if (preview)
        *preview = zre_qt::toQImage(session.source);
    return true;
}
