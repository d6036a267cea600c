#include <algorithm>
#include <cmath>

#include <QFile>
#include <QFileInfo>

#include "app/main/diagnostics/checks.h"
#include "app/main/diagnostics/diagnostics.h"
#include "app/persist/param_text.h"
#include "app/session/open_document.h"
#include "engine/params/param_ranges.h"

/// The four corners and the centre go to the sky and come back.
static void checkSolution(Checks& checks, const Session& session)
{
    constexpr double kTolerancePixels = 1e-6;
    const double width = session.source.width;
    const double height = session.source.height;
    double worst = 0.0;
    for (const double fx : {0.0, 0.5, 1.0})
        for (const double fy : {0.0, 0.5, 1.0}) {
            double ra = 0.0;
            double dec = 0.0;
            double x = 0.0;
            double y = 0.0;
            const bool mapped = session.wcs.imageToCelestial(fx * width, fy * height, ra, dec) &&
                                session.wcs.celestialToImage(ra, dec, x, y);
            worst =
                mapped ? std::max(worst, std::hypot(x - fx * width, y - fy * height)) : INFINITY;
        }
    double ra = 0.0;
    double dec = 0.0;
    session.wcs.centerCelestial(ra, dec);
    checks.that(worst <= kTolerancePixels,
                QString("solution: centre %1 %2 degrees, %3 arcsec/px, comes back within %4 px")
                    .arg(ra, 0, 'f', 6)
                    .arg(dec, 0, 'f', 6)
                    .arg(session.wcs.resolutionArcsec, 0, 'f', 4)
                    .arg(worst, 0, 'g', 3));
}

int diag::wcsBuild(const QStringList& arguments)
{
    Checks checks;
    const QString spike = QString::fromStdString(zre::wcsBuildSpike());
    checks.note(spike.trimmed());
    checks.that(spike.trimmed().endsWith("PASS"), "a solution built from values");
    if (!QFileInfo(arguments[0]).isFile()) {
        checks.note(arguments[0] + " is no file: no solution but the built one");
        return checks.verdict();
    }
    Session session;
    QString error;
    const bool opened = openSource(arguments[0], StretchMode::None, session, nullptr, &error);
    checks.that(opened, arguments[0] + " " + error);
    if (session.wcs.valid)
        checkSolution(checks, session);
    else
        checks.note("the file holds no solution");
    return checks.verdict();
}

int diag::imageLoad(const QStringList& arguments)
{
    Checks checks;
    Session session;
    QImage preview;
    QString error;
    const bool decoded = openSource(arguments[0], StretchMode::Auto, session, &preview, &error);
    checks.that(decoded, decoded ? arguments[0] : error);
    if (!decoded)
        return checks.verdict();
    const zre::Image& image = session.source;
    const zre::ImageFileInfo& info = session.sourceFile.info;
    checks.note(QString("%1, %2, %3 bits a sample, %4")
                    .arg(info.container.c_str(), info.sampleFormat.c_str())
                    .arg(info.bitDepth)
                    .arg(info.linear ? "linear" : "not linear"));
    checks.that(image.usable() && image.data.size() ==
                                      image.pixelCount() * static_cast<std::size_t>(image.channels),
                QString("%1 x %2 pixels, %3 channel(s)")
                    .arg(image.width)
                    .arg(image.height)
                    .arg(image.channels));
    checks.that(preview.size() == QSize(image.width, image.height), "the preview has that size");
    checks.that(std::all_of(image.data.begin(), image.data.end(),
                            [](float v) { return v >= 0.0f && v <= 1.0f; }),
                "every sample lies within 0 to 1");
    if (session.wcs.valid)
        checkSolution(checks, session);
    else
        checks.note("no solution");
    return checks.verdict();
}

static void checkTable(Checks& checks)
{
    const zre::ZRParams defaults;
    for (const zre::ParamRange& row : zre::kParamRanges) {
        const double step = row.max - row.min;
        const bool agrees = static_cast<float>(row.def) == static_cast<float>(row.get(defaults));
        const bool bounds = zre::clampParam(row.name, row.max + step) == row.max &&
                            zre::clampParam(row.name, row.min - step) == row.min;
        if (!agrees || !bounds)
            checks.that(false, QString("%1: default or bounds disagree").arg(row.name));
    }
    checks.that(zre::kParamRanges.size() == 60, "60 parameters have a range");
}

int diag::ranges(const QStringList& arguments)
{
    Checks checks;
    checkTable(checks);
    zre::ZRParams params;
    int view = 2;
    QList<QString> unknown;
    QFile file(arguments[0]);
    if (QFileInfo(file).isFile() && file.open(QIODevice::ReadOnly)) {
        zrproj::paramsFromText(QString::fromUtf8(file.readAll()), params, view, unknown);
        for (const QString& line : unknown)
            checks.note("unknown: " + line);
        for (const zre::ParamRange& row : zre::kParamRanges)
            if (const double value = row.get(params);
                static_cast<float>(zre::clampParam(row.name, value)) != static_cast<float>(value))
                checks.that(false, QString("%1=%2 lies outside %3 to %4")
                                       .arg(row.name)
                                       .arg(value)
                                       .arg(row.min)
                                       .arg(row.max));
    } else {
        checks.note(arguments[0] + " is no file: the defaults are taken");
    }
    const QString text = zrproj::paramsToText(params, view, {}, unknown);
    zre::ZRParams back;
    int backView = 0;
    QList<QString> backUnknown;
    zrproj::paramsFromText(text, back, backView, backUnknown);
    checks.that(zrproj::paramsToText(back, backView, {}, backUnknown) == text,
                "the text form comes back unchanged");
    return checks.verdict();
}
