#include "app/mainwindow/thumbnail_store.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include <QCryptographicHash>
#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>

#include "engine/image/raster.h"
#include "engine/qt/zre_qt.h"

static const QString kModifiedKey = QStringLiteral("Source-Modified");

ThumbnailStore::ThumbnailStore()
    : ThumbnailStore(QStandardPaths::writableLocation(QStandardPaths::CacheLocation) +
                     "/thumbnails")
{
}

ThumbnailStore::ThumbnailStore(QString folder)
    : m_folder(std::move(folder))
{
}

static QString nameOf(const QString& path)
{
    const QString whole = QDir::cleanPath(QFileInfo(path).absoluteFilePath());
    return QCryptographicHash::hash(whole.toUtf8(), QCryptographicHash::Sha1).toHex() + ".png";
}

static QString modifiedText(const QString& path)
{
    return QString::number(QFileInfo(path).lastModified().toMSecsSinceEpoch());
}

QString ThumbnailStore::fileOf(const QString& path) const
{
    return m_folder + '/' + nameOf(path);
}

void ThumbnailStore::add(const QString& path, const zre::Image& image) const
{
    if (!image.usable() || !QDir().mkpath(m_folder))
        return;
    const double scale = std::min(
        {1.0, double(kDensity * kWidth) / image.width, double(kDensity * kHeight) / image.height});
    const auto side = [scale](int full) {
        return std::max(1, static_cast<int>(std::lround(full * scale)));
    };
    zre::Image small;
    zre::areaResample(image, side(image.width), side(image.height), small);
    QImage picture = zre_qt::toQImage(small);
    picture.setText(kModifiedKey, modifiedText(path));
    picture.save(fileOf(path));
}

QImage ThumbnailStore::find(const QString& path) const
{
    const QImage picture(fileOf(path));
    return picture.text(kModifiedKey) == modifiedText(path) ? picture : QImage();
}

void ThumbnailStore::keepOnly(const QStringList& paths) const
{
    QStringList names;
    for (const QString& path : paths)
        names << nameOf(path);
    QDir folder(m_folder);
    for (const QString& name : folder.entryList({"*.png"}, QDir::Files))
        if (!names.contains(name))
            folder.remove(name);
}
