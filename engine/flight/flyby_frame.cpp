#include "engine/flight/flyby_frame.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <numbers>

#include "engine/image/raster.h"
#include "engine/post/post.h"
#include "engine/stars/star_sprites.h"
#include "engine/stereo/eye.h"

namespace zre {

namespace {

/// Where the viewpoint stands, in eye units.
struct Offset
{
    double x = 0.0;
    double y = 0.0;
};

/// The part of the eye that a frame shows, in pixels.
struct Window
{
    double left = 0.0;
    double top = 0.0;
    double width = 0.0;
    double height = 0.0;
};

/// Between which two samples of a line a place lies.
struct Tap
{
    std::int32_t low = 0;
    std::int32_t high = 0;
    double part = 0.0; ///< of the way from the lower to the higher
};

} // namespace

static Offset wiggleOffset(const FlybyCamera& cam, bool ongoingWiggle, const ZRParams& p)
{
    constexpr double kInherited = -1e8;
    const double inherited = ongoingWiggle ? double(p.wiggleAmplitude) : 0.0;
    const double amp = cam.amp >= 0.0 ? cam.amp : inherited;
    const double swayDeg = cam.sway > kInherited ? cam.sway : double(p.wigglePathAngle);
    const double sway = swayDeg * std::numbers::pi / 180.0;
    const double swing = std::sin(cam.phase);
    Offset offset{swing * amp * std::cos(sway), swing * amp * std::sin(sway)};
    if (p.wiggleCircular)
        offset = {std::cos(cam.phase) * amp, swing * amp};
    return p.swapEyes ? Offset{-offset.x, -offset.y} : offset;
}

static void addStars(const FlybyCamera& cam, Offset offset, double convergence, const ZRParams& p,
                     const Image* displacedDepth, const std::vector<Star>* stars,
                     const Image* starsImage, const Image* starsDepth, Image& eye)
{
    const double parallax = double(p.parallaxAmount);
    const double maxDisparity = double(p.maxDisparity);
    if (starsImage && starsDepth && starsImage->usable())
        compositeStarsImage(*starsImage, *starsDepth, eye, parallax, convergence, offset.x,
                            offset.y, maxDisparity, cam.warp, cam.cx, cam.cy, displacedDepth,
                            p.starOcclusion);
    else if (stars && !stars->empty())
        drawStarSprites(*stars, eye, parallax, convergence, offset.x, offset.y, maxDisparity,
                        cam.warp, cam.cx, cam.cy, displacedDepth, p.starOcclusion);
}

/// One side of the window: its start and length, kept within the image.
static void fitSide(double centre, double length, int size, double& start, double& extent)
{
    start = 0.0;
    extent = size;
    if (!(length > 0.0 && length < size))
        return;
    extent = length;
    const double wanted = centre - length / 2.0;
    start = wanted > 0.0 ? std::min(wanted, size - length) : 0.0;
}

static Window windowOf(const FlybyCamera& cam, const ZRParams& p, int width, int height)
{
    const auto view = [](int frame, int size) {
        return double(frame >= 1 && frame <= size ? frame : size);
    };
    Window window;
    fitSide(cam.cx, view(p.flybyFrameW, width) / cam.zoom, width, window.left, window.width);
    fitSide(cam.cy, view(p.flybyFrameH, height) / cam.zoom, height, window.top, window.height);
    return window;
}

static void shape(Image& out, int width, int height, int channels)
{
    if (out.width == width && out.height == height && out.channels == channels)
        return;
    out = Image(width, height, channels >= 3 ? 1 : 0);
}

/// The two samples about `place` on a line of `size`, each bound to the line.
static Tap tapAt(double place, int size)
{
    const double below = std::floor(place);
    const double bound = below > -1.0 ? std::min(below, double(size)) : -1.0; // a NaN, too
    const auto index = static_cast<std::int32_t>(bound);
    return {std::clamp(index, 0, size - 1), std::clamp(index + 1, 0, size - 1),
            std::isfinite(place) ? place - below : 0.0};
}

static double mix(const float* upper, const float* lower, const Tap& x, double part)
{
    const double a = upper[x.low];
    const double b = upper[x.high];
    const double c = lower[x.low];
    const double d = lower[x.high];
    const double top = a + (b - a) * x.part;
    const double bottom = c + (d - c) * x.part;
    return top + (bottom - top) * part;
}

/// The taps of a line of `count` output pixels that shows `length` samples from `start` on.
static std::vector<Tap> tapsOf(int count, double start, double length, int size)
{
    std::vector<Tap> taps(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i)
        taps[static_cast<std::size_t>(i)] = tapAt((i + 0.5) / count * length + start - 0.5, size);
    return taps;
}

static void showWindow(const Image& eye, const Window& window, Image& out)
{
    const std::vector<Tap> columns = tapsOf(out.width, window.left, window.width, eye.width);
    const std::vector<Tap> rows = tapsOf(out.height, window.top, window.height, eye.height);
    const auto stride = static_cast<std::size_t>(eye.width);
    for (int c = 0; c < std::min(out.channels, eye.channels); ++c) {
        float* target = out.plane(c);
        for (const Tap& row : rows) {
            const float* upper = eye.plane(c) + stride * static_cast<std::size_t>(row.low);
            const float* lower = eye.plane(c) + stride * static_cast<std::size_t>(row.high);
            for (const Tap& column : columns)
                *target++ = static_cast<float>(mix(upper, lower, column, row.part));
        }
    }
}

/// A copy of a few pixels, whose soft colours go on beyond the edges that a turned window uncovers.
static Image smallCopy(const Image& eye)
{
    constexpr int kLongest = 48;
    const int longest = std::max(eye.width, eye.height);
    const double scale = longest > kLongest ? double(kLongest) / longest : 0.5;
    const auto side = [&](int size) { return std::max(1, static_cast<int>(size * scale + 0.5)); };
    Image copy;
    areaResample(eye, side(eye.width), side(eye.height), copy);
    return copy;
}

static void samplePixel(const Image& from, double x, double y, std::size_t pixel, Image& out)
{
    const Tap column = tapAt(x, from.width);
    const Tap row = tapAt(y, from.height);
    const auto stride = static_cast<std::size_t>(from.width);
    for (int c = 0; c < std::min(out.channels, from.channels); ++c) {
        const float* plane = from.plane(c);
        out.plane(c)[pixel] = static_cast<float>(
            mix(plane + stride * static_cast<std::size_t>(row.low),
                plane + stride * static_cast<std::size_t>(row.high), column, row.part));
    }
}

static void showTurnedWindow(const Image& eye, const Window& window, double rollDeg, Image& out)
{
    const Image beyond = smallCopy(eye);
    const double roll = rollDeg * std::numbers::pi / 180.0;
    const double cosine = std::cos(roll);
    const double sine = std::sin(roll);
    const double centreX = window.left + window.width / 2.0;
    const double centreY = window.top + window.height / 2.0;
    const double scaleX = double(beyond.width) / eye.width;
    const double scaleY = double(beyond.height) / eye.height;
    std::size_t pixel = 0;
    for (int y = 0; y < out.height; ++y) {
        const double v = ((y + 0.5) / out.height - 0.5) * window.height;
        for (int x = 0; x < out.width; ++x, ++pixel) {
            const double u = ((x + 0.5) / out.width - 0.5) * window.width;
            const double sx = cosine * u - sine * v + centreX - 0.5;
            const double sy = sine * u + cosine * v + centreY - 0.5;
            const bool inside =
                sx >= 0.0 && sx <= eye.width - 1 && sy >= 0.0 && sy <= eye.height - 1;
            if (inside || !beyond.usable())
                samplePixel(eye, sx, sy, pixel, out);
            else
                samplePixel(beyond, (sx + 0.5) * scaleX - 0.5, (sy + 0.5) * scaleY - 0.5, pixel,
                            out);
        }
    }
}

void renderFlybyFrame(const Image& image, const Image& depth, const FlybyCamera& cam,
                      bool ongoingWiggle, double convergence, const ZRParams& p, Image& out,
                      const std::vector<Star>* stars, const Image* starsImage,
                      const Image* starsDepth, double offsetX, int outW, int outH)
{
    if (!image.usable() || !depth.usable() || !depth.sameSize(image))
        return;
    Offset offset = wiggleOffset(cam, ongoingWiggle, p);
    offset.x += offsetX;
    Image eye = image;
    Image displacedDepth;
    Image* const displaced = p.starOcclusion > 0.0f ? &displacedDepth : nullptr;
    renderEye(image, depth, eye, double(p.parallaxAmount), convergence, offset.x, offset.y,
              double(p.maxDisparity), cam.warp, cam.cx, cam.cy, cam.warp != 0.0, displaced);
    addStars(cam, offset, convergence, p, displaced, stars, starsImage, starsDepth, eye);
    const Window window = windowOf(cam, p, depth.width, depth.height);
    const auto sizeOr = [](int wanted, double size) {
        return wanted >= 1 ? wanted : std::max(1, static_cast<int>(size + 0.5));
    };
    shape(out, sizeOr(outW, window.width), sizeOr(outH, window.height), eye.channels);
    if (cam.roll == 0.0)
        showWindow(eye, window, out);
    else
        showTurnedWindow(eye, window, cam.roll, out);
    applyPost(out, p);
}

} // namespace zre
