#include "app/export/video_plan.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <utility>

#include "engine/image/raster.h"

static const QString kEvenCrop = QStringLiteral("crop=trunc(iw/2)*2:trunc(ih/2)*2");

// High definition is decoded by the matrix of BT.709, so it has to be made by it, too.
static const QString kMatrix = QStringLiteral(",scale=out_color_matrix=bt709:out_range=limited");

int stereoFormatFor(int format, int stereo3d)
{
    return format == kGif && stereo3d >= kSideBySide ? kAnaglyph : stereo3d;
}

QSize packedSize(int stereo3d, QSize frame)
{
    switch (stereo3d) {
    case kSideBySide:
        return {frame.width() * 2, frame.height()};
    case kHalfSideBySide:
        return {frame.width() / 2 * 2, frame.height()};
    case kTopBottom:
        return {frame.width(), frame.height() / 2 * 2};
    default:
        return frame;
    }
}

QString videoSizeObstacle(QSize video, const QString& cure)
{
    if (video.width() < 2 || video.height() < 2)
        return "A video has at least 2 pixels a side.";
    if (std::max(video.width(), video.height()) > kLongestVideoSide)
        return QString("A video has at most %1 pixels a side: choose a smaller %2.")
            .arg(kLongestVideoSide)
            .arg(cure);
    return {};
}

bool VideoFit::partsEyes(int stereo3d) const
{
    constexpr int kNoticed = 100; // a part of the side that large
    const QSize margins = video - picture;
    if (stereo3d == kTopBottom)
        return margins.height() > video.height() / kNoticed;
    return stereo3d != kFlat && stereo3d != kAnaglyph && margins.width() > video.width() / kNoticed;
}

static int evenSide(double side)
{
    return std::max(2, static_cast<int>(std::lround(side)) / 2 * 2);
}

VideoFit videoFit(const VideoPlan& plan)
{
    const QSize packed = packedSize(plan.stereo3d, plan.frame);
    if (plan.box.isEmpty()) {
        const QSize size(packed.width() / 2 * 2, packed.height() / 2 * 2);
        return {size, size, false};
    }
    const int boxWidth = evenSide(plan.box.width()) * (plan.stereo3d == kSideBySide ? 2 : 1);
    const int boxHeight = evenSide(plan.box.height());
    const double factor = std::min(static_cast<double>(boxHeight) / packed.height(),
                                   static_cast<double>(boxWidth) / packed.width());
    const double scale = std::min(factor, 1.0);
    return {{evenSide(packed.width() * scale), evenSide(packed.height() * scale)},
            {boxWidth, boxHeight},
            factor < 0.999};
}

void fitFrame(const VideoFit& fit, zre::Image& frame)
{
    zre::Image picture;
    zre::areaResample(frame, fit.picture.width(), fit.picture.height(), picture);
    if (fit.picture == fit.video) {
        frame = std::move(picture);
        return;
    }
    frame = zre::Image(fit.video.width(), fit.video.height(), picture.colorModel);
    const int left = (frame.width - picture.width) / 2;
    const int top = (frame.height - picture.height) / 2;
    for (int c = 0; c < frame.channels; ++c)
        for (int y = 0; y < picture.height; ++y) {
            const float* const row = picture.plane(c) + std::ptrdiff_t{y} * picture.width;
            std::copy(row, row + picture.width,
                      frame.plane(c) + std::ptrdiff_t{top + y} * frame.width + left);
        }
}

QString videoFilter(const VideoPlan& plan)
{
    if (plan.box.isEmpty())
        return kEvenCrop;
    const VideoFit fit = videoFit(plan);
    const bool meansKeepStars = fit.isScaled && plan.hasStars;
    return QString("scale=%1:%2:flags=%3,pad=%4:%5:%6:%7:color=black")
        .arg(fit.picture.width())
        .arg(fit.picture.height())
        .arg(meansKeepStars ? "area" : "lanczos")
        .arg(fit.video.width())
        .arg(fit.video.height())
        .arg((fit.video.width() - fit.picture.width()) / 2)
        .arg((fit.video.height() - fit.picture.height()) / 2);
}

static QStringList rawInput(QSize packed, int fps)
{
    return {"-y",
            "-f",
            "rawvideo",
            "-pix_fmt",
            "rgb24",
            "-s",
            QString("%1x%2").arg(packed.width()).arg(packed.height()),
            "-r",
            QString::number(fps),
            "-i",
            "-"};
}

QStringList h264Arguments(const QString& filter)
{
    return {"-vf",
            filter + kMatrix,
            "-c:v",
            "libx264",
            "-pix_fmt",
            "yuv420p",
            "-crf",
            "18",
            "-preset",
            "medium",
            "-color_primaries",
            "bt709",
            "-color_trc",
            "bt709",
            "-colorspace",
            "bt709",
            "-color_range",
            "tv"};
}

QStringList encoderArguments(const VideoPlan& plan, const QString& path)
{
    const QString filter = videoFilter(plan);
    QStringList arguments = rawInput(packedSize(plan.stereo3d, plan.frame), plan.fps);
    if (plan.format == kGif)
        arguments << "-vf"
                  << filter + ",split[a][b];[a]palettegen=stats_mode=diff[p];[b][p]paletteuse="
                              "dither=bayer:bayer_scale=3";
    else
        arguments << h264Arguments(filter);
    return arguments << path;
}

QStringList sideBySideArguments(QSize packed, QSize target, int fps, const QStringList& extra,
                                const QString& path)
{
    const QString filter =
        target.isEmpty()
            ? kEvenCrop
            : QString("scale=%1:%2:flags=lanczos").arg(target.width()).arg(target.height());
    return rawInput(packed, fps) << h264Arguments(filter) << extra << path;
}

int frameBatch(QSize packed, int frames)
{
    constexpr qint64 kBatchBytes = 268435456;
    const qint64 bytes = packed.isEmpty() ? 0 : qint64{packed.width()} * packed.height() * 3;
    const qint64 fitting = bytes > 0 ? std::clamp<qint64>(kBatchBytes / bytes, 4, 128) : 64;
    return static_cast<int>(std::min<qint64>(fitting, frames));
}
