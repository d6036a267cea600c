#include "app/mainwindow/readout.h"

#include <cmath>

#include "app/session/session.h"
#include "app/session/sky_text.h"

static constexpr int kPairView = 3;

std::optional<QPointF> placeInSource(const Session& session, QPointF inPicture)
{
    const int width = session.source.width;
    const int height = session.source.height;
    double x = inPicture.x();
    if (session.outputMode == kPairView && x >= width)
        x -= width;
    const bool inside = x >= 0.0 && x < width && inPicture.y() >= 0.0 && inPicture.y() < height;
    return session.hasSource() && inside ? std::optional(QPointF(x, inPicture.y())) : std::nullopt;
}

static QString sample(const zre::Image& image, int channel, std::size_t pixel)
{
    return QString::number(static_cast<double>(image.plane(channel)[pixel]), 'f', 4);
}

QString readoutText(const Session& session, const zre::Image* depth, QPointF inPicture)
{
    const std::optional<QPointF> place = placeInSource(session, inPicture);
    if (!place)
        return {};
    const zre::Image& source = session.source;
    const int x = static_cast<int>(place->x());
    const int y = static_cast<int>(place->y());
    const std::size_t pixel = static_cast<std::size_t>(y) * static_cast<std::size_t>(source.width) +
                              static_cast<std::size_t>(x);
    QString text = QString("%1, %2   ").arg(x).arg(y);
    if (source.channels >= 3)
        text +=
            QString("R %1 G %2 B %3")
                .arg(sample(source, 0, pixel), sample(source, 1, pixel), sample(source, 2, pixel));
    else
        text += sample(source, 0, pixel);
    if (depth && depth->sameSize(source))
        text += "   depth " + sample(*depth, 0, pixel);
    double ra = 0.0;
    double dec = 0.0;
    if (session.wcs.valid && session.wcs.imageToCelestial(place->x(), place->y(), ra, dec))
        text += QString("   RA %1 Dec %2").arg(sexagesimalRa(ra), sexagesimalDec(dec));
    return text;
}
