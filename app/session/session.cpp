#include "app/session/session.h"

#include <utility>

#include "app/session/output_view.h"

void Session::clear()
{
    const int next = generation + 1;
    const int nextImage = imageGeneration + 1;
    *this = Session();
    generation = next;
    imageGeneration = nextImage;
}

void Session::installSource(QString path, zre::Image image, zre::Wcs solution, DecodedFile file)
{
    sourcePath = std::move(path);
    source = std::move(image);
    sourceFile = std::move(file);
    wcs = std::move(solution);
    starlessPath.clear();
    starsPath.clear();
    starless = zre::Image();
    starsLayer = zre::Image();
    ++generation;
    ++imageGeneration;
}

void Session::installExternalDepth(QString path, zre::Image image)
{
    const bool usable = image.usable();
    depthMapPath = usable ? std::move(path) : QString();
    externalDepth = usable ? std::move(image) : zre::Image();
    ++generation;
}

const zre::Wcs* solutionOfStill(const Session& session, int view, const zre::Image& still)
{
    const bool fits = session.wcs.valid && still.sameSize(session.source) && view != kDepthView;
    return fits ? &session.wcs : nullptr;
}
