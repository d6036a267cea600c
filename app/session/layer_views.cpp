#include <algorithm>

#include "app/session/output_view.h"
#include "app/session/render_pipeline.h"
#include "app/session/star_detection.h"
#include "engine/stars/detect_stars.h"
#include "engine/stars/heal_starless.h"
#include "engine/stars/star_sprites.h"

static void say(QString* status, const QString& text)
{
    if (status)
        *status = text;
}

/// Adds the stars that are to be seen where they were found.
static void drawInPlace(const std::vector<zre::Star>& stars, zre::Image& out)
{
    zre::drawStarSprites(stars, out, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0, -1.0, -1.0, nullptr, 0.0f);
}

bool RenderPipeline::buildLayerView(int view, zre::Image& out, QString* status)
{
    if (!session.hasSource() || (view != kStarlessView && view != kStarsView))
        return false;
    if (session.hasPair()) {
        out = view == kStarsView ? session.starsLayer : session.starless;
        say(status, view == kStarsView ? QStringLiteral("Detected stars  -  project stars layer")
                                       : QStringLiteral("De-starred base  -  project starless"));
    } else if (view == kStarlessView) {
        buildStarlessView(out, status);
    } else {
        buildStarsView(out, status);
    }
    return true;
}

/// Erasures take no part: what is shown is what the detection takes out of the picture. The base at
/// hand is that very image when it was made without them.
void RenderPipeline::buildStarlessView(zre::Image& out, QString* status)
{
    if (const zre::Image* starless = starStage.ensureAiStarless()) {
        out = *starless;
        say(status, QStringLiteral("Starless image  -  AI star separation"));
        return;
    }
    const zre::ZRParams& p = session.params;
    std::size_t removed = 0;
    if (p.starSeparationEnabled && p.starErasures.empty()) {
        prepareInputs();
        out = working();
        removed = starStage.stars().size();
    } else {
        const zre::StarDetectParams detect = starStage.detectParams(StarRoad::Classical);
        CacheKey key;
        key.text(QStringLiteral("v%1").arg(session.imageGeneration))
            .number(p.fillBehindStars ? 1 : 0);
        addDetection(key, detect);
        const Removal& made = removal.get(key.str(), [&](Removal& fresh) {
            stage(StarStage::kDetectionPercent, QStringLiteral("Removing stars..."));
            std::vector<zre::Star> stars;
            zre::detectStars(session.source, stars, fresh.starless, detect, nullptr);
            if (p.fillBehindStars)
                zre::healStarless(session.source, stars, fresh.starless);
            fresh.stars = stars.size();
        });
        out = made.starless;
        removed = made.stars;
    }
    say(status, QStringLiteral("Starless image  -  %1 stars removed").arg(removed));
}

QString RenderPipeline::starCountText() const
{
    const std::vector<zre::Star>& list = starStage.stars();
    const auto found =
        std::count_if(list.begin(), list.end(), [](const zre::Star& star) { return !star.erased; });
    if (starStage.preparedRoad() != StarRoad::Learned)
        return QStringLiteral("Stars only  -  %1 found").arg(found);
    if (starsShown() < found && session.params.starMaxRendered > 0)
        return QStringLiteral("Stars only  -  AI star separation, %1 of %2 stars (Max stars)")
            .arg(starsShown())
            .arg(found);
    return QStringLiteral("Stars only  -  AI star separation, %1 stars").arg(found);
}

void RenderPipeline::buildStarsView(zre::Image& out, QString* status)
{
    cachedDepth();
    out = zre::Image(working().width, working().height, working().channels >= 3 ? 1 : 0);
    drawInPlace(starStage.stars(), out);
    say(status, starCountText());
}

/// The depths decide which stars are drawn, so that they have to be those of the parameters.
void RenderPipeline::renderStarsOverStarless(zre::Image& out, QString* status)
{
    prepareStars();
    out = working();
    drawInPlace(starStage.stars(), out);
    say(status, QStringLiteral("Starless + synthetic stars  -  %1 stars").arg(starsShown()));
}
