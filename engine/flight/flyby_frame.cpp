#include "engine/flight/flyby_frame.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <numbers>

#include "engine/image/multiversion.h"
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

/// Of the pixels of a frame that is not turned.
struct Taps
{
    std::vector<Tap> columns;
    std::vector<Tap> rows;
};

/// Where a turned window lies: its centre and the directions of its axes.
struct Turn
{
    double cosine;
    double sine;
    double centreX;
    double centreY;
};

struct Place
{
    double x;
    double y;
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

/// What `out` holds is unspecified then; its memory is used again.
static void shape(Image& out, int width, int height, int channels)
{
    out.data.resize(static_cast<std::size_t>(width) * static_cast<std::size_t>(height) *
                    static_cast<std::size_t>(channels));
    out.width = width;
    out.height = height;
    out.channels = channels;
    out.colorModel = channels >= 3 ? 1 : 0;
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

ZR_MULTIVERSION static void mixAlong(const float* __restrict line, const Tap* __restrict taps,
                                     std::size_t count, double* __restrict out)
{
    for (std::size_t i = 0; i < count; ++i) {
        const double a = line[taps[i].low];
        const double b = line[taps[i].high];
        out[i] = a + (b - a) * taps[i].part;
    }
}

ZR_MULTIVERSION static void mixAcross(const double* __restrict upper,
                                      const double* __restrict lower, double part,
                                      std::size_t count, float* __restrict out)
{
    for (std::size_t i = 0; i < count; ++i)
        out[i] = static_cast<float>(upper[i] + (lower[i] - upper[i]) * part);
}

/// Each line of the eye is mixed along once, for all the rows that show it.
static void showWindow(const Image& eye, const Taps& taps, Image& out)
{
    const auto stride = static_cast<std::size_t>(eye.width);
    const std::size_t count = taps.columns.size();
    std::vector<double> upper(count);
    std::vector<double> lower(count);
    for (int c = 0; c < std::min(out.channels, eye.channels); ++c) {
        float* target = out.plane(c);
        std::int32_t upperRow = -1;
        std::int32_t lowerRow = -1;
        const auto lay = [&](std::int32_t row, std::vector<double>& line) {
            mixAlong(eye.plane(c) + stride * static_cast<std::size_t>(row), taps.columns.data(),
                     count, line.data());
            return row;
        };
        for (const Tap& row : taps.rows) {
            if (row.low == lowerRow) {
                upper.swap(lower);
                std::swap(upperRow, lowerRow);
            }
            if (row.low != upperRow)
                upperRow = lay(row.low, upper);
            if (row.high != lowerRow)
                lowerRow = lay(row.high, lower);
            mixAcross(upper.data(), lower.data(), row.part, count, target);
            target += count;
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

static Turn turnOf(const Window& window, double rollDeg)
{
    const double roll = rollDeg * std::numbers::pi / 180.0;
    return {std::cos(roll), std::sin(roll), window.left + window.width / 2.0,
            window.top + window.height / 2.0};
}

/// Where in the eye an output pixel lies.
static Place placeOf(const Turn& turn, const Window& window, const Image& out, int x, int y)
{
    const double u = ((x + 0.5) / out.width - 0.5) * window.width;
    const double v = ((y + 0.5) / out.height - 0.5) * window.height;
    return {turn.cosine * u - turn.sine * v + turn.centreX - 0.5,
            turn.sine * u + turn.cosine * v + turn.centreY - 0.5};
}

static void showTurnedWindow(const Image& eye, const Window& window, const Turn& turn,
                             bool reachesOver, Image& out)
{
    const Image beyond = reachesOver ? smallCopy(eye) : Image();
    const double scaleX = double(beyond.width) / eye.width;
    const double scaleY = double(beyond.height) / eye.height;
    std::size_t pixel = 0;
    for (int y = 0; y < out.height; ++y) {
        for (int x = 0; x < out.width; ++x, ++pixel) {
            const Place at = placeOf(turn, window, out, x, y);
            const bool inside =
                at.x >= 0.0 && at.x <= eye.width - 1 && at.y >= 0.0 && at.y <= eye.height - 1;
            if (inside || !beyond.usable())
                samplePixel(eye, at.x, at.y, pixel, out);
            else
                samplePixel(beyond, (at.x + 0.5) * scaleX - 0.5, (at.y + 0.5) * scaleY - 0.5, pixel,
                            out);
        }
    }
}

/// What a frame that is not turned shows of the eye.
static EyeWindow shownBy(const Taps& taps)
{
    return {taps.columns.front().low, taps.rows.front().low, taps.columns.back().high + 1,
            taps.rows.back().high + 1};
}

/// What a turned frame shows of the eye, with a margin for the rounding of its places.
static EyeWindow shownBy(const Turn& turn, const Window& window, const Image& out)
{
    constexpr double kMargin = 2.0;
    constexpr double kMost = 1e9;
    EyeWindow shown{int(kMost), int(kMost), -int(kMost), -int(kMost)};
    for (const int x : {0, out.width - 1})
        for (const int y : {0, out.height - 1}) {
            const Place at = placeOf(turn, window, out, x, y);
            const auto bound = [&](double place) {
                return static_cast<int>(std::isfinite(place) ? std::clamp(place, -kMost, kMost)
                                                             : -kMost);
            };
            shown.left = std::min(shown.left, bound(std::floor(at.x) - kMargin));
            shown.top = std::min(shown.top, bound(std::floor(at.y) - kMargin));
            shown.right = std::max(shown.right, bound(std::ceil(at.x) + kMargin) + 1);
            shown.bottom = std::max(shown.bottom, bound(std::ceil(at.y) + kMargin) + 1);
        }
    return shown;
}

/// The eye with its stars, as far as the window needs it.
static void drawEye(const Image& image, const Image& depth, const FlybyCamera& cam, Offset offset,
                    double convergence, const ZRParams& p, const std::vector<Star>* stars,
                    const Image* starsImage, const Image* starsDepth, const EyeWindow& shown,
                    FlybyScratch& scratch)
{
    shape(scratch.eye, image.width, image.height, image.channels);
    Image* const displaced = p.starOcclusion > 0.0f ? &scratch.displacedDepth : nullptr;
    renderEyeWindow(image, depth, scratch.eye, double(p.parallaxAmount), convergence, offset.x,
                    offset.y, double(p.maxDisparity), cam.warp, cam.cx, cam.cy, cam.warp != 0.0,
                    shown, displaced);
    addStars(cam, offset, convergence, p, displaced, stars, starsImage, starsDepth, scratch.eye);
}

void renderFlybyFrame(const Image& image, const Image& depth, const FlybyCamera& cam,
                      bool ongoingWiggle, double convergence, const ZRParams& p, Image& out,
                      const std::vector<Star>* stars, const Image* starsImage,
                      const Image* starsDepth, double offsetX, int outW, int outH,
                      FlybyScratch* scratch)
{
    if (!image.usable() || !depth.usable() || !depth.sameSize(image))
        return;
    FlybyScratch own;
    FlybyScratch& memory = scratch ? *scratch : own;
    Offset offset = wiggleOffset(cam, ongoingWiggle, p);
    offset.x += offsetX;
    const Window window = windowOf(cam, p, depth.width, depth.height);
    const auto sizeOr = [](int wanted, double size) {
        return wanted >= 1 ? wanted : std::max(1, static_cast<int>(size + 0.5));
    };
    shape(out, sizeOr(outW, window.width), sizeOr(outH, window.height),
          image.channels >= 3 ? 3 : 1);
    const auto draw = [&](const EyeWindow& shown) {
        drawEye(image, depth, cam, offset, convergence, p, stars, starsImage, starsDepth, shown,
                memory);
    };
    if (cam.roll == 0.0) {
        const Taps taps{tapsOf(out.width, window.left, window.width, image.width),
                        tapsOf(out.height, window.top, window.height, image.height)};
        draw(shownBy(taps));
        showWindow(memory.eye, taps, out);
    } else {
        const Turn turn = turnOf(window, cam.roll);
        const EyeWindow shown = shownBy(turn, window, out);
        const bool reachesOver = shown.left < 0 || shown.top < 0 || shown.right > image.width ||
                                 shown.bottom > image.height;
        draw(reachesOver ? EyeWindow{0, 0, image.width, image.height} : shown);
        showTurnedWindow(memory.eye, window, turn, reachesOver, out);
    }
    applyPost(out, p);
}

} // namespace zre
