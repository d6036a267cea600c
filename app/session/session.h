#pragma once

#include <QString>

#include "engine/astro/wcs.h"
#include "engine/image/image.h"
#include "engine/params/params.h"
#include "engine/qt/image_file.h"

/// Everything a document is. A plain record: it keeps itself consistent and does nothing else.
struct Session
{
    QString sourcePath;
    zre::Image source;
    DecodedFile sourceFile; ///< what the file stored, and the stretch its pixels got
    zre::Wcs wcs;

    QString depthMapPath;
    zre::Image externalDepth; ///< not usable when none is loaded

    zre::ZRParams params;
    int outputMode = 2; ///< the output view shown

    int generation = 0; ///< raised whenever an image is replaced; it opens every cache key

    bool hasSource() const { return source.usable(); }

    /// Empties the document and sets its parameters back; `generation` rises.
    void clear();
    /// Replaces the source and its solution and raises `generation`.
    void installSource(QString path, zre::Image image, zre::Wcs solution, DecodedFile file);
    /// Replaces the external depth map; an image that is not usable removes it.
    void installExternalDepth(QString path, zre::Image image);
};

/// The solution that fits `still`, a rendering of output view `view`; null for a view whose pixels
/// are not the source's, and for the depth map, which is no picture of the sky.
const zre::Wcs* solutionOfStill(const Session& session, int view, const zre::Image& still);
