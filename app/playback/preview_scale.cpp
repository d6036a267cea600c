#include "app/playback/preview_scale.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

double flybyPreviewFraction(int scalePercent, QSize viewport, QSize image)
{
    constexpr int kSmallestView = 120;
    constexpr double kPixelsPerShown = 2.0;
    if (scalePercent >= 1)
        return scalePercent / 100.0;
    if (viewport.width() < kSmallestView || viewport.height() < kSmallestView || image.isEmpty())
        return 1.0;
    const double aspect = double(image.width()) / image.height();
    const double fitted = std::min(viewport.width() / aspect, double(viewport.height()));
    return std::clamp(kPixelsPerShown * fitted / image.height(), 0.05, 1.0);
}

double bucketScaleFor(double fraction, double zoom)
{
    constexpr double kSlack = 1e-9; // a zoom of exactly two is one doubling
    if (!(fraction > 0.0 && fraction < 1.0))
        return 1.0;
    if (!(zoom > 1.0))
        return fraction;
    const double doublings = std::max(0.0, std::ceil(std::log2(zoom) - kSlack));
    return std::min(1.0, std::exp2(doublings) * fraction);
}

int plannedFrames(int frames, QSize size, int ramPercent)
{
    constexpr std::int64_t kPercent = 21474836; // of 2 GiB
    constexpr std::int64_t kBytesPerPixel = 4;
    const std::int64_t each =
        std::max<std::int64_t>(1, std::int64_t(size.width()) * size.height() * kBytesPerPixel);
    const std::int64_t fit = std::max(0, ramPercent) * kPercent / each;
    return static_cast<int>(std::min<std::int64_t>(std::max(0, frames), fit));
}

bool takesMinutes(int done, int planned, double elapsedSeconds)
{
    constexpr int kFramesToJudge = 8;
    constexpr double kSecondsToJudge = 4.0;
    constexpr double kLongSeconds = 120.0;
    return done >= kFramesToJudge && elapsedSeconds >= kSecondsToJudge &&
           elapsedSeconds / done * (planned - done) >= kLongSeconds;
}

int frameIntervalMs(int fps)
{
    constexpr int kUsual = 50;
    return fps > 0 ? std::max(1, 1000 / fps) : kUsual;
}
