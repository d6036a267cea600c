#include "engine/demo/star_field.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "engine/demo/noise.h"

namespace zre::demo {

namespace {

constexpr float kBrightFlux = 6.0f; // stars above burn out, as in a real exposure
constexpr float kBurntPeak = 1.0f;  // those whose peak is above have spikes

struct Tint
{
    float r, g, b;
};

// Black bodies of about 20000, 9000, 6500, 5000 and 3800 K, the brightest channel 1.
constexpr std::array<Tint, 5> kTints{{{0.66f, 0.78f, 1.00f},
                                      {0.82f, 0.89f, 1.00f},
                                      {1.00f, 0.96f, 0.92f},
                                      {1.00f, 0.85f, 0.64f},
                                      {1.00f, 0.68f, 0.42f}}};

Tint tintAt(float place)
{
    const float scaled = place * static_cast<float>(kTints.size() - 1);
    const std::size_t low = std::min(static_cast<std::size_t>(scaled), kTints.size() - 2);
    const float t = scaled - static_cast<float>(low);
    const Tint& a = kTints[low];
    const Tint& b = kTints[low + 1];
    const Tint mix{a.r + t * (b.r - a.r), a.g + t * (b.g - a.g), a.b + t * (b.b - a.b)};
    const float brightest = std::max({mix.r, mix.g, mix.b});
    return {mix.r / brightest, mix.g / brightest, mix.b / brightest};
}

std::size_t pixelAt(const Image& image, float x, float y)
{
    const int column = std::clamp(static_cast<int>(x + 0.5f), 0, image.width - 1);
    const int row = std::clamp(static_cast<int>(y + 0.5f), 0, image.height - 1);
    return static_cast<std::size_t>(row) * static_cast<std::size_t>(image.width) +
           static_cast<std::size_t>(column);
}

float clearnessAt(const StarGround& ground, const DemoStar& star)
{
    const float x = (static_cast<float>(star.x) + 0.5f) / ground.step - 0.5f;
    const float y = (static_cast<float>(star.y) + 0.5f) / ground.step - 0.5f;
    return ground.clearness.data[pixelAt(ground.clearness, x, y)];
}

// How far a seeing disc spreads in a picture of this size: a large one is taken with more pixels.
float seeingOf(const Image& image)
{
    const float side = static_cast<float>(std::min(image.width, image.height));
    return std::clamp(std::sqrt(std::sqrt(side / 1067.0f)), 0.85f, 1.5f);
}

// Sets brightness, colour and spread. `flux` is 1 for a star that shows about half as bright as
// the picture can.
void light(DemoStar& star, float flux, const Tint& tint, float seeing, const StarGround& ground)
{
    const std::size_t at =
        pixelAt(ground.starless, static_cast<float>(star.x), static_cast<float>(star.y));
    const std::size_t plane = ground.starless.pixelCount();
    const float* base = ground.starless.data.data() + at;
    const float room = 0.985f - std::max({base[0], base[plane], base[2 * plane]});
    const float dimmed =
        star.depth < ground.depth.data[at] ? flux * clearnessAt(ground, star) : flux;
    star.peak = 0.96f * dimmed / (1.0f + dimmed);
    if (dimmed > kBrightFlux)
        star.peak += 0.8f * smoothStep(kBrightFlux, 150.0f, dimmed);
    else
        star.peak = std::min(star.peak, std::max(room, 0.01f));
    star.sigma = seeing * (0.64f + 0.52f * std::sqrt(std::sqrt(dimmed)));
    star.r = tint.r;
    star.g = tint.g;
    star.b = tint.b;
}

// A field star: its place is drawn again where dust hides it, so that dark clouds look empty.
DemoStar drawFieldStar(Random& random, const StarGround& ground, float seeing)
{
    DemoStar star;
    star.depth =
        random.uniform() < 0.06f ? random.between(0.75f, 1.0f) : random.between(0.0f, 0.2f);
    for (int attempt = 0; attempt < 6; ++attempt) {
        star.x = random.uniform() * static_cast<float>(ground.depth.width) - 0.5f;
        star.y = random.uniform() * static_cast<float>(ground.depth.height) - 0.5f;
        const std::size_t at =
            pixelAt(ground.depth, static_cast<float>(star.x), static_cast<float>(star.y));
        if (star.depth >= ground.depth.data[at] || random.uniform() < clearnessAt(ground, star))
            break;
    }
    // A power law, cumulative exponent 0.8: five times as many stars a factor of 7.5 fainter.
    const float u = random.uniform() + 2e-5f;
    const float flux = 0.050f / (u * std::sqrt(std::sqrt(u)));
    const float warm = random.uniform();
    const float place = 0.15f + 0.85f * (0.35f * warm + 0.65f * warm * random.uniform());
    light(star, std::min(flux, 500.0f), tintAt(std::min(place, 1.0f)), seeing, ground);
    return star;
}

DemoStar drawClusterStar(const Composition& scene, Random& random, const StarGround& ground,
                         float seeing)
{
    DemoStar star;
    const float spread = scene.unit * (random.uniform() < 0.5f ? 0.03f : 0.07f);
    star.x = std::clamp(scene.centreX + spread * random.normal(), 0.0f,
                        static_cast<float>(ground.depth.width - 1));
    star.y = std::clamp(scene.centreY + spread * random.normal(), 0.0f,
                        static_cast<float>(ground.depth.height - 1));
    star.depth = random.between(0.40f, 0.50f);
    const float u = random.uniform() + 0.006f;
    const bool giant = random.uniform() < 0.08f;
    const float place = giant ? random.between(0.8f, 1.0f) : random.between(0.0f, 0.35f);
    light(star, 0.45f / u, tintAt(place), seeing, ground);
    return star;
}

// A smooth hill of height 1 that ends at `reach`.
inline float hill(float squareRadius, float squareReach)
{
    const float t = 1.0f - squareRadius / squareReach;
    return t > 0.0f ? t * t : 0.0f;
}

// The shape of one star, weights that sum to 1 at its place.
struct Profile
{
    float core, halo, spikes;
    float coreScale;   ///< 1 / (2 sigma^2)
    float haloScale;   ///< 1 / (core radius of the halo)^2
    float squareReach; ///< of the halo, pixels
    float spikeReach;  ///< pixels
    int reach;

