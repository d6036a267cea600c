#include "engine/stars/star_list.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <utility>

namespace zre {

/// Half a pixel, squared: a star that moved farther is another one.
static constexpr double kSameStarSquared = 0.25;
static constexpr double kSameStar = 0.5;

void capStarsByBrightness(std::vector<Star>& stars, int cap)
{
    if (cap < 1 || static_cast<std::size_t>(cap) >= stars.size())
        return;
    // A NaN has no place in an order, so it counts as the faintest.
    const auto brightness = [](const Star& star) {
        return std::isnan(star.peak) ? -std::numeric_limits<float>::infinity() : star.peak;
    };
    std::vector<float> peaks(stars.size());
    std::transform(stars.begin(), stars.end(), peaks.begin(), brightness);
    const auto last = peaks.begin() + (cap - 1);
    std::nth_element(peaks.begin(), last, peaks.end(), std::greater<>());
    const float least = *last;
    std::erase_if(stars, [&](const Star& star) { return brightness(star) < least; });
}

namespace {

/// Stars by row, so that a neighbour is found without a walk over all of them.
class StarIndex
{
public:
    explicit StarIndex(const std::vector<Star>& stars)
    {
        m_places.reserve(stars.size());
        for (std::size_t i = 0; i < stars.size(); ++i)
            if (!std::isnan(stars[i].y))
                m_places.push_back({stars[i].x, stars[i].y, i});
        std::sort(m_places.begin(), m_places.end(), [](const Place& a, const Place& b) {
            return std::pair(a.y, a.index) < std::pair(b.y, b.index);
        });
    }

    /// The star nearest to a point, of two at the same distance the first; `stars` when none lies
    /// within half a pixel.
    std::size_t nearest(double x, double y, std::size_t none) const
    {
        std::size_t found = none;
        double least = kSameStarSquared;
        const auto above = [](const Place& place, double row) { return place.y < row; };
        auto place = std::lower_bound(m_places.begin(), m_places.end(), y - kSameStar, above);
        for (; place != m_places.end() && place->y <= y + kSameStar; ++place) {
            const double dx = place->x - x;
            const double dy = place->y - y;
            const double distance = dx * dx + dy * dy;
            if (distance < least || (distance == least && place->index < found && found != none)) {
                least = distance;
                found = place->index;
            }
        }
        return found;
    }

private:
    struct Place
    {
        double x;
        double y;
        std::size_t index;
    };
    std::vector<Place> m_places;
};

} // namespace

std::size_t spliceStarsByCentroid(std::vector<Star>& stars, const std::vector<Star>& fresh)
{
    const StarIndex index(stars);
    std::vector<char> replaced(stars.size(), 0);
    for (const Star& star : fresh) {
        const std::size_t at = index.nearest(star.x, star.y, stars.size());
        if (at == stars.size())
            continue;
        const float depth = stars[at].depth;
        const float distancePc = stars[at].distancePc;
        stars[at] = star;
        stars[at].depth = depth;
        stars[at].distancePc = distancePc;
        replaced[at] = 1;
    }
    return static_cast<std::size_t>(std::count(replaced.begin(), replaced.end(), 1));
}

} // namespace zre
