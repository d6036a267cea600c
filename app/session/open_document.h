#pragma once

#include <functional>

#include <QImage>
#include <QString>

#include "app/session/session.h"
#include "engine/qt/image_file.h"

/// Decodes `path` and makes it the session's source, with its solution.
///
/// `preview` (may be null) receives the decoder's 8-bit picture. Errors: false with the decoder's
/// message in `error` (may be null), and the session and `preview` as they were.
bool openSource(const QString& path, StretchMode stretch, Session& session, QImage* preview,
                QString* error);

/// Decodes a pair and makes it the session's document.
///
/// Whether the starless image is linear decides for both, and its stretch s for both: the stars
/// become s(starless + stars) - s(starless), so that the sum is the stretched whole picture. The
/// solution comes from either file, the starless one first.
/// Errors: false, and everything as it was, with "Starless image:\n" or "Stars only image:\n" and
/// the decoder's message, or that the sizes differ. `stage` hears of each step before it is taken:
/// the fraction of the work that is done and a text for the user.
using PairStage = std::function<void(double fraction, const QString& text)>;
bool openPair(const QString& starsPath, const QString& starlessPath, StretchMode stretch,
              Session& session, QImage* preview, QString* error, const PairStage& stage = {});

/// Decodes `path` and makes it the session's external depth map, of one channel, never stretched.
/// Errors as `openSource`. Parameters stay: whether the map counts is theirs to say.
bool openDepthMap(const QString& path, Session& session, QString* error);

/// A depth map that the user names is meant to count, though parameters leave it out by default:
/// switches it on, and blends it fully where no share was chosen.
void switchDepthMapOn(zre::ZRParams& params);

/// The depths of a picture: a grey picture's own values bit for bit, or the luma 0.299 R + 0.587 G
/// + 0.114 B of a coloured one, whose greys keep their value. (CIE lightness would bend them.) An
/// image that is not usable stays as it is.
zre::Image depthPlane(zre::Image picture);
