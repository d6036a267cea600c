#pragma once

#include <QSize>
#include <QStringList>

struct Session;

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

/// Drops all that lies in the pixels of the image that goes.
void startFresh(Session& session);
