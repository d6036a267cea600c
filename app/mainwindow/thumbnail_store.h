#pragma once

#include <QImage>
#include <QStringList>

#include "engine/image/image.h"

/// Small pictures of the images opened last, kept as files.
class ThumbnailStore
{
public:
    static constexpr int kWidth = 156; ///< as shown, at most
    static constexpr int kHeight = 104;
    /// Pixels for each one shown, so that dense screens get a sharp picture too.
    static constexpr int kDensity = 2;

    /// In the user's cache.
    ThumbnailStore();
    explicit ThumbnailStore(QString folder);

    /// Keeps a picture of `image`, the content of the file `path`. A folder that cannot be written
    /// to keeps none.
    void add(const QString& path, const zre::Image& image) const;
    /// Null when there is none, or when the file has changed since.
    QImage find(const QString& path) const;
    /// Removes the pictures of all other files.
    void keepOnly(const QStringList& paths) const;

private:
    QString fileOf(const QString& path) const;

    QString m_folder;
};
