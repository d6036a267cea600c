#include "tests/engine/depth/depth_reference.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <sstream>
#include <vector>

namespace {

struct Plane
{
    int w, h;
    std::vector<double> v;

    Plane(int width, int height)
        : w(width)
        , h(height)
        , v(static_cast<std::size_t>(width) * static_cast<std::size_t>(height))
    {
    }
    double& at(int x, int y) { return v[static_cast<std::size_t>(y * w + x)]; }
    double at(int x, int y) const { return v[static_cast<std::size_t>(y * w + x)]; }
};

using Formula = std::function<double(int, int)>;

Plane made(int w, int h, const Formula& formula)
{
    Plane plane(w, h);
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x)
            plane.at(x, y) = formula(x, y);
    return plane;
}

double sampleOf(const zre::Image& img, int c, int x, int y)
{
    return static_cast<double>(img.plane(c)[y * img.width + x]);
}

/// The whole two-dimensional kernel at once.
Plane blurred(const Plane& in, double sigma)
{
    const int r = std::max(1, static_cast<int>(std::ceil(std::sqrt(-2 * std::log(0.01)) * sigma)));
    const auto weight = [&](int i) { return std::exp(-i * i / (2 * sigma * sigma)); };
    return made(in.w, in.h, [&](int x, int y) {
        double sum = 0;
        double weights = 0;
        for (int j = -r; j <= r; ++j)
            for (int i = -r; i <= r; ++i) {
                const double w = weight(i) * weight(j);
                sum += w * in.at(std::clamp(x + i, 0, in.w - 1), std::clamp(y + j, 0, in.h - 1));
                weights += w;
            }
        return sum / weights;
    });
}

Plane guided(const Plane& guide, const Plane& target, double sigma, double eps)
{
    const auto mean = [&](const Formula& f) { return blurred(made(guide.w, guide.h, f), sigma); };
    const Plane mi = blurred(guide, sigma);
    const Plane mp = blurred(target, sigma);
    const Plane mii = mean([&](int x, int y) { return guide.at(x, y) * guide.at(x, y); });
    const Plane mip = mean([&](int x, int y) { return guide.at(x, y) * target.at(x, y); });
    const auto slope = [&](int x, int y) {
        return (mip.at(x, y) - mi.at(x, y) * mp.at(x, y)) /
               (mii.at(x, y) - mi.at(x, y) * mi.at(x, y) + eps);
    };
    const Plane a = mean(slope);
    const Plane b = mean([&](int x, int y) { return mp.at(x, y) - slope(x, y) * mi.at(x, y); });
    return made(guide.w, guide.h,
                [&](int x, int y) { return a.at(x, y) * guide.at(x, y) + b.at(x, y); });
}

double epsilonOf(const zre::ZRParams& p)
{
    const double e = static_cast<double>(p.edgePreservation);
    return e < 0 ? 0.1002 : e > 1 ? 0.0002 : 0.1 * (1 - e) * (1 - e) + 0.0002;
}

Plane lightnessOf(const zre::Image& img)
{
    const auto linear = [](double v) {
        return v <= 0.04045 ? v / 12.92 : std::pow((v + 0.055) / 1.055, 2.4);
    };
    return made(img.width, img.height, [&](int x, int y) {
        double luminance = linear(sampleOf(img, 0, x, y));
        if (img.channels >= 3)
            luminance = 0.2126 * luminance + 0.7152 * linear(sampleOf(img, 1, x, y)) +
                        0.0722 * linear(sampleOf(img, 2, x, y));
        const double f = luminance > 0.008856451679035631
                             ? std::cbrt(luminance)
                             : (903.2962962962963 * luminance + 16) / 116;
        return std::clamp(116 * f - 16, 0.0, 100.0) / 100;
    });
}

/// 99.5th percentile over 1024 bins.
double structureLevel(const Plane& s)
{
    std::vector<int> bins(1024);
    for (const double v : s.v)
        ++bins[static_cast<std::size_t>(std::clamp(std::floor(v * 1024), 0.0, 1023.0))];
    const double target = std::floor(static_cast<double>(s.v.size()) * 0.995);
    double running = 0;
    for (std::size_t bin = 0; bin < bins.size(); ++bin)
        if ((running += bins[bin]) >= target)
            return (static_cast<double>(bin) + 0.5) / 1024;
    return 0;
}

/// The weighted mean of the cues, then smoothing, stretch and gamma.
Plane mixedCues(const zre::Image& img, const Plane& light, const zre::ZRParams& p,
                const zre::DepthInputs& in)
{
    const double wl = p.luminanceEnabled ? static_cast<double>(p.luminanceWeight) : 0;
    const double ws = p.luminanceEnabled ? static_cast<double>(p.structureWeight) : 0;
    const double wa = p.luminanceEnabled && in.aiDepth ? static_cast<double>(p.aiDepthWeight) : 0;
    const double wn =
        p.narrowbandEnabled && img.channels >= 3 ? static_cast<double>(p.narrowbandWeight) : 0;
    const double total = wl + ws + wa + wn;
    if (total == 0)
        return Plane(light.w, light.h);
    const Plane soft = blurred(light, static_cast<double>(p.structureScale));
    const Plane s = made(light.w, light.h,
                         [&](int x, int y) { return std::fabs(light.at(x, y) - soft.at(x, y)); });
    const double level = structureLevel(s);
    Plane depth = made(light.w, light.h, [&](int x, int y) {
        double sum = wl * light.at(x, y) + ws * std::min(1.0, s.at(x, y) / level);
        if (wn > 0) {
            const double near = sampleOf(img, p.nearChannel, x, y);
            sum += wn * near / (near + sampleOf(img, p.farChannel, x, y) + 1e-6);
        }
        if (wa > 0)
            sum += wa * sampleOf(*in.aiDepth, 0, x, y);
        return p.invertDepth ? 1 - sum / total : sum / total;
    });
    if (p.smoothness > 0)
        depth = guided(light, depth, static_cast<double>(p.smoothness), epsilonOf(p));
    const auto [low, high] = std::minmax_element(depth.v.begin(), depth.v.end());
    return made(light.w, light.h, [&, lo = *low, hi = *high](int x, int y) {
        return std::pow((depth.at(x, y) - lo) / (hi - lo), static_cast<double>(p.depthGamma));
    });
}

