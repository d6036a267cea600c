#include "app/session/carry_over.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "app/session/session.h"
#include "engine/flight/flight3d_path.h"
#include "engine/flight/flyby_script.h"
#include "engine/image/raster.h"

static constexpr double kLargestAspectChange = 0.01;
static constexpr int kSmallestFrameSide = 16;

bool hasPixelPath(const Session& session)
{
    return !session.flybyScript.trimmed().isEmpty() &&
           !zre::isFlight3DScript(session.flybyScript.toStdString());
}

QStringList losableItems(const Session& session)
{
    QStringList items;
    if (session.externalDepth.usable())
        items << "the external depth map, resampled";
    return items;
}

QStringList carryableItems(const Session& session)
{
    QStringList items = losableItems(session);
    if (hasPixelPath(session))
        items << "the flyby path, rescaled to the new pixel size";
    return items;
}

bool sameProportions(QSize oldSize, QSize newSize)
{
    if (oldSize.isEmpty() || newSize.isEmpty())
        return false;
    const double oldAspect = double(oldSize.width()) / oldSize.height();
    const double newAspect = double(newSize.width()) / newSize.height();
    return std::abs(newAspect - oldAspect) <= kLargestAspectChange * oldAspect;
}

static QString bulleted(const QString& heading, const QStringList& items)
{
    QString text = "\n\n" + heading;
    for (const QString& item : items)
        text += "\n    - " + item;
    return text;
}

QString carryOverQuestion(QSize oldSize, QSize newSize, const QStringList& items)
{
    const double scale = double(newSize.width()) / oldSize.width();
    const QString text =
        QString("The new images are %1 x %2 px, the same proportions as the current "
                "%3 x %4 px at %5x the scale.")
            .arg(newSize.width())
            .arg(newSize.height())
            .arg(oldSize.width())
            .arg(oldSize.height())
            .arg(QString::number(scale, 'g', 3));
    return text + bulleted("This can be carried over:", items);
}

QString lossQuestion(QSize oldSize, QSize newSize, const QStringList& items)
{
    QStringList lost;
    for (const QString& item : items)
        lost << item.section(", re", 0, 0); // without how it would have been brought along
    return QString("The new images are %1 x %2 px, of other proportions than the current %3 x %4 "
                   "px.")
               .arg(newSize.width())
               .arg(newSize.height())
               .arg(oldSize.width())
               .arg(oldSize.height()) +
           bulleted("This is lost:", lost);
}

/// A side of the flight's frame; 0 means the image's own and stays.
static int rescaledSide(int side, double scale, int largest)
{
    if (side <= 0)
        return side;
    const double rescaled = std::floor(side * scale + 0.5);
    return std::max(kSmallestFrameSide, static_cast<int>(std::min<double>(rescaled, largest)));
}

void rescaleFlybyPath(Session& session, QSize oldSize, QSize newSize)
{
    if (session.flybyScript.isEmpty() || oldSize.isEmpty() || newSize.isEmpty())
        return;
    if (hasPixelPath(session))
        session.flybyScript = QString::fromStdString(zre::scaleFlybyScriptCoords(
            session.flybyScript.toStdString(), double(newSize.width()) / oldSize.width(),
            double(newSize.height()) / oldSize.height()));
    session.flybyScriptSize = newSize;
}

bool flybyPathMisfits(const Session& session, QSize image)
{
    return hasPixelPath(session) && !session.flybyScriptSize.isEmpty() &&
           session.flybyScriptSize != image;
}

QString flybyRescaleQuestion(const Session& session, QSize image)
{
    return QString("The image is now %1 x %2 px, but the flyby path was built for a %3 x %4 px "
                   "image.\n\nRescale the path (and script) to the new image size?")
        .arg(image.width())
        .arg(image.height())
        .arg(session.flybyScriptSize.width())
        .arg(session.flybyScriptSize.height());
}

void rescaleSession(Session& session, QSize oldSize, QSize newSize)
{
    if (oldSize.isEmpty() || newSize.isEmpty())
        return;
    const double scaleX = double(newSize.width()) / oldSize.width();
    const double scaleY = double(newSize.height()) / oldSize.height();
    zre::ZRParams& params = session.params;
    params.flybyFrameW = rescaledSide(params.flybyFrameW, scaleX, newSize.width());
    params.flybyFrameH = rescaledSide(params.flybyFrameH, scaleY, newSize.height());
    for (zre::StarErasure& erasure : params.starErasures) {
        erasure.x *= scaleX;
        erasure.y *= scaleY;
    }
    rescaleFlybyPath(session, oldSize, newSize);

    const zre::Image& map = session.externalDepth;
    if (!map.usable() || QSize(map.width, map.height) == newSize)
        return;
    zre::Image resampled;
    zre::areaResample(map, newSize.width(), newSize.height(), resampled);
    session.installExternalDepth(session.depthMapPath, std::move(resampled));
}

void startFresh(Session& session)
{
    session.installExternalDepth({}, {});
    session.params.starErasures.clear();
}
