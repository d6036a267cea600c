#pragma once

#include <QSize>
#include <QString>

#include "engine/astro/wcs.h"
#include "engine/image/image.h"
#include "engine/params/params.h"
#include "engine/qt/image_file.h"

/// Everything a document is: a source image, or a pair of a starless and a stars image whose sum is
/// the source. A plain record: it keeps itself consistent and does nothing else.
struct Session
{
    QString sourcePath; ///< of a pair the starless image's
    zre::Image source;
    DecodedFile sourceFile; ///< what the file stored, and the stretch its pixels got
    zre::Wcs wcs;

    QString starlessPath; ///< of a pair, as the next three; empty without one
    QString starsPath;
    zre::Image starless;
    zre::Image starsLayer; ///< of the size of `starless`, black where no star is

    QString depthMapPath;
    zre::Image externalDepth; ///< not usable when none is loaded

    QString flybyScript;   ///< empty for the built-in flyby
    QSize flybyScriptSize; ///< of the picture that the script was written for

    zre::ZRParams params;
    int outputMode = 2; ///< the output view shown

    int generation = 0; ///< raised whenever an image is replaced; it opens the keys of the depth
    /// Raised only with the picture itself: stars and what was learned of it outlive another depth
    /// map.
    int imageGeneration = 0;

    bool hasSource() const { return source.usable(); }
    bool hasPair() const { return starless.usable() && starsLayer.usable(); }

    /// Empties the document and sets its parameters back; `generation` rises.
    void clear();
    /// Replaces the source and its solution, drops a pair and raises `generation`.
    void installSource(QString path, zre::Image image, zre::Wcs solution, DecodedFile file);
    /// Replaces the document by a pair of images of one size, whose sum becomes the source; `file`
    /// tells of the starless one. Raises `generation`.
    void installPair(QString pathOfStars, QString pathOfStarless, zre::Image stars,
                     zre::Image starlessImage, zre::Wcs solution, DecodedFile file);
    /// Replaces the images of the document, one or a pair, by those of `loaded`, which was just
    /// opened; the depth map and the parameters stay. Raises `generation`.
    void installImagesOf(Session loaded);
    /// Replaces the external depth map; an image that is not usable removes it.
    void installExternalDepth(QString path, zre::Image image);
};

/// The solution that fits `still`, a rendering of output view `view`; null for a view whose pixels
/// are not the source's, and for the depth map, which is no picture of the sky.
const zre::Wcs* solutionOfStill(const Session& session, int view, const zre::Image& still);
