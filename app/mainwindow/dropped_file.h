#pragma once

#include <QList>
#include <QString>
#include <QUrl>

/// What letting a file go over the window does.
enum class DropKind
{
    Nothing,
    Image,
    DepthMap,
    ImageOrDepthMap, ///< the name leaves it open, so the user is asked
    Pair,            ///< a starless image and its stars, by their names
    TwoImages,       ///< perhaps such a pair, so the user is asked
    ColorProfile
};

struct DroppedFile
{
    DropKind kind = DropKind::Nothing;
    QString path;  ///< of a pair the starless image
    QString other; ///< of a pair the stars; of two images the second
};

/// The pair among `urls` whose names leave no doubt, or two pictures when they are all that can be
/// used and neither is named a depth map, or the first file that can be used. Only beside an open
/// image (`imageOpen`) is there a use for depth maps, recognised by their names, and for profiles.
DroppedFile droppedFile(const QList<QUrl>& urls, bool imageOpen);

/// What will happen, for the user to read before letting go; empty for `Nothing`.
QString dropText(const DroppedFile& file);