void paintRows(const zre::Image& img, const Plane& light, const zre::ZRParams& p, Plane& depth)
{
    const Plane before = depth;
    Plane cover(depth.w, depth.h);
    std::istringstream pieces(p.colorDepthEntries);
    for (std::string piece; std::getline(pieces, piece, ';');) {
        int on = 0;
        double r = 0, g = 0, b = 0, tolerance = 0, level = 0;
        char comma = 0;
        std::istringstream(piece) >> on >> comma >> r >> comma >> g >> comma >> b >> comma >>
            tolerance >> comma >> level;
        if (!on)
            continue;
        for (int y = 0; y < depth.h; ++y)
            for (int x = 0; x < depth.w; ++x) {
                const double distance =
                    std::hypot(sampleOf(img, 0, x, y) - r, sampleOf(img, 1, x, y) - g,
                               sampleOf(img, 2, x, y) - b);
                double strength = distance <= 0.0001 ? 1 : 0;
                if (tolerance > 0.0001) {
                    const double t = std::max(0.0, 1 - distance / tolerance);
                    strength = t * t * (3 - 2 * t);
                }
                const double w = strength * static_cast<double>(p.colorDepthWeight);
                depth.at(x, y) = (1 - w) * depth.at(x, y) +
                                 w * std::pow(level, static_cast<double>(p.colorDepthGamma));
                cover.at(x, y) = 1 - (1 - cover.at(x, y)) * (1 - w);
            }
    }
    const auto mix = [&](const Plane& outside, const Plane& inside) {
        depth = made(depth.w, depth.h, [&](int x, int y) {
            return (1 - cover.at(x, y)) * outside.at(x, y) + cover.at(x, y) * inside.at(x, y);
        });
    };
    if (p.colorDepthSmoothness > 0)
        mix(before,
            guided(light, depth, static_cast<double>(p.colorDepthSmoothness), epsilonOf(p)));
    if (p.colorDepthGaussian > 0)
        mix(Plane(depth), blurred(depth, static_cast<double>(p.colorDepthGaussian)));
}

double blend(int mode, double b, double m)
{
    switch (mode) {
    case 1:
        return std::max(b, m);
    case 2:
        return std::min(b, m);
    case 3:
        return std::min(1.0, b + m);
    case 4:
        return std::max(0.0, b - m);
    case 5:
        return 1 - (1 - m) * (1 - b);
    default:
        return m;
    }
}

} // namespace

zre::Image referenceCues(const zre::Image& source, const zre::ZRParams& p,
                         const zre::DepthInputs& in)
{
    const zre::Image& img = p.starInputMode >= 2 && in.starless ? *in.starless : source;
    const Plane light = lightnessOf(img);
    Plane depth = mixedCues(img, light, p, in);
    if (p.colorDepthEnabled && img.channels >= 3)
        paintRows(img, light, p, depth);
    const auto nearest = [&](const zre::Image& map, int x, int y) {
        return sampleOf(map, 0, x * map.width / depth.w, y * map.height / depth.h);
    };
    if (p.starInputMode == 1 && in.starMask)
        depth = made(depth.w, depth.h, [&](int x, int y) {
            const double a = nearest(*in.starMask, x, y) * static_cast<double>(p.starFloatation);
            return a * static_cast<double>(p.starPlane) + (1 - a) * depth.at(x, y);
        });
    if (p.depthMapEnabled && in.externalDepth) {
        Plane map =
            made(depth.w, depth.h, [&](int x, int y) { return nearest(*in.externalDepth, x, y); });
        if (p.paintedSmoothness > 0)
            map = guided(light, map, static_cast<double>(p.paintedSmoothness), epsilonOf(p));
        if (p.paintedGamma != 1)
            for (double& v : map.v)
                v = std::pow(std::clamp(v, 0.0, 1.0), static_cast<double>(p.paintedGamma));
        const double amount = static_cast<double>(p.depthMapBlend);
        depth = made(depth.w, depth.h, [&](int x, int y) {
            const double b = depth.at(x, y);
            return b * (1 - amount) + blend(p.depthMapMode, b, map.at(x, y)) * amount;
        });
    }
    zre::Image out(depth.w, depth.h, 0);
    for (std::size_t i = 0; i < depth.v.size(); ++i)
        out.data[i] = static_cast<float>(depth.v[i]);
    return out;
}
