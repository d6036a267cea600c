#include "app/mainwindow/depth_colors.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace {

// The path through the Oklab space (Ottosson 2020): lightness straight up, hue from violet over
// red to yellow, and as much chroma as the screen can show, up to a limit.
constexpr double kDarkest = 0.15;
constexpr double kLightest = 0.96;
constexpr double kFirstHueDegrees = 285.0;
constexpr double kHueSpanDegrees = 180.0;
constexpr double kLargestChroma = 0.16;
constexpr int kChromaSteps = 64;

struct Rgb
{
    double r, g, b; ///< linear light
    bool inGamut() const { return std::min({r, g, b}) >= 0.0 && std::max({r, g, b}) <= 1.0; }
};

Rgb fromOklab(double lightness, double a, double b)
{
    const double l = std::pow(lightness + 0.3963377774 * a + 0.2158037573 * b, 3);
    const double m = std::pow(lightness - 0.1055613458 * a - 0.0638541728 * b, 3);
    const double s = std::pow(lightness - 0.0894841775 * a - 1.2914855480 * b, 3);
    return {4.0767416621 * l - 3.3077115913 * m + 0.2309699292 * s,
            -1.2684380046 * l + 2.6097574011 * m - 0.3413193965 * s,
            -0.0041960863 * l - 0.7034186147 * m + 1.7076147010 * s};
}

int srgbLevel(double linear)
{
    const double v =
        linear <= 0.0031308 ? 12.92 * linear : 1.055 * std::pow(linear, 1.0 / 2.4) - 0.055;
    return static_cast<int>(std::clamp(v, 0.0, 1.0) * 255.0 + 0.5);
}

QRgb colorAt(double depth)
{
    const double lightness = kDarkest + (kLightest - kDarkest) * depth;
    const double hue = (kFirstHueDegrees + kHueSpanDegrees * depth) * std::numbers::pi / 180.0;
    Rgb color = fromOklab(lightness, 0.0, 0.0);
    for (int step = kChromaSteps; step > 0; --step) {
        const double chroma = kLargestChroma * step / kChromaSteps;
        const Rgb vivid = fromOklab(lightness, chroma * std::cos(hue), chroma * std::sin(hue));
        if (vivid.inGamut()) {
            color = vivid;
            break;
        }
    }
    return qRgb(srgbLevel(color.r), srgbLevel(color.g), srgbLevel(color.b));
}

} // namespace

const std::array<QRgb, 256>& depthColors()
{
    static const std::array<QRgb, 256> colors = [] {
        std::array<QRgb, 256> made{};
        for (std::size_t level = 0; level < made.size(); ++level)
            made[level] = colorAt(static_cast<double>(level) / 255.0);
        return made;
    }();
    return colors;
}

QImage depthInColor(const zre::Image& depth)
{
    if (!depth.usable())
        return {};
    const std::array<QRgb, 256>& colors = depthColors();
    QImage picture(depth.width, depth.height, QImage::Format_RGB32);
    if (picture.isNull())
        return picture;
    const float* value = depth.plane(0);
    for (int y = 0; y < depth.height; ++y) {
        auto* row = reinterpret_cast<QRgb*>(picture.scanLine(y));
        for (int x = 0; x < depth.width; ++x, ++value) {
            // The comparison is false for NaN, which becomes 0.
            const float level = *value > 0.0f ? std::min(*value, 1.0f) * 255.0f + 0.5f : 0.0f;
            row[x] = colors[static_cast<std::size_t>(level)];
        }
    }
    return picture;
}
