#include "tools/render/solution_report.h"

#include <cmath>
#include <numbers>

#include <QJsonArray>

#include "app/session/sky_text.h"

namespace zrrender {

namespace {

constexpr double kRadians = std::numbers::pi / 180.0;

using Vector = std::array<double, 3>;

Vector direction(const SkyPoint& p)
{
    const double ra = p.raDeg * kRadians;
    const double dec = p.decDeg * kRadians;
    return {std::cos(dec) * std::cos(ra), std::cos(dec) * std::sin(ra), std::sin(dec)};
}

double dot(const Vector& a, const Vector& b)
{
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

Vector difference(const Vector& a, const Vector& b)
{
    return {a[0] - b[0], a[1] - b[1], a[2] - b[2]};
}

/// By the chord, which keeps its precision at small angles.
double angleDeg(const SkyPoint& a, const SkyPoint& b)
{
    const Vector chord = difference(direction(a), direction(b));
    return 2.0 * std::asin(std::min(1.0, 0.5 * std::sqrt(dot(chord, chord)))) / kRadians;
}

std::optional<SkyPoint> skyAt(const zre::Wcs& wcs, double x, double y)
{
    SkyPoint p;
    if (!wcs.imageToCelestial(x, y, p.raDeg, p.decDeg))
        return std::nullopt;
    return p;
}

/// Length of the line from `a` over the centre to `b`.
std::optional<double> across(const std::optional<SkyPoint>& a, const SkyPoint& centre,
                             const std::optional<SkyPoint>& b)
{
    if (!a || !b)
        return std::nullopt;
    return angleDeg(*a, centre) + angleDeg(centre, *b);
}

struct Step
{
    double east = 0.0;
    double north = 0.0;
};

/// How the sky moves from `from` to `to`, on the tangent plane at `centre`.
Step stepOnSky(const SkyPoint& centre, const SkyPoint& from, const SkyPoint& to)
{
    const double ra = centre.raDeg * kRadians;
    const double dec = centre.decDeg * kRadians;
    const Vector east{-std::sin(ra), std::cos(ra), 0.0};
    const Vector north{-std::sin(dec) * std::cos(ra), -std::sin(dec) * std::sin(ra), std::cos(dec)};
    const Vector moved = difference(direction(to), direction(from));
    return {dot(moved, east), dot(moved, north)};
}

constexpr std::array kCornerNames{"topLeft", "topRight", "bottomRight", "bottomLeft"};
constexpr std::array kCornerLabels{"top left", "top right", "bottom right", "bottom left"};

QString degrees(double value)
{
    return QString::number(value, 'f', 6);
}

QJsonValue toJson(const std::optional<SkyPoint>& point)
{
    return point ? QJsonValue(QJsonObject{{"ra", point->raDeg}, {"dec", point->decDeg}})
                 : QJsonValue();
}

QJsonValue toJson(const std::optional<double>& value)
{
    return value ? QJsonValue(*value) : QJsonValue();
}

QString line(const char* label, const QString& text)
{
    return QStringLiteral("%1%2\n").arg(QLatin1String(label), -14).arg(text);
}

QString place(const SkyPoint& p)
{
    return QStringLiteral("%1 %2 deg, %3 %4")
        .arg(degrees(p.raDeg), degrees(p.decDeg), sexagesimalRa(p.raDeg), sexagesimalDec(p.decDeg));
}

} // namespace

std::optional<SolutionReport> describeSolution(const zre::Wcs& wcs, int width, int height)
{
    const double right = width;
    const double bottom = height;
    const double x = 0.5 * right;
    const double y = 0.5 * bottom;
    const auto centre = skyAt(wcs, x, y);
    const auto left1 = skyAt(wcs, x - 0.5, y);
    const auto right1 = skyAt(wcs, x + 0.5, y);
    const auto up1 = skyAt(wcs, x, y - 0.5);
    const auto down1 = skyAt(wcs, x, y + 0.5);
    if (!wcs.valid || !centre || !left1 || !right1 || !up1 || !down1)
        return std::nullopt;

    SolutionReport report;
    report.centre = *centre;
    report.scaleArcsec = wcs.resolutionArcsec;
    const Step alongX = stepOnSky(*centre, *left1, *right1);
    const Step upwards = stepOnSky(*centre, *down1, *up1);
    report.upDeg = std::atan2(upwards.east, upwards.north) / kRadians;
    // Looking up at the sky with north up, east is on the left.
    report.mirrored = alongX.east * upwards.north - alongX.north * upwards.east > 0.0;
    report.widthDeg = across(skyAt(wcs, 0.0, y), *centre, skyAt(wcs, right, y));
    report.heightDeg = across(skyAt(wcs, x, 0.0), *centre, skyAt(wcs, x, bottom));
    report.corners = {skyAt(wcs, 0.0, 0.0), skyAt(wcs, right, 0.0), skyAt(wcs, right, bottom),
                      skyAt(wcs, 0.0, bottom)};
    return report;
}

QJsonObject toJson(const SolutionReport& report)
{
    QJsonObject corners;
    for (std::size_t i = 0; i < kCornerNames.size(); ++i)
        corners.insert(QLatin1String(kCornerNames[i]), toJson(report.corners[i]));
    return {{"centre", toJson(std::optional(report.centre))},
            {"ra", sexagesimalRa(report.centre.raDeg)},
            {"dec", sexagesimalDec(report.centre.decDeg)},
            {"scaleArcsecPerPixel", report.scaleArcsec},
            {"upPositionAngleDeg", report.upDeg},
            {"mirrored", report.mirrored},
            {"fieldWidthDeg", toJson(report.widthDeg)},
            {"fieldHeightDeg", toJson(report.heightDeg)},
            {"corners", corners}};
}

QString toText(const SolutionReport& report)
{
    const auto field = [](const std::optional<double>& length) {
        return length ? degrees(*length) : QStringLiteral("beyond the sky");
    };
    QString text = line("centre", place(report.centre));
    text += line("scale", QString::number(report.scaleArcsec, 'f', 4) + " arcsec/px");
    text += line("up", QString::number(report.upDeg, 'f', 3) + " deg from north through east");
    text += line("parity", report.mirrored ? "mirrored" : "normal (north up puts east left)");
    text += line("field", field(report.widthDeg) + " x " + field(report.heightDeg) + " deg");
    for (std::size_t i = 0; i < kCornerLabels.size(); ++i)
        text += line(kCornerLabels[i],
                     report.corners[i] ? place(*report.corners[i]) : "not on the sky");
    return text;
}

} // namespace zrrender
