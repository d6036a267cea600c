#include "engine/image/blur.h"

#include <cmath>
#include <utility>

#include "engine/image/plane_blur.h"

namespace zre {

static bool blurs(const Image& img, float sigma)
{
    return sigma > 0.0f && std::isfinite(sigma) && img.usable();
}

static void blurPlanes(const Image& source, Image& blurred, GaussianKernel kernel,
                       const Progress& progress)
{
    PlaneBlur blur(source.width, source.height, std::move(kernel));
    LineCounter lines(progress,
                      (static_cast<double>(source.width) + source.height) * source.channels);
    for (int channel = 0; channel < source.channels; ++channel)
        blur.apply(source.plane(channel), blurred.plane(channel), lines);
}

void gaussianBlur(Image& img, float sigma, float cutoff, const Progress& progress)
{
    if (blurs(img, sigma))
        blurPlanes(img, img, gaussianKernel(sigma, cutoff), progress);
}

void gaussianBlur(const Image& source, Image& blurred, float sigma, float cutoff,
                  const Progress& progress)
{
    if (!blurs(source, sigma)) {
        blurred = source;
        return;
    }
    blurred.width = source.width;
    blurred.height = source.height;
    blurred.channels = source.channels;
    blurred.colorModel = source.colorModel;
    blurred.data.resize(source.data.size());
    blurPlanes(source, blurred, gaussianKernel(sigma, cutoff), progress);
}

void localMean(Image& img, double sigma, const Progress& progress)
{
    if (sigma > 0.0)
        gaussianBlur(img, static_cast<float>(sigma), 0.01f, progress);
}

} // namespace zre
