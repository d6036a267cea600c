#pragma once

#include <QSize>
#include <QStringList>

struct Session;

/// Whether the session has a flyby path whose coordinates are pixels of the image; those of a
/// flight through space are not.
bool hasPixelPath(const Session& session);

/// What of a session can go on with a new image of the same proportions, one line for each.
QStringList carryableItems(const Session& session);

/// True unless the ratios of width to height differ by more than one percent of the old one. A size
/// that is not positive has the proportions of no other.
bool sameProportions(QSize oldSize, QSize newSize);

/// The question whether `items` are carried over to an image of `newSize`.
QString carryOverQuestion(QSize oldSize, QSize newSize, const QStringList& items);

/// The question whether `items` are given up for an image of `newSize`, of other proportions.
QString lossQuestion(QSize oldSize, QSize newSize, const QStringList& items);

/// Brings all that lies in the pixels of an image of `oldSize` to `newSize`; nothing when a size is
/// not positive.
void rescaleSession(Session& session, QSize oldSize, QSize newSize);

/// Brings the session's flyby path, if it has one, from an image of `oldSize` to `newSize`; nothing
/// when a size is not positive.
void rescaleFlybyPath(Session& session, QSize oldSize, QSize newSize);

/// What of `carryableItems` goes when nothing is carried over.
QStringList losableItems(const Session& session);

/// Whether the flyby path was made for an image of another size than `image`.
bool flybyPathMisfits(const Session& session, QSize image);

/// The question whether the path follows to an image of `image`.
QString flybyRescaleQuestion(const Session& session, QSize image);

/// Drops all that lies in the pixels of the image that goes, except the flyby path,
/// which the user can rescale.
void startFresh(Session& session);
