#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include "engine/image/multiversion.h"
#include "engine/image/raster.h"
#include "engine/image/reshape.h"

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

/// Adds groups of `Size` neighbouring samples, each in order, to one sum apiece.
template <std::size_t Size>
ZR_KERNEL_STEP void addGroupsOf(const float* __restrict row, float* __restrict sums,
                                std::size_t count)
{
    for (std::size_t i = 0; i < count; ++i) {
        float sum = sums[i];
        for (std::size_t k = 0; k < Size; ++k)
            sum += row[Size * i + k];
        sums[i] = sum;
    }
}

ZR_MULTIVERSION static void addPairs(const float* __restrict row, float* __restrict sums,
                                     std::size_t count)
{
    addGroupsOf<2>(row, sums, count);
}

ZR_MULTIVERSION static void addTriples(const float* __restrict row, float* __restrict sums,
                                       std::size_t count)
{
    addGroupsOf<3>(row, sums, count);
}

ZR_MULTIVERSION static void addQuads(const float* __restrict row, float* __restrict sums,
                                     std::size_t count)
{
    addGroupsOf<4>(row, sums, count);
}

/// Adds a source row to the sums of a target row, whose columns take `group` samples each; 0 stands
/// for columns of unequal width.
static void addRow(const float* row, const Coverage& columns, std::size_t group, float* sums)
{
    const std::size_t count = columns.starts.size();
    switch (group) {
    case 2:
        addPairs(row, sums, count);
        return;
    case 3:
        addTriples(row, sums, count);
        return;
    case 4:
        addQuads(row, sums, count);
        return;
    default:
        for (std::size_t i = 0; i < count; ++i) {
            float sum = sums[i];
            for (std::size_t x = columns.starts[i]; x < columns.ends[i]; ++x)
                sum += row[x];
            sums[i] = sum;
        }
    }
}

/// Divides the sums of a target row by the number of samples in each.
static void divideByCounts(const Coverage& columns, std::size_t group, std::size_t height,
                           float* sums)
{
    const std::size_t width = columns.starts.size();
    if (group > 0) {
        const float count = static_cast<float>(height * group);
        for (std::size_t i = 0; i < width; ++i)
            sums[i] /= count;
        return;
    }
    for (std::size_t i = 0; i < width; ++i)
        sums[i] /= static_cast<float>(height * (columns.ends[i] - columns.starts[i]));
}

static void resamplePlane(const float* source, std::size_t sourceWidth, const Coverage& columns,
                          const Coverage& rows, float* target)
{
    const std::size_t width = columns.starts.size();
    const std::size_t group = sourceWidth % width == 0 ? sourceWidth / width : 0;
    for (std::size_t j = 0; j < rows.starts.size(); ++j) {
        float* out = target + j * width;
        std::fill_n(out, width, 0.0f);
        for (std::size_t y = rows.starts[j]; y < rows.ends[j]; ++y)
            addRow(source + y * sourceWidth, columns, group, out);
        divideByCounts(columns, group, rows.ends[j] - rows.starts[j], out);
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
    Image separate;
    Image out =
        reshaped(&src == &dst ? separate : dst, newWidth, newHeight, src.channels > 2 ? 1 : 0);
    const Coverage columns = coverage(src.width, newWidth);
    const Coverage rows = coverage(src.height, newHeight);
    for (int channel = 0; channel < std::min(src.channels, out.channels); ++channel)
        resamplePlane(src.plane(channel), static_cast<std::size_t>(src.width), columns, rows,
                      out.plane(channel));
    dst = std::move(out);
}

} // namespace zre
