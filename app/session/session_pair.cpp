#include <utility>

#include "app/session/session.h"
#include "engine/stars/star_sprites.h"

void Session::installPair(QString pathOfStars, QString pathOfStarless, zre::Image stars,
                          zre::Image starlessImage, zre::Wcs solution, DecodedFile file)
{
    installSource(pathOfStarless, zre::compositeStarlessStars(starlessImage, stars),
                  std::move(solution), std::move(file));
    starsPath = std::move(pathOfStars);
    starlessPath = std::move(pathOfStarless);
    starsLayer = std::move(stars);
    starless = std::move(starlessImage);
}

void Session::installImagesOf(Session loaded)
{
    installSource(std::move(loaded.sourcePath), std::move(loaded.source), std::move(loaded.wcs),
                  std::move(loaded.sourceFile));
    starsPath = std::move(loaded.starsPath);
    starlessPath = std::move(loaded.starlessPath);
    starsLayer = std::move(loaded.starsLayer);
    starless = std::move(loaded.starless);
}
