#include "engine/image/image.h"

#include <algorithm>

namespace zre {

Image::Image(int w, int h, int model)
    : width(std::max(w, 0))
    , height(std::max(h, 0))
    , channels(model == 1 ? 3 : 1)
    , colorModel(model)
{
    // The vector's constructor says what is wrong with a size that it cannot hold; resize does not.
    data = std::vector<float>(pixelCount() * static_cast<std::size_t>(channels));
}

Progress subRange(const Progress& progress, double from, double to)
{
    if (!progress)
        return {};
    return [&progress, from, to](double fraction) { progress(from + (to - from) * fraction); };
}

} // namespace zre
