#include "engine/image/blur.h"

#include <cmath>
#include <memory>

#include "engine/image/plane_blur.h"

namespace zre {

void gaussianBlur(Image& img, float sigma, float cutoff, const Progress& progress)
{
    if (!(sigma > 0.0f) || !std::isfinite(sigma) || !img.usable())
        return;
    PlaneBlur blur(img.width, img.height, gaussianKernel(sigma, cutoff));
    LineCounter lines(progress, (static_cast<double>(img.width) + img.height) * img.channels);
    for (int channel = 0; channel < img.channels; ++channel)
        blur.apply(img.plane(channel), lines);
}

void localMean(Image& img, double sigma, const Progress& progress)
{
    if (sigma > 0.0)
        gaussianBlur(img, static_cast<float>(sigma), 0.01f, progress);
}

} // namespace zre
