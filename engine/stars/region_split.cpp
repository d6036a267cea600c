#include "engine/stars/region_split.h"

#include <algorithm>
#include <array>
#include <cstdint>

#include "engine/stars/pixel_box.h"

namespace zre {

namespace {

/// Basins that grow together, by union-find.
class Basins
{
public:
    std::int32_t add(float peak)
    {
        const auto basin = static_cast<std::int32_t>(m_parent.size());
        m_parent.push_back(basin);
        m_peak.push_back(peak);
        return basin;
    }

    std::int32_t root(std::int32_t basin)
    {
        while (parent(basin) != basin) {
            parent(basin) = parent(parent(basin));
            basin = parent(basin);
        }
        return basin;
    }

    double peak(std::int32_t root) const
    {
        return static_cast<double>(m_peak[static_cast<std::size_t>(root)]);
    }

    /// Both are roots.
    void merge(std::int32_t into, std::int32_t other)
    {
        parent(other) = into;
        float& peak = m_peak[static_cast<std::size_t>(into)];
        peak = std::max(peak, m_peak[static_cast<std::size_t>(other)]);
    }

    std::size_t count() const { return m_parent.size(); }

private:
    std::int32_t& parent(std::int32_t basin) { return m_parent[static_cast<std::size_t>(basin)]; }

    std::vector<std::int32_t> m_parent;
    std::vector<float> m_peak;
};

/// Labels the pixels of a region from the brightest down.
class Splitter
{
public:
    Splitter(const std::vector<std::size_t>& order, const float* values, int width)
        : m_order(order)
        , m_values(values)
        , m_box(order, width)
        , m_labels(m_box.size(), -1)
    {
    }

    void run(double ratio, double floor)
    {
        for (const std::size_t pixel : m_order)
            visit(pixel, ratio, floor);
    }

    std::vector<std::vector<std::size_t>> parts()
    {
        std::vector<std::int32_t> partOf(m_basins.count(), -1);
        std::vector<std::vector<std::size_t>> parts;
        for (const std::size_t pixel : m_order) {
            const auto root = static_cast<std::size_t>(m_basins.root(m_labels[m_box.cell(pixel)]));
            if (partOf[root] < 0) {
                partOf[root] = static_cast<std::int32_t>(parts.size());
                parts.emplace_back();
            }
            parts[static_cast<std::size_t>(partOf[root])].push_back(pixel);
        }
        return parts;
    }

private:
    void visit(std::size_t pixel, double ratio, double floor)
    {
        std::array<std::int32_t, 4> around{};
        std::size_t count = 0;
        std::int32_t chosen = -1;
        float brightest = 0.0f;
        m_box.forFour(pixel, [&](std::size_t neighbour) {
            const std::int32_t label = m_labels[m_box.cell(neighbour)];
            if (label < 0)
                return;
            around[count++] = m_basins.root(label);
            if (chosen < 0 || m_values[neighbour] > brightest) {
                chosen = around[count - 1];
                brightest = m_values[neighbour];
            }
        });
        if (chosen < 0)
            chosen = m_basins.add(m_values[pixel]);
        m_labels[m_box.cell(pixel)] = chosen;
        const double saddle = static_cast<double>(m_values[pixel]);
        for (std::size_t i = 0; i < count; ++i) {
            const std::int32_t other = m_basins.root(around[i]);
            const std::int32_t own = m_basins.root(chosen);
            const double lower = std::min(m_basins.peak(own), m_basins.peak(other));
            if (other != own && (lower < floor || saddle >= lower * ratio))
                m_basins.merge(own, other);
        }
    }

    const std::vector<std::size_t>& m_order;
    const float* m_values;
    PixelBox m_box;
    std::vector<std::int32_t> m_labels;
    Basins m_basins;
};

} // namespace

std::vector<std::vector<std::size_t>>
splitRegionByPersistence(const std::vector<std::size_t>& region, const float* values, int width,
                         double ratio, double floor)
{
    if (region.empty())
        return {};
    std::vector<std::size_t> order = region;
    std::sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) {
        return values[a] > values[b] || (values[a] == values[b] && a < b);
    });
    Splitter splitter(order, values, width);
    splitter.run(ratio, floor);
    return splitter.parts();
}

} // namespace zre
