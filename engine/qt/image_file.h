#pragma once

#include <QByteArray>
#include <QImage>
#include <QString>
#include <QStringList>

#include "engine/astro/wcs.h"
#include "engine/fileio/image_file_info.h"
#include "engine/image/image.h"
#include "engine/image/midtones.h"

/// How linear data are shown.
enum class StretchMode
{
    Auto, ///< linear files get a midtones stretch
    None
};

/// What `decodeImageFile` found beside the pixels.
struct DecodedFile
{
    zre::ImageFileInfo info;
    zre::MidtonesStretch stretch; ///< applied to the pixels; the identity when none was
};

/// The one door through which an image of any format enters: XISF by our own reader, FITS through
/// cfitsio, TIFF through libtiff, PNG and the rest through `QImageReader` (16-bit files keep their
/// depth), turned upright by their orientation tags.
///
/// `rawBytes` (may be null) receives the file itself for an XISF. `wcs` is written only with a
/// solution. Errors: false with "Could not load XISF:\n..." or "Could not load image:\n..." in
/// `error` (may be null) and every output as it was. Never throws: too little memory is a message
/// as well.
bool decodeImageFile(const QString& path, QImage& preview, zre::Image& image, zre::Wcs& wcs,
                     QByteArray* rawBytes, QString* error);

/// The same with a choice of stretch and an account of the file (`decoded` may be null).
bool decodeImageFile(const QString& path, QImage& preview, zre::Image& image, zre::Wcs& wcs,
                     QByteArray* rawBytes, QString* error, StretchMode stretch,
                     DecodedFile* decoded);

/// The suffixes that the open dialogs offer: "xisf" first, then what `QImageReader` reads, then
/// FITS.
const QStringList& imageExts();
