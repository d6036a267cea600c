#pragma once

#include <functional>
#include <optional>
#include <vector>

#include <QString>

#include "app/session/keyed.h"
#include "app/session/session.h"
#include "engine/image/image.h"
#include "engine/stars/detect_stars.h"
#include "engine/stars/star.h"
#include "engine/stars/star_detect_params.h"

/// Where the star-free base and the stars of a session come from.
enum class StarRoad
{
    Off,      ///< the stars stay in the picture
    Pair,     ///< the document's own layers
    Learned,  ///< a learned model took the stars out
    Classical ///< they were found against a blurred background
};

/// Lifts the stars of a session out of its picture, and does so again only when something changed
/// that they depend on.
///
/// A base that nothing was added to is not copied: the images of the session are large.
class StarStage
{
public:
    /// Percent of the whole at which inference and detection begin.
    static constexpr int kInferencePercent = 4;
    static constexpr int kDetectionPercent = 64;

    using Reporter = std::function<void(int percent, const QString& text)>;

    /// `owner` is not owned and must outlive the stage.
    StarStage(Session& owner, Reporter reporter);

    /// Whether sprites take the colours of the source image.
    void setTrueColor(bool on) { trueColor = on; }

    /// How stars are found on a road; what it does not read is left at its default.
    zre::StarDetectParams detectParams(StarRoad road) const;

    /// Brings base and stars up to date, and the session's record of what they are.
    void prepare();
    /// Drops all that it keeps.
    void clear();

    /// The base as the last `prepare` left it.
    const zre::Image& working() const;
    std::vector<zre::Star>& stars() { return starList; }
    const std::vector<zre::Star>& stars() const { return starList; }
    /// The road that made them.
    StarRoad preparedRoad() const { return prepared; }

    /// The road that `prepare` would take, without any work.
    StarRoad road() const;
    /// The picture less its stars by the learned model, made now if need be; null where the model
    /// is switched off, missing or fails.
    const zre::Image* ensureAiStarless();
    /// Whether that image is there, so that the model need not run.
    bool learnedStands() const { return learnedStandsFor == learnedKey(); }
    /// What decides the base on the road that `prepare` would take: the same text means the same
    /// image, of one document.
    QString baseKey() const;

    /// What the model failed with, while the stars are found without it for that reason.
    QString separationFailure() const;

    int detections() const { return fullDetections; }
    int erasureUpdates() const { return updates; }

private:
    enum class Base
    {
        Source,
        Pair,
        Learned,
        Own
    };

    QString detectionKey(StarRoad road) const;
    QString learnedKey() const;
    bool canLearn() const;
    bool givesLightBack(const zre::StarDetectParams& detect) const;
    void leaveStarsIn();
    void detectClassically();
    void detectInLayer(StarRoad road, const zre::Image& starless, Base untouched);
    void detectAll(StarRoad road, const zre::Image& layer, const zre::Image& starless,
                   zre::Image* keepBack);
    bool tryIncrementalErasureUpdate(const QString& layerKey, const zre::Image& layer,
                                     const zre::Image& starless,
                                     const zre::StarDetectParams& detect, zre::Image* keepBack);
    void recolor(std::vector<zre::Star>& list) const;
    bool standsFor(const QString& key) const;
    void nowStandsFor(const QString& key, StarRoad road);

    Session& session;
    Reporter report;
    bool trueColor = true;

    std::vector<zre::Star> starList;
    StarRoad prepared = StarRoad::Off;
    std::optional<QString> starsKey; ///< of `starList`, all but the erasures
    std::vector<zre::StarErasure> starsErasures;
    Keyed<zre::LayerStats> layerStats; ///< of the stars layer that erasures are worked into

    Base base = Base::Source;
    zre::Image own; ///< a base that is no image of the session

    zre::Image learned;
    std::optional<QString> learnedStandsFor;
    std::optional<QString> learnedFailedFor;
    QString failure;

    int fullDetections = 0;
    int updates = 0;
};
