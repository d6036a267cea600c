#pragma once

#include <functional>
#include <vector>

#include <QString>

#include "app/session/ai_depth_cue.h"
#include "app/session/keyed.h"
#include "app/session/session.h"
#include "app/session/star_stage.h"
#include "engine/image/image.h"
#include "engine/params/depth_inputs.h"
#include "engine/stars/star.h"

/// Channel gains of an anaglyph: exactly 1 in files, the trim of the user's glasses in the preview.
struct AnaglyphGains
{
    double r = 1.0;
    double g = 1.0;
    double b = 1.0;
};

/// The only road from a session to stars, depth, eyes and views, for the window and the headless
/// tool alike.
///
/// The stars come out of the picture first. Three depth levels (cues, anchor, final), each kept
/// under its own text key and rebuilt only when that key changes. Runs on the caller's thread.
class RenderPipeline
{
public:
    /// How often each depth level was built, stars were found, and erasures were worked into those
    /// that were there, since the pipeline was made.
    struct LevelBuilds
    {
        int cues = 0;
        int anchor = 0;
        int final = 0;
        int detections = 0;
        int erasureUpdates = 0;
    };

    /// `session` is not owned and must outlive the pipeline.
    explicit RenderPipeline(Session& session);
    RenderPipeline(const RenderPipeline&) = delete;
    RenderPipeline& operator=(const RenderPipeline&) = delete;

    /// Receives the stage of long steps: percent of the whole, and a text for the user.
    void setStageReporter(std::function<void(int, const QString&)> reporter);

    /// Percent at which the stages of the next rendering begin, earlier when a learned model has to
    /// run; they end at 100.
    int firstPercent() const;

    /// Whether the learned model has to take the stars out first, which takes long.
    bool separationPending() const;

    /// Drops every image that it keeps.
    void clear();

    /// Whether sprites take the colours of the source image; by default they do. The setting
    /// belongs to the user and not to a document.
    void setTrueColor(bool on);

    /// Brings the working image, which depth and eyes are made from, and the stars up to date; the
    /// depths of stars found anew are those of no map yet.
    void prepareInputs();
    /// `prepareInputs`, then the depth map and by it the depth of every star.
    void prepareStars();
    /// As the last `prepareInputs` left it: the source, or the base that the stars were lifted
    /// from.
    const zre::Image& working() const;
    /// The stars in force; null when there are none. Valid until the next call that renders.
    const std::vector<zre::Star>* activeStars() const;
    std::vector<zre::Star>& stars();
    /// How many of them are drawn: those of a depth that does not hide them.
    int starsShown() const;
    /// What found them: "classical", "AI" or "stars layer"; empty when nothing did.
    QString starDetector() const;
    /// What the panel says of real star depths; empty for every other model.
    QString starDepthText() const;

    /// The key of the cue level (false, false), the anchor level (false, true) or the final level
    /// (true, true): it differs whenever that level's image can differ. A session holds no depth
    /// model so far, so that `includeModel` adds nothing.
    QString depthCacheKey(bool includeModel, bool includeAnchor) const;
    /// The final depth level, up to date, as are the depths of the stars; null without a source.
    const zre::Image* cachedDepth();
    /// The final depth level if it stands and is up to date, without any work; else null.
    const zre::Image* standingDepth() const;
    /// Cue and anchor levels only, without the depth model.
    void computeCleanDepth(zre::Image& out);

    /// "AI depth failed: " and why, when the learned cue could not be part of the depth; else
    /// empty.
    QString aiDepthFailure() const { return aiDepth.failure(); }
    /// "AI star separation failed: " and why, while the stars are found without it for that reason;
    /// else empty.
    QString starSeparationFailure() const { return starStage.separationFailure(); }

    /// Renders output view `view` at full size and gives its status text. False, with `out` as it
    /// was, without a source or for a view that does not exist.
    bool renderView(int view, const AnaglyphGains& gains, zre::Image& out, QString* status);
    /// One viewpoint of the parallax motion by the session's parameters. False without a source.
    bool renderWiggle(int frame, zre::Image& out);

    /// A view of one layer: 4 the picture without stars, 5 the stars alone. False, with `out` as it
    /// was, without a source or for another view.
    bool buildLayerView(int view, zre::Image& out, QString* status);

    LevelBuilds levelBuilds() const;

private:
    /// A picture whose stars were taken out to be looked at.
    struct Removal
    {
        zre::Image starless;
        std::size_t stars = 0;
    };

    void stage(int percent, const QString& text) const;
    zre::Progress eyeProgress() const;
    void ensureAiDepth();
    zre::DepthInputs depthInputs() const;
    void buildCues(zre::Image& out);
    const zre::Image& anchoredLevel();
    void assignDepths(const zre::Image& depth);
    void buildStarlessView(zre::Image& out, QString* status);
    void buildStarsView(zre::Image& out, QString* status);
    void renderStarsOverStarless(zre::Image& out, QString* status);
    QString starCountText() const;
    void renderDepthView(zre::Image& out, QString* status);
    void renderPair(zre::Image& out, QString* status);
    void renderAnaglyphView(const AnaglyphGains& gains, zre::Image& out, QString* status);

    Session& session;
    std::function<void(int, const QString&)> stageReporter;
    AiDepthCue aiDepth;
    StarStage starStage;
    Keyed<zre::Image> cueDepth;
    Keyed<zre::Image> anchoredDepth;
    Keyed<zre::Image> finalDepth;
    Keyed<double> depthMedian; ///< of `finalDepth`
    Keyed<Removal> removal;
    LevelBuilds builds; ///< of the depth levels
    QString depthText;
};
