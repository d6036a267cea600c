#include "tests/engine/stars/star_quality.h"

#include <algorithm>
#include <cmath>
#include <unordered_map>

namespace zrtest {

namespace {

constexpr double kSamePlace = 1.5;
constexpr float kSameLight = 0.5f;
constexpr double kDiscSigmas = 3.0;

/// Points by cells, with a brightness each.
class Places
{
public:
    void add(double x, double y, float peak)
    {
        m_cells.emplace(key(cell(x), cell(y)), Place{x, y, peak});
    }

    /// Whether one of at least `peak` lies in a box, edges included.
    bool anyIn(double left, double top, double right, double bottom, float peak) const
    {
        for (int j = cell(top); j <= cell(bottom); ++j)
            for (int i = cell(left); i <= cell(right); ++i) {
                const auto [from, to] = m_cells.equal_range(key(i, j));
                for (auto it = from; it != to; ++it) {
                    const Place& p = it->second;
                    if (p.x >= left && p.x <= right && p.y >= top && p.y <= bottom &&
                        p.peak >= peak)
                        return true;
                }
            }
        return false;
    }

private:
    struct Place
    {
        double x;
        double y;
        float peak;
    };
    static int cell(double v) { return static_cast<int>(std::floor(v / 8.0)); }
    static long long key(int i, int j) { return i + (1LL << 32) * j; }
    std::unordered_multimap<long long, Place> m_cells;
};

StarClass* classOf(StarQuality& quality, float peak)
{
    StarClass* found = nullptr;
    for (StarClass& c : quality.classes)
        if (peak >= c.fromPeak)
            found = &c;
    return found;
}

/// For each pixel the class whose disc it lies in, the brightest of several; -1 outside all.
std::vector<signed char> discs(const zre::DemoScene& scene, StarQuality& quality)
{
    const int w = scene.picture.width;
    const int h = scene.picture.height;
    std::vector<signed char> map(scene.picture.pixelCount(), -1);
    for (const zre::DemoStar& star : scene.stars) {
        const StarClass* c = classOf(quality, star.peak);
        const signed char rank = c ? static_cast<signed char>(c - quality.classes.data()) : -1;
        const double reach = kDiscSigmas * static_cast<double>(star.sigma);
        for (int y = std::max(0, static_cast<int>(star.y - reach));
             y <= std::min(h - 1.0, star.y + reach); ++y)
            for (int x = std::max(0, static_cast<int>(star.x - reach));
                 x <= std::min(w - 1.0, star.x + reach); ++x) {
                signed char& at = map[static_cast<std::size_t>(y) * static_cast<std::size_t>(w) +
                                      static_cast<std::size_t>(x)];
                if (std::hypot(x - star.x, y - star.y) <= reach)
                    at = std::max(at, rank);
            }
    }
    return map;
}

} // namespace

StarQuality starQuality(const zre::DemoScene& scene, const std::vector<zre::Star>& stars,
                        const zre::Image& starless)
{
    StarQuality quality;
    Places found;
    Places planted;
    for (const zre::Star& star : stars)
        found.add(star.x, star.y, star.peak);
    for (const zre::DemoStar& star : scene.stars) {
        planted.add(star.x, star.y, star.peak);
        if (StarClass* c = classOf(quality, star.peak)) {
            ++c->planted;
            c->found += found.anyIn(star.x - kSamePlace, star.y - kSamePlace, star.x + kSamePlace,
                                    star.y + kSamePlace, 0.0f);
        }
    }
    quality.detected = static_cast<int>(stars.size());
    for (const zre::Star& star : stars)
        quality.falseFinds += !planted.anyIn(star.boxX, star.boxY, star.boxX + star.boxW - 1,
                                             star.boxY + star.boxH - 1, kSameLight * star.peak);

    const std::vector<signed char> map = discs(scene, quality);
    double elsewhere = 0.0;
    for (int c = 0; c < starless.channels; ++c)
        for (std::size_t i = 0; i < map.size(); ++i) {
            const double truth = static_cast<double>(scene.starless.plane(c)[i]);
            const double after = static_cast<double>(starless.plane(c)[i]) - truth;
            if (map[i] < 0) {
                elsewhere += 1.0;
                quality.errorElsewhere += std::abs(after);
                continue;
            }
            StarClass& in = quality.classes[static_cast<std::size_t>(map[i])];
            in.pixels += 1.0;
            in.differenceBefore += std::abs(static_cast<double>(scene.picture.plane(c)[i]) - truth);
            in.differenceAfter += std::abs(after);
            in.darkAfter += std::max(-after, 0.0);
        }
    quality.errorElsewhere /= std::max(elsewhere, 1.0);
    return quality;
}

} // namespace zrtest