    explicit Profile(const DemoStar& star)
    {
        const float bright = smoothStep(0.25f, 0.95f, star.peak);
        const float burnt = smoothStep(kBurntPeak, 1.8f, star.peak);
        halo = 0.03f + 0.13f * bright;
        spikes = 0.12f * burnt;
        core = 1.0f - halo - spikes;
        coreScale = 0.5f / (star.sigma * star.sigma);
        const float haloRadius = 2.2f * star.sigma;
        haloScale = 1.0f / (haloRadius * haloRadius);
        const float haloReach = star.sigma * (5.0f + 11.0f * bright + 8.0f * burnt);
        squareReach = haloReach * haloReach;
        spikeReach = spikes > 0.0f ? 20.0f * star.sigma : 0.0f;
        reach = static_cast<int>(std::max(haloReach, spikeReach)) + 1;
    }

    float coreAt(float square) const
    {
        return core * expMinus(std::min(square * coreScale, 40.0f));
    }
    float haloAt(float square) const
    {
        return halo * hill(square, squareReach) / (1.0f + square * haloScale);
    }
    float spikesAt(float dx, float dy) const
    {
        if (spikes <= 0.0f)
            return 0.0f;
        const float x = dx * dx;
        const float y = dy * dy;
        const float far = spikeReach * spikeReach;
        const float thinX = 1.0f / (1.0f + y * y);
        const float thinY = 1.0f / (1.0f + x * x);
        const float fallX = hill(x, far) / (1.0f + 0.3f * x * haloScale);
        const float fallY = hill(y, far) / (1.0f + 0.3f * y * haloScale);
        return spikes * 0.5f * (thinX * fallX + thinY * fallY);
    }
};

} // namespace

std::vector<DemoStar> drawStars(const Composition& scene, const StarGround& ground, int count,
                                std::uint64_t seed)
{
    Random random(seed ^ 0x73746172u);
    const float seeing = seeingOf(ground.depth);
    const int members = std::min(count / 40, 110);
    std::vector<DemoStar> stars;
    stars.reserve(static_cast<std::size_t>(count));
    for (int i = 0; i < count - members; ++i)
        stars.push_back(drawFieldStar(random, ground, seeing));
    for (int i = 0; i < members; ++i)
        stars.push_back(drawClusterStar(scene, random, ground, seeing));
    return stars;
}

void addStar(const DemoStar& star, Image& picture)
{
    const Profile profile(star);
    const float starX = static_cast<float>(star.x);
    const float starY = static_cast<float>(star.y);
    const int left = std::max(static_cast<int>(starX) - profile.reach, 0);
    const int right = std::min(static_cast<int>(starX) + profile.reach, picture.width - 1);
    const int top = std::max(static_cast<int>(starY) - profile.reach, 0);
    const int bottom = std::min(static_cast<int>(starY) + profile.reach, picture.height - 1);
    const std::array<float, 3> tint{star.r, star.g, star.b};
    for (int y = top; y <= bottom; ++y) {
        const float dy = static_cast<float>(y) - starY;
        const std::size_t start =
            static_cast<std::size_t>(y) * static_cast<std::size_t>(picture.width);
        for (int x = left; x <= right; ++x) {
            const float dx = static_cast<float>(x) - starX;
            const float square = dx * dx + dy * dy;
            const float core = star.peak * profile.coreAt(square);
            const float wide = star.peak * (profile.haloAt(square) + profile.spikesAt(dx, dy));
            for (int c = 0; c < 3; ++c) {
                const float t = tint[static_cast<std::size_t>(c)];
                picture.plane(c)[start + static_cast<std::size_t>(x)] += t * (core + t * wide);
            }
        }
    }
}

} // namespace zre::demo
