#pragma once

#include <QString>

#include "engine/astro/wcs.h"
#include "engine/image/image.h"

/// How a still is written; the suffix of the path decides the format.
struct StillOptions
{
    int bits = 0;                  ///< 8, 16 or 32; 0 means the format's own default
    const zre::Wcs* wcs = nullptr; ///< kept where the format can carry a solution (XISF, FITS)
    int jpegQuality = 95;
};

/// Writes `image` to `path`: .xisf and .fits/.fit/.fts (float), .tif/.tiff (8, 16 by default, or 32
/// float bits), .png (16 by default, or 8), .jpg/.jpeg (8). Through a temporary beside it, flushed
/// and renamed, so the target is whole or as it was. False with a message for the user in `error`
/// (may be null).
bool writeStill(const QString& path, const zre::Image& image, const StillOptions& options,
                QString* error);

/// The bit depths that the suffix of `path` can carry, the default first; empty for a suffix that
/// cannot be written.
QList<int> stillBitDepths(const QString& path);
