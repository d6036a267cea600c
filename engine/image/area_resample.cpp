#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include "engine/image/raster.h"

namespace zre {

/// The source lines that each target line covers along one axis: starts[j] up to, excluding,
/// ends[j].
struct Coverage
{
    std::vector<std::size_t> starts;
    std::vector<std::size_t> ends;
};

static Coverage coverage(int source, int target)
{
    Coverage c;
    c.starts.reserve(static_cast<std::size_t>(target));
    c.ends.reserve(static_cast<std::size_t>(target));
    for (std::int64_t j = 0; j < target; ++j) {
        const std::int64_t start = j * source / target;
        const std::int64_t end =
            std::min<std::int64_t>(source, std::max(start + 1, (j + 1) * source / target));
        c.starts.push_back(static_cast<std::size_t>(start));
        c.ends.push_back(static_cast<std::size_t>(end));
    }
    return c;
}

static void addRow(const float* row, const Coverage& columns, float* sums)
{
    for (std::size_t i = 0; i < columns.starts.size(); ++i) {
        float sum = sums[i];
        for (std::size_t x = columns.starts[i]; x < columns.ends[i]; ++x)
            sum += row[x];
        sums[i] = sum;
    }
}

static void resamplePlane(const float* source, std::size_t sourceWidth, const Coverage& columns,
                          const Coverage& rows, float* target)
{
    const std::size_t width = columns.starts.size();
    for (std::size_t j = 0; j < rows.starts.size(); ++j) {
        float* out = target + j * width;
        for (std::size_t y = rows.starts[j]; y < rows.ends[j]; ++y)
            addRow(source + y * sourceWidth, columns, out);
        const std::size_t height = rows.ends[j] - rows.starts[j];
        for (std::size_t i = 0; i < width; ++i)
            out[i] /= static_cast<float>(height * (columns.ends[i] - columns.starts[i]));
    }
}

void areaResample(const Image& src, int newWidth, int newHeight, Image& dst)
{
    if (!src.usable() || newWidth < 1 || newHeight < 1)
        return;
    if (newWidth == src.width && newHeight == src.height) {
        dst = src;
        return;
    }
    Image out(newWidth, newHeight, src.channels > 2 ? 1 : 0);
    const Coverage columns = coverage(src.width, newWidth);
    const Coverage rows = coverage(src.height, newHeight);
    for (int channel = 0; channel < std::min(src.channels, out.channels); ++channel)
        resamplePlane(src.plane(channel), static_cast<std::size_t>(src.width), columns, rows,
                      out.plane(channel));
    dst = std::move(out);
}

} // namespace zre
