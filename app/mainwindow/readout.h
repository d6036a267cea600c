#pragma once

#include <optional>

#include <QPointF>
#include <QString>

#include "engine/image/image.h"

struct Session;

/// The place in the source that a place in the current view's picture shows: each half of a stereo
/// pair shows the whole source. Nothing beside the picture.
std::optional<QPointF> placeInSource(const Session& session, QPointF inPicture);

/// What stands under a place of the current view's picture: the source's pixel and its values, the
/// depth there unless `depth` is null, and the position on the sky when the image is solved. Empty
/// beside the picture.
QString readoutText(const Session& session, const zre::Image* depth, QPointF inPicture);
