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
