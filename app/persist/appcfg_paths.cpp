#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>

#include "app/persist/appcfg.h"

namespace appcfg {

static QString ifFile(const QString& path)
{
    return QFileInfo(path).isFile() ? path : QString();
}

static QString firstOf(const QString& preferred, const QString& otherwise)
{
    return preferred.isEmpty() ? otherwise : preferred;
}

static QString besideProgram(const QString& name)
{
    return ifFile(QDir(QCoreApplication::applicationDirPath()).filePath(name));
}

QString ffmpegDetected()
{
    return QStandardPaths::findExecutable("ffmpeg");
}

QString ffmpegResolved()
{
    return firstOf(ifFile(ffmpegConfigured()), ffmpegDetected());
}

bool ffmpegAvailable()
{
    return !ffmpegResolved().isEmpty();
}

QString aiDepthModelDefault()
{
    return besideProgram("zr_dmap.onnx");
}

QString aiDepthModelResolved()
{
    return firstOf(ifFile(aiDepthModelConfigured()), aiDepthModelDefault());
}

QString gaiaCatalogDefault()
{
    const QString name = "gaia_zr.cat";
    const QString packs = starPackDirResolved();
    return firstOf(packs.isEmpty() ? QString() : ifFile(QDir(packs).filePath(name)),
                   besideProgram(name));
}

QString gaiaCatalogResolved()
{
    return firstOf(ifFile(gaiaCatalogConfigured()), gaiaCatalogDefault());
}

QString solveCatalogResolved()
{
    return firstOf(ifFile(solveCatalogConfigured()), gaiaCatalogResolved());
}

QString userCatalogDir()
{
    const QString data = QStandardPaths::writableLocation(QStandardPaths::AppDataLocation);
    return data.isEmpty() ? QString() : data + "/catalog";
}

QString starPackDirResolved()
{
    return userCatalogDir();
}

QString starPackScanDir()
{
    return userCatalogDir();
}

void anaglyphTrim(double& r, double& g, double& b)
{
    const double balance = anaglyphBalance();
    const double hue = anaglyphCyanHue();
    r = 1.0 - 0.3 * balance;
    g = (1.0 - 0.28 * hue) * (1.0 + 0.3 * balance);
    b = (1.0 + 0.28 * hue) * (1.0 + 0.3 * balance);
}

static QString ifFolder(const QString& path)
{
    return !path.isEmpty() && QFileInfo(path).isDir() ? path : QString();
}

QString dialogStartPath(const QString& key, const QString& suggestedName, Preferred preferred)
{
    const QString path = lastDialogPath(key);
    const QString last =
        firstOf(ifFolder(path), path.isEmpty() ? QString() : ifFolder(QFileInfo(path).path()));
    const QString work = ifFolder(defaultWorkFolder());
    const QString folder =
        preferred == Preferred::WorkFolder ? firstOf(work, last) : firstOf(last, work);
    if (folder.isEmpty() || suggestedName.isEmpty())
        return folder + suggestedName;
    return QDir(folder).filePath(suggestedName);
}

} // namespace appcfg
