#pragma once

#include <optional>

#include <QString>
#include <QStringList>

/// What a file's name says of its picture.
enum class LayerRole
{
    Whole,    ///< nothing: a picture with its stars, or one that can be either layer
    Starless, ///< a picture with its stars taken out
    Stars     ///< the stars that were taken out, over black
};

LayerRole layerRoleOf(const QString& path);

/// The name without its suffix and without the words that tell the role: the same for both layers
/// of one picture, whatever their case and separators.
QString layerRootOf(const QString& path);

/// The name without its suffix and without the words that tell the role before or after the rest,
/// in its own case and separators: "M42_v2" for "M42_v2-starless.xisf". With such words amid the
/// rest, the whole name without its suffix.
QString layerBaseOf(const QString& path);

/// Two layers of one picture.
struct LayerPair
{
    QString stars;
    QString starless;
};

/// Which of the two is which, when their names leave no doubt: one says starless, one says stars,
/// and the rest is the same.
std::optional<LayerPair> layerPairOf(const QString& one, const QString& other);

/// The image beside `path`, in its folder, that forms a pair with it; empty when there is none or
/// more than one, or when the name of `path` tells no role.
QString layerPartnerOf(const QString& path);
