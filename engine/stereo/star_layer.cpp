#include <algorithm>

#include "engine/stars/star_sprites.h"
#include "engine/stereo/eye.h"

namespace zre {

/// A bit per pixel: set where scene structure stands nearer than a star beyond `occlusion`. A hole
/// of the star layer, -1, counts as far.
static std::vector<bool> hiddenStars(const Image& starDepth, const Image& sceneDepth,
                                     float occlusion)
{
    constexpr double kMargin = 0.001;
    const float* const star = starDepth.plane(0);
    const float* const scene = sceneDepth.plane(0);
    std::vector<bool> hidden(starDepth.pixelCount());
    for (std::size_t i = 0; i < hidden.size(); ++i)
        hidden[i] = star[i]<occlusion&& double(scene[i])> double(star[i]) + kMargin;
    return hidden;
}

static void addLight(const float* light, const std::vector<bool>& hidden, float* out,
                     std::size_t size)
{
    for (std::size_t i = 0; i < size; ++i)
        if (hidden.empty() || !hidden[i])
            out[i] = std::min(out[i] + light[i], 1.0f);
}

void compositeStarsImage(const Image& stars, const Image& starDepth, Image& out, double parallax,
                         double convergence, double offsetX, double offsetY, double maxDisparity,
                         double zoom, double centerX, double centerY, const Image* sceneDepth,
                         float occlusion)
{
    if (!stars.usable() || !starDepth.usable() || !out.usable() || !stars.sameSize(out) ||
        !starDepth.sameSize(out))
        return;
    const bool occluded =
        sceneDepth && occlusion > 0.0f && sceneDepth->usable() && sceneDepth->sameSize(out);
    Image warped = stars;
    Image warpedDepth;
    renderEye(stars, starDepth, warped, parallax, convergence, offsetX, offsetY, maxDisparity, zoom,
              centerX, centerY, zoom != 0.0, occluded ? &warpedDepth : nullptr);
    std::vector<bool> hidden;
    if (occluded)
        hidden = hiddenStars(warpedDepth, *sceneDepth, occlusion);
    for (int c = 0; c < out.channels; ++c)
        addLight(warped.plane(std::min(c, warped.channels - 1)), hidden, out.plane(c),
                 out.pixelCount());
}

void compositeStarLayer(Image& out, double parallax, double convergence, double offsetX,
                        double offsetY, double maxDisparity, const std::vector<Star>* stars,
                        const Image* starsImage, const Image* starsDepth, const Image* sceneDepth,
                        float occlusion)
{
    if (starsImage && starsDepth && starsImage->usable() && starsDepth->usable())
        compositeStarsImage(*starsImage, *starsDepth, out, parallax, convergence, offsetX, offsetY,
                            maxDisparity, 0.0, -1.0, -1.0, sceneDepth, occlusion);
    else if (stars && !stars->empty())
        drawStarSprites(*stars, out, parallax, convergence, offsetX, offsetY, maxDisparity, 0.0,
                        -1.0, -1.0, sceneDepth, occlusion);
}

} // namespace zre
