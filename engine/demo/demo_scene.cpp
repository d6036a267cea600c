#include "engine/demo/demo_scene.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "engine/demo/enlarge.h"
#include "engine/demo/nebula.h"
#include "engine/demo/noise.h"
#include "engine/demo/star_field.h"

namespace zre {

namespace {

constexpr double kGridPoints = 6.0e6; // the nebula is painted on at most about so many
constexpr double kPixelsPerStar = 450.0;
constexpr int kMostStars = 2000000;
constexpr double kCentreRaDeg = 98.0;
constexpr double kCentreDecDeg = 4.9;
constexpr double kWidthDeg = 1.6;
constexpr std::array<float, 3> kSky{0.058f, 0.054f, 0.064f};
constexpr float kGrain = 0.0075f;

int boundSide(int side)
{
    return std::clamp(side, 16, 32768);
}

int starCount(int wanted, int width, int height)
{
    if (wanted >= 0)
        return std::min(wanted, kMostStars);
    return static_cast<int>(static_cast<double>(width) * height / kPixelsPerStar);
}

float gridStep(int width, int height)
{
    const double pixels = static_cast<double>(width) * height;
    return static_cast<float>(std::max(1.0, std::sqrt(pixels / kGridPoints)));
}

int gridSide(int side, float step)
{
    return static_cast<int>(std::ceil(static_cast<float>(side) / step));
}

// The glow of the night sky over the picture, slightly brighter towards one lower corner.
float skyAt(int channel, float x, float y)
{
    return kSky[static_cast<std::size_t>(channel)] + 0.010f * x * y + 0.006f * y;
}

// Brings the nebula to the picture's size and lays the sky over it and grain on it.
void exposeStarless(const demo::Nebula& nebula, float step, std::uint32_t seed, DemoScene& scene,
                    const Progress& progress)
{
    const int width = scene.starless.width;
    const int height = scene.starless.height;
    demo::Enlarger enlarger(nebula.depth.width, nebula.depth.height, step, width);
    for (int y = 0; y < height; ++y) {
        const std::size_t start = static_cast<std::size_t>(y) * static_cast<std::size_t>(width);
        const float down = static_cast<float>(y) / static_cast<float>(height);
        for (int c = 0; c < 3; ++c) {
            float* row = scene.starless.plane(c) + start;
            enlarger.row(nebula.light.plane(c), y, row);
            for (int x = 0; x < width; ++x)
                row[x] += skyAt(c, static_cast<float>(x) / static_cast<float>(width), down);
            demo::addGrainRow(row, width, kGrain, seed + static_cast<std::uint32_t>(3 * y + c));
            for (int x = 0; x < width; ++x)
                row[x] = std::clamp(row[x], 0.0f, 1.0f);
        }
        float* depth = scene.depth.plane(0) + start;
        enlarger.row(nebula.depth.plane(0), y, depth);
        for (int x = 0; x < width; ++x)
            depth[x] = std::clamp(depth[x], 0.0f, 1.0f);
        if (progress)
            progress((y + 1.0) / height);
    }
}

} // namespace

DemoScene makeDemoScene(const DemoSceneOptions& options, const Progress& progress)
{
    const int width = boundSide(options.width);
    const int height = boundSide(options.height);
    const demo::Composition composition = demo::composeScene(width, height, options.seed);
    const float step = gridStep(width, height);
    const demo::Nebula nebula =
        demo::paintNebula(composition, gridSide(width, step), gridSide(height, step), step,
                          subRange(progress, 0.0, 0.6));
    DemoScene scene;
    scene.starless = Image(width, height, 1);
    scene.depth = Image(width, height, 0);
    exposeStarless(nebula, step, composition.seed, scene, subRange(progress, 0.6, 0.9));
    const int count = starCount(options.stars, width, height);
    scene.stars = demo::drawStars(
        composition, {scene.starless, scene.depth, nebula.clearness, step}, count, options.seed);
    scene.picture = scene.starless;
    for (const DemoStar& star : scene.stars)
        demo::addStar(star, scene.picture);
    for (float& value : scene.picture.data)
        value = std::min(value, 1.0f);
    makeSyntheticWcs(kCentreRaDeg, kCentreDecDeg, kWidthDeg * 3600.0 / width, 0.0, width, height,
                     scene.wcs);
    if (progress)
        progress(1.0);
    return scene;
}

} // namespace zre
