#include "app/export/spatial_video.h"

#include <algorithm>
#include <cmath>

#include "app/export/video_plan.h"
#include "app/export/vr180.h"

QStringList spatialArguments(SpatialKind kind)
{
    if (kind == SpatialKind::Apple)
        return {};
    return {"-metadata:s:v:0", "stereo_mode=left_right"};
}

static int even(double side)
{
    return std::max(2, static_cast<int>(std::lround(side / 2.0)) * 2);
}

QSize spatialTarget(QSize packed, int width)
{
    if (width <= 0 || packed.width() <= width)
        return {};
    // Each eye's half is even, too: the boundary of the eyes falls between two colour samples.
    const int wide = std::max(4, width / 4 * 4);
    return {wide, even(static_cast<double>(packed.height()) * wide / packed.width())};
}

QSize spatialTargetIn(QSize frame, QSize box)
{
    if (box.isEmpty())
        return {};
    const QSize eye = frame.scaled(box, Qt::KeepAspectRatio).boundedTo(frame);
    return {std::max(4, eye.width() / 2 * 4), std::max(2, eye.height() / 2 * 2)};
}

bool injectSpatial(SpatialKind kind, const QString& path)
{
    constexpr double kFieldDegrees = 90.0;
    constexpr double kBaselineMm = 63.0;
    const std::string name = path.toStdString();
    return kind == SpatialKind::Vr180
               ? vr180::injectSpatialMediaMp4(name)
               : vr180::injectAppleSpatialMp4(name, kFieldDegrees, kBaselineMm, true);
}

QStringList loopedStillArguments(const QString& frame, int seconds, QSize target,
                                 const QStringList& extra, const QString& path)
{
    const QString scale =
        target.isEmpty()
            ? QStringLiteral("scale=trunc(iw/2)*2:trunc(ih/2)*2")
            : QString("scale=%1:%2:flags=lanczos").arg(target.width()).arg(target.height());
    // The way from one matrix and range straight to another rounds down: greys would turn green.
    return QStringList{"-y", "-loop", "1", "-t", QString::number(seconds), "-i", frame}
           << h264Arguments(scale + ",format=gbrp") << extra << path;
}
