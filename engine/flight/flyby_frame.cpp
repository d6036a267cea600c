#include "engine/flight/flyby_frame.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <numbers>

#include "engine/flight/window_view.h"
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
        const Taps taps = tapsOf(window, image, out);
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
